#include "Screens/Apps/UninstallSheetState.h"

#include "Core/AppModel.h"
#include "Platform/HomeFolder.h"
#include "Platform/LinkOpener.h"
#include "Scan/Format.h"
#include "Screens/Apps/AppsWords.h"
#include "Screens/SingleLine.h"

#include <QCoroFuture>
#include <QPointer>
#include <QUrl>

#include <algorithm>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

// Paths are bytes, of which each is one letter here.
QString idOf(const Leftover &leftover)
{
    return QString::fromLatin1(leftover.path.data(), qsizetype(leftover.path.size()));
}

void flip(QSet<QString> &ids, const QString &id)
{
    if (!ids.remove(id))
        ids.insert(id);
}

} // namespace

UninstallSheetState::UninstallSheetState(AppModel &model, QObject *parent)
    : QObject(parent)
    , m_model(model)
{
}

void UninstallSheetState::open(const InstalledApp &app, const QList<InstalledApp> &all)
{
    if (m_working)
        return;
    m_app = app;
    m_plan.reset();
    m_chosen.clear();
    m_open.clear();
    refresh();
    Q_EMIT openChanged();
    work(app, all);
}

QCoro::Task<> UninstallSheetState::work(InstalledApp app, QList<InstalledApp> all)
{
    const QPointer self(this);
    const int opening = ++m_opening;
    const auto planning = m_model.uninstalls().plan(app, all);
    const auto plan = co_await planning;
    if (!self || opening != m_opening || !m_app)
        co_return;
    m_plan = plan;
    m_app = plan.target;
    for (const auto &leftover : plan.plan.removableLeftovers())
        m_chosen.insert(idOf(leftover));
    refresh();
}

void UninstallSheetState::refresh()
{
    QList<AppsListModel::Entry> rows;
    QList<AppsListModel::Entry> locked;
    const auto home = m_model.services().kit.home.realHomeDirectory();
    if (m_plan && !isBlocked()) {
        for (const auto &leftover : m_plan->plan.leftovers) {
            const auto id = idOf(leftover);
            auto row = AppsWords::row(leftover, *m_app, home);
            row.isTicked = m_chosen.contains(id);
            row.isOpen = m_open.contains(id);
            (leftover.needsAdministrator ? locked : rows)
                .append({ .id = id, .row = QVariant::fromValue(row) });
        }
    }
    m_rows.setEntries(rows);
    m_lockedRows.setEntries(locked);
    Q_EMIT changed();
}

bool UninstallSheetState::isBlocked() const
{
    return m_plan && m_plan->plan.blocked;
}

qsizetype UninstallSheetState::count(bool locked) const
{
    return m_plan && !isBlocked()
        ? std::ranges::count(m_plan->plan.leftovers, locked, &Leftover::needsAdministrator)
        : 0;
}

QString UninstallSheetState::title() const
{
    return m_app ? tr("Uninstall %1").arg(singleLine(m_app->app.name)) : QString();
}

QString UninstallSheetState::icon() const
{
    return m_app ? AppsWords::row(*m_app).icon : QString();
}

QString UninstallSheetState::origin() const
{
    return m_app ? AppsWords::origin(*m_app) : QString();
}

QString UninstallSheetState::blocked() const
{
    return isBlocked() ? singleLine(*m_plan->plan.blocked) : QString();
}

bool UninstallSheetState::hasStorePage() const
{
    return isBlocked() && m_app && m_app->needsAdministrator() && !m_app->componentId.isEmpty();
}

QString UninstallSheetState::itself() const
{
    return m_plan ? AppsWords::itself(*m_plan) : QString();
}

QString UninstallSheetState::itselfSize() const
{
    return m_plan ? Format::bytes(m_plan->target.app.bytes) : QString();
}

QString UninstallSheetState::nothingElse() const
{
    return m_plan && !isBlocked() && m_plan->plan.leftovers.empty()
        ? tr("It left nothing else behind — unusual, and good.")
        : QString();
}

QString UninstallSheetState::heading() const
{
    const auto places = count(false);
    if (places == 0)
        return {};
    return places == 1 ? tr("AND %1 OTHER PLACE IT WROTE TO").arg(places)
                       : tr("AND %1 OTHER PLACES IT WROTE TO").arg(places);
}

QString UninstallSheetState::lockedHeading() const
{
    return count(true) == 0 ? QString() : tr("LEFT ALONE — THESE NEED AN ADMINISTRATOR");
}

std::vector<Leftover> UninstallSheetState::chosenLeftovers() const
{
    if (!m_plan)
        return {};
    auto leftovers = m_plan->plan.removableLeftovers();
    std::erase_if(leftovers, [this](const Leftover &leftover) { return !m_chosen.contains(idOf(leftover)); });
    return leftovers;
}

QString UninstallSheetState::total() const
{
    return m_plan && !isBlocked() ? AppsWords::total(m_plan->target, chosenLeftovers()) : QString();
}

bool UninstallSheetState::canUninstall() const
{
    return m_plan && !isBlocked() && !m_working;
}

QString UninstallSheetState::action() const
{
    return m_working ? tr("Removing…") : tr("Uninstall…");
}

QString UninstallSheetState::confirmTitle() const
{
    return m_app ? tr("Uninstall %1?").arg(singleLine(m_app->app.name)) : QString();
}

QString UninstallSheetState::confirmMessage() const
{
    return m_app ? AppsWords::confirmMessage(*m_app, chosenLeftovers()) : QString();
}

QString UninstallSheetState::confirmAction() const
{
    return m_app ? AppsWords::confirmAction(*m_app) : QString();
}

void UninstallSheetState::toggle(int row)
{
    const auto id = m_rows.idAt(row);
    if (id.isEmpty() || m_working)
        return;
    flip(m_chosen, id);
    refresh();
}

void UninstallSheetState::toggleEvidence(int row, bool isLocked)
{
    const auto id = (isLocked ? m_lockedRows : m_rows).idAt(row);
    if (id.isEmpty())
        return;
    flip(m_open, id);
    refresh();
}

void UninstallSheetState::openStorePage()
{
    if (hasStorePage())
        m_model.services().links.open(QUrl(u"appstream:"_s + m_app->componentId));
}

void UninstallSheetState::uninstall()
{
    if (!canUninstall())
        return;
    m_working = true;
    Q_EMIT changed();
    const QPointer self(this);
    m_model.uninstalls().uninstall(*m_plan, chosenLeftovers(), [self] {
        if (!self)
            return;
        self->m_working = false;
        self->dismiss();
        Q_EMIT self->uninstalled();
    });
}

void UninstallSheetState::dismiss()
{
    if (!m_app || m_working)
        return;
    m_app.reset();
    m_plan.reset();
    m_model.uninstalls().stopPlanning();
    refresh();
    Q_EMIT openChanged();
}

} // namespace Quillbrook

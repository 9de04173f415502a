#include "Screens/Apps/AppsState.h"

#include "Core/AppModel.h"
#include "Platform/Clock.h"
#include "Platform/FileRevealer.h"
#include "Platform/HomeFolder.h"
#include "Scan/Format.h"
#include "Scan/NameQuery.h"
#include "Screens/Apps/AppsWords.h"
#include "Screens/SingleLine.h"

#include <QPointer>

#include <algorithm>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype mostLines = 3;

// Paths are bytes, of which each is one letter here.
QString idOf(const FoundOrphan &found)
{
    const auto &path = found.orphan.path;
    return QString::fromLatin1(path.data(), qsizetype(path.size()));
}

void flip(QSet<QString> &ids, const QString &id)
{
    if (!id.isEmpty() && !ids.remove(id))
        ids.insert(id);
}

} // namespace

AppsState::AppsState(AppModel &model, QObject *parent)
    : PaneState(parent)
    , m_model(model)
    , m_store(model.services().kit)
    , m_sheet(model)
{
    connect(&m_store, &AppsStore::appsChanged, this, &AppsState::refreshRows);
    connect(&m_store, &AppsStore::sizeChanged, this, &AppsState::refreshSize);
    connect(&m_store, &AppsStore::orphansChanged, this, &AppsState::refreshOrphans);
    connect(&m_store, &AppsStore::loadingChanged, this, [this] {
        Q_EMIT progressChanged();
        Q_EMIT rowsChanged();
        Q_EMIT orphansChanged();
    });
    connect(&m_sheet, &UninstallSheetState::uninstalled, this, [this] { m_store.load(true); });
    connect(&m_model.pathRemovals(), &PathRemovals::uninstallLogChanged, this, &AppsState::logChanged);
}

// Another visit may find other applications; until they are measured the sizes of the last one stand.
void AppsState::appear()
{
    m_linesBefore = m_model.pathRemovals().uninstallLog().size();
    Q_EMIT logChanged();
    m_store.load(m_store.isLoaded() && !m_store.isLoading());
}

void AppsState::disappear()
{
    setTab(int(Tab::installed));
    setFilter({});
    m_store.stop();
    m_open.clear();
    clearChosen();
    m_sheet.dismiss();
}

void AppsState::setTab(int tab)
{
    if (tab == int(m_tab) || tab < 0 || tab > int(Tab::orphans))
        return;
    m_tab = Tab(tab);
    Q_EMIT tabChanged();
}

void AppsState::setFilter(const QString &filter)
{
    if (filter == m_filter)
        return;
    m_filter = filter;
    Q_EMIT filterChanged();
    refreshRows();
}

QList<InstalledApp> AppsState::matching() const
{
    const NameQuery wanted(m_filter.trimmed());
    auto apps = m_store.apps();
    apps.removeIf([&](const InstalledApp &app) { return !wanted.isHeldBy(app.app.name.toStdString()); });
    return apps;
}

void AppsState::refreshRows()
{
    QList<AppsListModel::Entry> entries;
    for (const auto &app : matching())
        entries.append({ .id = app.key(), .row = QVariant::fromValue(AppsWords::row(app)) });
    m_rows.setEntries(entries);
    Q_EMIT rowsChanged();
}

void AppsState::refreshSize(qsizetype index)
{
    const auto &app = m_store.apps().at(index);
    m_rows.setRow(m_rows.rowOf(app.key()), QVariant::fromValue(AppsWords::row(app)));
}

void AppsState::refreshOrphans()
{
    QList<AppsListModel::Entry> entries;
    const auto home = m_model.services().kit.home.realHomeDirectory();
    const auto now = m_model.services().kit.clock.now();
    for (const auto &found : m_store.orphans()) {
        const auto id = idOf(found);
        auto row = AppsWords::row(found, home, now);
        row.isTicked = m_chosen.contains(id);
        row.isOpen = m_open.contains(id);
        entries.append({ .id = id, .row = QVariant::fromValue(row) });
    }
    m_orphans.setEntries(entries);
    Q_EMIT orphansChanged();
}

QString AppsState::emptyMessage() const
{
    if (m_rows.rowCount() > 0)
        return {};
    if (m_store.isNamed() || !m_store.isLoaded())
        return tr("No applications found.");
    return m_store.isStopped() ? tr("Stopped before any application was found.")
                               : tr("Looking for applications…");
}

QString AppsState::progress() const
{
    if (m_store.isStopped())
        return tr("Stopped before all was measured.");
    if (!m_store.isLoading() || !m_store.isNamed())
        return {};
    if (m_store.measured() < m_store.apps().size())
        return tr("Measuring %1 of %2…")
            .arg(Format::count(m_store.measured() + 1), Format::count(m_store.apps().size()));
    return tr("Looking for what removed apps left behind…");
}

QString AppsState::loadAction() const
{
    return m_store.isLoading() ? tr("Stop") : tr("Go on");
}

double AppsState::fraction() const
{
    return m_store.apps().isEmpty() ? 0 : double(m_store.measured()) / double(m_store.apps().size());
}

QString AppsState::orphansMessage() const
{
    if (hasOrphans())
        return {};
    if (m_store.isStopped())
        return tr("Stopped before it was known what removed apps left behind.");
    return m_store.isLoading()
        ? tr("Looking for what removed apps left behind…")
        : tr("Nothing here — every reverse-DNS folder in your Library belongs to an app you still have.");
}

std::vector<Orphan> AppsState::chosen() const
{
    std::vector<Orphan> orphans;
    for (const auto &found : m_store.orphans())
        if (m_chosen.contains(idOf(found)))
            orphans.push_back(found.orphan);
    return orphans;
}

QString AppsState::chosenCount() const
{
    return tr("%1 selected").arg(Format::count(qint64(chosen().size())));
}

QString AppsState::chosenSize() const
{
    qint64 bytes = 0;
    for (const auto &orphan : chosen())
        bytes += orphan.bytes;
    return Format::bytes(bytes);
}

QString AppsState::confirmTitle() const
{
    const auto count = chosen().size();
    return count == 1 ? tr("Move %1 leftover item to the Trash?").arg(count)
                      : tr("Move %1 leftover items to the Trash?").arg(count);
}

QString AppsState::log() const
{
    const auto &all = m_model.pathRemovals().uninstallLog();
    QStringList lines;
    for (const auto &line : all.first(std::clamp<qsizetype>(all.size() - m_linesBefore, 0, mostLines)))
        lines.append(singleLine(line));
    return lines.join(u'\n');
}

const InstalledApp *AppsState::appAt(int row) const
{
    const auto id = m_rows.idAt(row);
    const auto found = std::ranges::find(m_store.apps(), id, &InstalledApp::key);
    return found == m_store.apps().end() ? nullptr : &*found;
}

const Orphan *AppsState::orphanAt(int row) const
{
    const auto id = m_orphans.idAt(row);
    const auto found = std::ranges::find(m_store.orphans(), id, idOf);
    return found == m_store.orphans().end() ? nullptr : &found->orphan;
}

void AppsState::stopOrGoOn()
{
    if (m_store.isLoading())
        m_store.stop();
    else
        m_store.load(true);
}

void AppsState::reveal(int row)
{
    if (const auto *app = appAt(row))
        m_model.services().revealer.reveal(app->app.path);
}

void AppsState::askToUninstall(int row)
{
    if (const auto *app = appAt(row))
        m_sheet.open(*app, m_store.apps());
}

void AppsState::toggleOrphan(int row)
{
    if (m_removing)
        return;
    flip(m_chosen, m_orphans.idAt(row));
    refreshOrphans();
}

void AppsState::toggleEvidence(int row)
{
    flip(m_open, m_orphans.idAt(row));
    refreshOrphans();
}

void AppsState::revealOrphan(int row)
{
    if (const auto *orphan = orphanAt(row))
        m_model.services().revealer.reveal(orphan->path);
}

void AppsState::clearChosen()
{
    m_chosen.clear();
    refreshOrphans();
}

void AppsState::removeChosen()
{
    if (m_removing)
        return;
    m_removing = true;
    Q_EMIT orphansChanged();
    const QPointer self(this);
    m_model.uninstalls().removeOrphans(chosen(), [self] {
        if (!self)
            return;
        self->m_removing = false;
        self->clearChosen();
        self->m_store.load(true);
    });
}

} // namespace Quillbrook

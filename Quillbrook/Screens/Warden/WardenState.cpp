#include "Screens/Warden/WardenState.h"

#include "Core/AppModel.h"
#include "Platform/Clock.h"
#include "Platform/FileRevealer.h"
#include "Platform/HomeFolder.h"
#include "Scan/Format.h"
#include "Screens/Warden/WardenRows.h"

#include <utility>

namespace Quillbrook {

namespace {

qint64 sum(const QList<Finding> &findings)
{
    qint64 bytes = 0;
    for (const auto &finding : findings)
        bytes += finding.bytes;
    return bytes;
}

void flip(QSet<QString> &ids, const QString &id)
{
    if (!ids.remove(id))
        ids.insert(id);
}

} // namespace

WardenState::WardenState(AppModel &model, QObject *parent)
    : PaneState(parent)
    , m_model(model)
    , m_removal(model.removals())
    , m_earlier(model)
{
    connect(&m_model.scans(), &ScanDriver::phaseChanged, this, &WardenState::followPhase);
    connect(&m_model.scans(), &ScanDriver::reportChanged, this, &WardenState::refresh);
    connect(&m_model.scans(), &ScanDriver::scopeChanged, this, &WardenState::refresh);
    connect(&m_model.reclaims(), &ReclaimDriver::reclaimLogChanged, this, &WardenState::refresh);
    connect(&m_model.reclaims(), &ReclaimDriver::lastVerificationChanged, this, &WardenState::refresh);
    connect(&m_model.automation(), &AutomationDriver::offerChanged, this, &WardenState::refresh);
    connect(&m_model.reclaims(), &ReclaimDriver::safetyNetChanged, this, &WardenState::refresh);
    connect(&m_model.books(), &RemovalBooks::changed, this, &WardenState::followHeld);
    connect(&m_model.removals(), &RemovalQueue::busyChanged, this, &WardenState::followRemovals);
    refresh();
}

void WardenState::appear()
{
    tickDefaults();
}

void WardenState::tickDefaults()
{
    m_chosen = WardenRows::defaultSelection(m_model.scans().report());
    refresh();
    recheck();
}

// The disk is asked about each thing in the Trash, which is too much for every tick.
void WardenState::recheck()
{
    m_model.books().refresh();
}

void WardenState::followHeld()
{
    if (m_model.books().held().empty())
        m_heldShown = false;
    Q_EMIT pendingChanged();
    refresh();
}

// New findings arrive ticked until the person has shown a will of their own. What lies in the Trash may have
// left it during the scan either way.
void WardenState::followPhase()
{
    if (m_model.scans().phase().kind != Phase::Kind::ready)
        return;
    if (m_touched) {
        refresh();
        recheck();
    } else {
        tickDefaults();
    }
}

QList<Finding> WardenState::chosenFindings() const
{
    auto findings = WardenRows::actionable(m_model.scans().report());
    findings.removeIf([this](const Finding &finding) { return !m_chosen.contains(finding.id); });
    return findings;
}

void WardenState::toggle(int row)
{
    const auto *line = m_rows.at(row);
    if (!line || !line->selectable || m_model.removals().isBusy())
        return;
    if (line->kind == WardenLines::Kind::Held)
        return m_model.books().toggleKept(QString(line->id));
    flip(m_chosen, line->id);
    m_touched = true;
    refresh();
}

void WardenState::togglePath(int row)
{
    const auto *line = m_rows.at(row);
    if (line && line->opens)
        m_heldShown = !m_heldShown;
    else if (line && line->kind == WardenLines::Kind::Finding)
        flip(m_pathShown, line->id);
    else
        return;
    refresh();
}

void WardenState::reveal(int row)
{
    const auto *line = m_rows.at(row);
    if (!line || !m_model.scans().report())
        return;
    for (const auto &finding : m_model.scans().report()->findings)
        if (finding.id == line->id)
            return m_model.services().revealer.reveal(finding.rawPath);
}

void WardenState::act(int row, int button)
{
    const auto *line = m_rows.at(row);
    if (!line || line->kind != WardenLines::Kind::Banner)
        return;
    if (line->id == WardenRows::automationOfferBanner)
        return button == 0 ? m_model.automation().acceptOffer() : m_model.automation().declineOffer();
    if (line->id == WardenRows::verificationBanner)
        m_model.reclaims().dismissVerification();
    else if (line->id == WardenRows::pendingTrashBanner && !m_model.removals().isBusy())
        button == 0 ? m_model.reclaims().putBack() : askToFinish();
    else if (line->id == WardenRows::completeScanOffer)
        m_model.scans().scan({ .scope = Scope::complete });
}

void WardenState::askToReclaim()
{
    m_asked = chosenFindings();
    Q_EMIT confirmChanged();
    if (!m_asked.isEmpty())
        Q_EMIT reclaimAsked();
}

void WardenState::reclaim(bool permanently)
{
    const auto asked = std::exchange(m_asked, {});
    if (asked.isEmpty())
        return;
    m_isClearing = true;
    m_model.reclaims().reclaim(asked, permanently);
    followRemovals();
}

// What goes stays ticked until it has gone.
void WardenState::followRemovals()
{
    if (!m_model.removals().isBusy() && std::exchange(m_isClearing, false))
        m_chosen.clear();
    refresh();
}

void WardenState::askToFinish()
{
    m_earlier.hideRows();
    Q_EMIT finishAsked();
}

void WardenState::finishRemoving()
{
    m_model.reclaims().finishRemoving();
}

bool WardenState::canFinish() const
{
    return m_model.books().deletableSum().count > 0;
}

QString WardenState::confirmTitle() const
{
    return tr("Move %1 to the Trash?").arg(Format::bytes(sum(m_asked)));
}

QString WardenState::confirmMessage() const
{
    auto message
        = tr("Moving to the Trash is undoable, but it does not free the space until the Trash is emptied — "
             "Quillbrook will offer to finish the job.");
    if (m_model.reclaims().safetyNet() && m_model.reclaims().safetyNet()->isUnprotected())
        message += tr(" This Mac has no backup, so deleting permanently is final.");
    return message;
}

QString WardenState::confirmAction() const
{
    return tr("Move %1 items to Trash").arg(QString::number(m_asked.size()));
}

QString WardenState::finishTitle() const
{
    return tr("Permanently remove %1?").arg(Format::bytes(m_model.books().deletableSum().bytes));
}

void WardenState::refresh()
{
    if (!m_heldShown)
        m_heldRows.clear();
    m_rows.setRows(WardenRows::rows({ .report = m_model.scans().report(),
        .chosen = m_chosen,
        .pathShown = m_pathShown,
        .safetyNet = m_model.reclaims().safetyNet(),
        .verification = m_model.reclaims().lastVerification(),
        .stayedReasons = m_model.reclaims().stayedReasons(),
        .automationOffer = m_model.automation().offer(),
        .held = m_model.books().held(),
        .heldRows = m_heldRows,
        .heldShown = m_heldShown,
        .heldBack = m_model.books().kept(),
        .isBusy = m_model.removals().isBusy(),
        .offersCompleteScan = m_model.scans().scope() == Scope::quiet,
        .log = m_model.reclaims().reclaimLog(),
        .home = m_model.services().kit.home.homeDirectory(),
        .now = m_model.services().kit.clock.now() }));
    setSums();
    setEmptyMessage();
}

void WardenState::setSums()
{
    const auto chosen = chosenFindings();
    auto total = tr("%1 selected").arg(Format::bytes(sum(chosen)));
    auto counts = tr("%1 of %2 reclaimable items")
                      .arg(Format::count(chosen.size()),
                          Format::count(WardenRows::actionable(m_model.scans().report()).size()));
    const bool canReclaim = !chosen.isEmpty() && !m_model.removals().isBusy();
    if (m_total == total && m_counts == counts && m_canReclaim == canReclaim)
        return;
    m_total = std::move(total);
    m_counts = std::move(counts);
    m_canReclaim = canReclaim;
    Q_EMIT selectionChanged();
}

void WardenState::setEmptyMessage()
{
    const bool isEmpty = !m_model.scans().report() || m_model.scans().report()->deletable().isEmpty();
    auto message = isEmpty ? tr("Nothing to clear was found.") : QString();
    if (m_emptyMessage == message)
        return;
    m_emptyMessage = std::move(message);
    Q_EMIT emptyMessageChanged();
}

} // namespace Quillbrook

#include "Core/AppModel.h"

#include "Core/Background.h"

#include <utility>

namespace Quillbrook {

// A signal reaches the connections in the order in which they were made. These are the first, so that every
// driver has followed before a screen hears of anything.
AppModel::AppModel(const AppServices &services, QObject *parent)
    : QObject(parent)
    , m_services(services)
    , m_scans(m_services.kit, this)
    , m_volume(m_services.kit, m_scans, this)
    , m_navigation(m_scans, this)
    , m_removals(this)
    , m_books(m_services.kit, m_removals, this)
    , m_reclaims(m_services.kit, { .scans = m_scans, .volume = m_volume, .books = m_books }, this)
    , m_pathRemovals(
          m_services.kit, { .navigation = m_navigation, .volume = m_volume, .books = m_books }, this)
    , m_automation(m_services,
          { .scans = m_scans, .navigation = m_navigation, .volume = m_volume, .removals = ruleRemovals() },
          this)
    , m_uninstalls(m_services.kit, m_pathRemovals, this)
    , m_offloads(m_services.kit, { .scans = m_scans, .queue = m_removals }, this)
    , m_watch(m_services, this)
    , m_updates(m_services, this)
    , m_questions(m_scans, this)
{
    connect(&m_scans, &ScanDriver::started, &m_navigation, &Navigation::leaveTree);
    connect(&m_scans, &ScanDriver::treeChanged, &m_navigation, &Navigation::enterTree);
    connect(&m_scans, &ScanDriver::finished, this, &AppModel::endScan);
    // What changed the disk is measured again.
    const auto measureAgain = [this] {
        m_scans.settleBeforeEvaluation(m_books.flushing());
        m_scans.scan({});
    };
    connect(&m_reclaims, &ReclaimDriver::diskChanged, this, measureAgain);
    connect(&m_automation, &AutomationDriver::diskChanged, this, measureAgain);
    connect(&m_offloads, &OffloadDriver::diskChanged, this, [this] { m_scans.scan({}); });
    connect(&m_pathRemovals, &PathRemovals::selectionTold, &m_reclaims, &ReclaimDriver::prependLog);
    connect(&m_reclaims, &ReclaimDriver::findingsCleared, &m_automation, &AutomationDriver::offerAfter);
    connect(&m_automation, &AutomationDriver::offerFailed, &m_reclaims, &ReclaimDriver::appendLog);
    connect(&m_watch, &WatchDriver::lastWatchChanged, &m_automation,
        [this] { m_automation.takeLook(*m_watch.lastWatch()); });
    // What is measured while things go would be wrong before it is shown. A copy may take hours, and what
    // goes at its end is measured again.
    connect(&m_removals, &RemovalQueue::turnChanged, this,
        [this] { m_scans.hold(m_removals.isBusy() && !m_removals.isCopying()); });
}

AppModel::~AppModel()
{
    m_removals.close();
    m_removals.wait();
}

RuleRemovals AppModel::ruleRemovals()
{
    return {
        .clear = [this](const QList<Finding> &findings,
                     const RuleRemovals::Cleared &cleared) { m_reclaims.clearForRules(findings, cleared); },
        .due =
            [this](const QDateTime &now, qint64 freeBytes, const RuleRemovals::Due &due) {
                const auto read = [&books = m_books, now, freeBytes] {
                    return books.ledger().ruleItemsDue(now, freeBytes);
                };
                m_removals.ask(read).then(this, [this, due](std::vector<TrashedItem> items) {
                    std::erase_if(
                        items, [this](const TrashedItem &item) { return m_books.kept().contains(item.id); });
                    due(items);
                });
            },
        .purge = [this](const std::vector<TrashedItem> &items,
                     const RuleRemovals::Purged &purged) { m_reclaims.purge(items, purged); },
    };
}

// The calls at a scan's end. Their order counts: a claim is verified by figures that were read for it.
void AppModel::endScan()
{
    m_reclaims.verifyClaim();
    m_volume.refreshVolume();
    m_automation.run();
    m_questions.refreshSuggestedQuestions();
}

void AppModel::start(Background &background)
{
    startRuleClock();
    m_watch.configureWatcher(background);
    background.refresh();
    const bool isFirst = !std::exchange(m_hasStarted, true);
    if (isFirst)
        m_updates.checkForUpdate();
    m_volume.refreshVolume();
    if (isFirst)
        m_reclaims.refreshSafetyNet();
}

void AppModel::startRuleClock()
{
    m_volume.startClock();
    m_automation.startClock();
}

} // namespace Quillbrook

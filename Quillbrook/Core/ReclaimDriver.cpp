#include "Core/ReclaimDriver.h"

#include "Catalogue/StorageCatalogue.h"
#include "Core/Navigation.h"
#include "Core/ScanDriver.h"
#include "Core/Translation.h"
#include "Core/VolumeFigures.h"
#include "Platform/Clock.h"
#include "Platform/FileFacts.h"
#include "Platform/HomeFolder.h"
#include "Platform/Trash.h"
#include "Platform/UserDefaults.h"
#include "Removal/HostGuards.h"
#include "Removal/Reclaimer.h"
#include "Scan/FastScanner.h"
#include "Scan/Format.h"

#include <QCoroFuture>
#include <QPointer>
#include <QtConcurrent>

#include <algorithm>
#include <limits>
#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

const auto reclaimedBytesKey = u"Quillbrook.reclaimedBytes"_s;

QString done(const QString &what)
{
    return u"✓ "_s + what;
}

QString failed(const QString &what)
{
    return u"✗ "_s + what;
}

QString line(const Reclaimer::Outcome &outcome)
{
    const auto &title = outcome.finding.rule.title;
    if (outcome.error)
        return failed(u"%1: %2"_s.arg(title, *outcome.error));
    const auto fate = outcome.permanent ? u"deleted"_s : u"to Trash"_s;
    return done(u"%1 — %2 %3"_s.arg(title, Format::bytes(outcome.bytesMoved), fate));
}

} // namespace

ReclaimDriver::ReclaimDriver(const KitServices &kit, const Others &others, QObject *parent)
    : QObject(parent)
    , m_kit(kit)
    , m_scans(others.scans)
    , m_navigation(others.navigation)
    , m_volume(others.volume)
    , m_ledger(LedgerServices::of(kit), TrashLedger::standardStore(kit.dataFolder))
    , m_reclaimedSoFar(std::max<qint64>(kit.defaults.integer(reclaimedBytesKey).value_or(0), 0))
{
    m_askingPool.setMaxThreadCount(1);
}

// The rows of a finding that failed in part stay unknown to the ledger, on purpose: what it holds is what was
// claimed.
void ReclaimDriver::reclaim(const QList<Finding> &findings, bool permanently)
{
    m_volume.refreshVolume();
    m_freeBeforeReclaim = presentFree();
    const Reclaimer reclaimer{ .services = RemovalServices::of(m_kit),
        .homeDirectory = m_kit.home.homeDirectory() };
    const auto disposal = permanently ? Reclaimer::Disposal::permanent : Reclaimer::Disposal::toTrash;
    qint64 total = 0;
    for (const auto &outcome : reclaimer.reclaimAll(findings, disposal)) {
        appendLog(line(outcome));
        if (outcome.error)
            continue;
        total += outcome.bytesMoved;
        record(outcome.trashed);
    }
    recordReclaimed(total);
    m_pendingClaim = total;
    if (!permanently)
        offerToFree(total);
    Q_EMIT diskChanged();
}

void ReclaimDriver::removeItems(const QList<StorageItem> &items, const Finding &finding)
{
    if (finding.rule.safety == Safety::reportOnly)
        return;
    std::vector<TrashedItem> rows;
    qint64 total = 0;
    for (const auto &item : items) {
        if (!item.removable)
            continue;
        if (auto row = moveItem(item)) {
            total += item.bytes;
            rows.push_back(std::move(*row));
        }
    }
    record(rows);
    recordReclaimed(total);
    if (total <= 0)
        return;
    offerToFree(total);
    Q_EMIT diskChanged();
}

std::optional<TrashedItem> ReclaimDriver::moveItem(const StorageItem &item)
{
    const auto moved = m_kit.trash.move(item.rawPath);
    if (!moved) {
        appendLog(failed(u"%1: %2"_s.arg(item.name, moved.error())));
        return std::nullopt;
    }
    appendLog(done(u"%1 — %2 to Trash"_s.arg(item.name, Format::bytes(item.bytes))));
    return TrashedItem::moved({ .label = item.name,
        .originalPath = item.rawPath,
        .trashPath = *moved,
        .bytes = item.bytes,
        .movedAt = m_kit.clock.now() });
}

std::function<std::optional<QString>()> ReclaimDriver::guardedPath(const NodeSnapshot &snapshot) const
{
    // For a person to read; the log, which a refused removal ends in, stays English.
    auto guards = m_kit.guards;
    guards.wording = translatedTableText;
    return [path = m_navigation.rawPath(snapshot), home = rawHome(), guards = std::move(guards)] {
        return PathRemoval::refusal(path, home, &guards);
    };
}

std::string ReclaimDriver::rawHome() const
{
    return m_kit.home.rawHomeDirectory();
}

// The tree goes on showing what was removed until the next scan.
void ReclaimDriver::removeSelected(bool permanent)
{
    const auto selected = m_navigation.selection();
    if (!selected)
        return;
    const auto &item = *selected;
    const auto removal = PathRemoval::remove(RemovalServices::of(m_kit),
        { .path = m_navigation.rawPath(item), .bytes = item.bytes, .label = item.name },
        { .permanent = permanent, .home = rawHome(), .host = &m_kit.guards });
    if (removal.error) {
        prependLog(failed(*removal.error));
        return;
    }
    if (removal.trashed)
        record({ *removal.trashed });
    const auto fate = permanent ? u"removed"_s : u"moved to the Trash"_s;
    prependLog(done(u"%1 — %2 %3"_s.arg(item.name, Format::bytes(item.bytes), fate)));
    recordReclaimed(removal.bytes);
    m_navigation.setSelection(std::nullopt);
    m_volume.refreshVolume();
}

void ReclaimDriver::absorb(const std::vector<PathRemoval::Removal> &removals, const QString &subject)
{
    qint64 total = 0;
    std::vector<TrashedItem> rows;
    for (const auto &removal : removals) {
        if (removal.error) {
            m_uninstallLog.prepend(failed(*removal.error));
            continue;
        }
        total += removal.bytes;
        if (removal.trashed)
            rows.push_back(*removal.trashed);
    }
    if (!rows.empty())
        record(rows);
    if (total > 0) {
        m_uninstallLog.prepend(
            done(u"%1 — %2 moved to the Trash. The space comes back when the Trash is emptied."_s.arg(
                subject, Format::bytes(total))));
        recordReclaimed(total);
    }
    Q_EMIT uninstallLogChanged();
    m_volume.refreshVolume();
}

void ReclaimDriver::finishRemoving()
{
    const auto purged = m_ledger.purge();
    Q_EMIT ledgerChanged();
    if (purged.removed >= 1)
        appendLog(done(u"permanently removed %1 items · %2 actually freed"_s.arg(
            QString::number(purged.removed), Format::bytes(purged.bytes))));
    m_volume.refreshVolume();
    Q_EMIT diskChanged();
}

// What was claimed is measured once a scan has ended after it, be it one that was under way already.
void ReclaimDriver::verifyClaim()
{
    if (!m_pendingClaim || !m_freeBeforeReclaim)
        return;
    const auto claimed = *std::exchange(m_pendingClaim, std::nullopt);
    const auto before = *std::exchange(m_freeBeforeReclaim, std::nullopt);
    m_volume.refreshVolume();
    m_lastVerification
        = Verification{ .claimedBytes = claimed, .freeBefore = before, .freeAfter = m_volume.volumeFree() };
    Q_EMIT lastVerificationChanged();
}

void ReclaimDriver::dismissVerification()
{
    if (!m_lastVerification)
        return;
    m_lastVerification.reset();
    Q_EMIT lastVerificationChanged();
}

void ReclaimDriver::clearFreeNowOffer()
{
    if (!m_freeNowOffer)
        return;
    m_freeNowOffer.reset();
    Q_EMIT freeNowOfferChanged();
}

void ReclaimDriver::offerToFree(qint64 bytes)
{
    if (bytes <= 0)
        return;
    m_freeNowOffer = bytes;
    Q_EMIT freeNowOfferChanged();
}

// The report's figure is of the last scan; a claim is held against what was free right before it.
qint64 ReclaimDriver::presentFree() const
{
    return m_volume.liveFree() >= 1 ? m_volume.liveFree() : m_volume.volumeFree();
}

void ReclaimDriver::record(const std::vector<TrashedItem> &items)
{
    m_ledger.record(items);
    Q_EMIT ledgerChanged();
}

void ReclaimDriver::recordReclaimed(qint64 bytes)
{
    if (bytes <= 0)
        return;
    // What was stored may be any number.
    constexpr auto most = std::numeric_limits<qint64>::max();
    m_reclaimedSoFar = m_reclaimedSoFar > most - bytes ? most : m_reclaimedSoFar + bytes;
    m_kit.defaults.setInteger(reclaimedBytesKey, m_reclaimedSoFar);
    Q_EMIT reclaimedSoFarChanged();
}

void ReclaimDriver::appendLog(const QString &line)
{
    m_reclaimLog.append(line);
    Q_EMIT reclaimLogChanged();
}

void ReclaimDriver::prependLog(const QString &line)
{
    m_reclaimLog.prepend(line);
    Q_EMIT reclaimLogChanged();
}

QList<StorageItem> ReclaimDriver::items(const Finding &finding) const
{
    if (!m_scans.tree() || m_scans.rootNode() < 0)
        return {};
    const auto &tree = *m_scans.tree();
    return StorageCatalogue::items(CatalogueServices::of(m_kit), finding, tree, m_scans.rootNode(),
        { .homeDirectory = tree.path(m_scans.rootNode()), .host = &m_scans.hostCatalogue() });
}

qint64 ReclaimDriver::measure(const std::string &path) const
{
    const auto kind = m_kit.files.kind(path);
    if (kind != FileKind::directory)
        return kind ? m_kit.files.length(path).value_or(0) : 0;
    FastScanner scanner(m_kit.directories);
    const auto result = scanner.scan({ .rootPath = path,
        .threads = FastScanner::defaultThreadCount(m_kit.processors),
        .exclusions = FastScanner::defaultExclusions() });
    return result.tree && result.root >= 0 ? result.tree->size(result.root) : 0;
}

void ReclaimDriver::refreshSafetyNet()
{
    askForSafetyNet();
}

QCoro::Task<> ReclaimDriver::askForSafetyNet()
{
    const QPointer self(this);
    // The future has a name because the compiler destroys what is made in an awaiting expression twice.
    const auto asking
        = QtConcurrent::run(&m_askingPool, [&processes = m_kit.processes, &backups = m_kit.backups] {
              return SafetyNet::current(processes, backups);
          });
    const auto net = co_await asking;
    if (!self)
        co_return;
    m_safetyNet = net;
    Q_EMIT safetyNetChanged();
}

} // namespace Quillbrook

#include "Catalogue/StorageCatalogue.h"
#include "Core/AppModel.h"
#include "Platform/Clock.h"
#include "Platform/FileFacts.h"
#include "Platform/HomeFolder.h"
#include "Platform/Trash.h"
#include "Platform/UserDefaults.h"
#include "Removal/HostGuards.h"
#include "Removal/Reclaimer.h"
#include "Scan/Format.h"

#include <QCoroFuture>
#include <QtConcurrent>

#include <limits>
#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

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

QString AppModel::reclaimedBytesKey()
{
    return u"Quillbrook.reclaimedBytes"_s;
}

// The rows of a finding that failed in part stay unknown to the ledger, on purpose: what it holds is what was
// claimed.
void AppModel::reclaim(const QList<Finding> &findings, bool permanently)
{
    refreshVolume();
    m_freeBeforeReclaim = presentFree();
    const Reclaimer reclaimer{ .services = RemovalServices::of(m_services.kit),
        .homeDirectory = m_services.kit.home.homeDirectory() };
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
    scan({});
}

void AppModel::removeItems(const QList<StorageItem> &items, const Finding &finding)
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
    scan({});
}

std::optional<TrashedItem> AppModel::moveItem(const StorageItem &item)
{
    const auto moved = m_services.kit.trash.move(item.rawPath);
    if (!moved) {
        appendLog(failed(u"%1: %2"_s.arg(item.name, moved.error())));
        return std::nullopt;
    }
    appendLog(done(u"%1 — %2 to Trash"_s.arg(item.name, Format::bytes(item.bytes))));
    return TrashedItem::moved({ .label = item.name,
        .originalPath = item.rawPath,
        .trashPath = *moved,
        .bytes = item.bytes,
        .movedAt = m_services.kit.clock.now() });
}

std::function<std::optional<QString>()> AppModel::guardedPath(const NodeSnapshot &snapshot) const
{
    return [path = rawPath(snapshot), home = rawHome(), guards = m_services.kit.guards] {
        return PathRemoval::refusal(path, home, &guards);
    };
}

std::string AppModel::rawHome() const
{
    return m_services.kit.home.rawHomeDirectory();
}

// The tree goes on showing what was removed until the next scan.
void AppModel::removeSelected(bool permanent)
{
    if (!m_selection)
        return;
    const auto item = *m_selection;
    const auto removal = PathRemoval::remove(RemovalServices::of(m_services.kit),
        { .path = rawPath(item), .bytes = item.bytes, .label = item.name },
        { .permanent = permanent, .home = rawHome(), .host = &m_services.kit.guards });
    if (removal.error) {
        prependLog(failed(*removal.error));
        return;
    }
    if (removal.trashed)
        record({ *removal.trashed });
    const auto fate = permanent ? u"removed"_s : u"moved to the Trash"_s;
    prependLog(done(u"%1 — %2 %3"_s.arg(item.name, Format::bytes(item.bytes), fate)));
    recordReclaimed(removal.bytes);
    setSelection(std::nullopt);
    refreshVolume();
}

void AppModel::absorb(const std::vector<PathRemoval::Removal> &removals, const QString &subject)
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
    refreshVolume();
}

void AppModel::finishRemoving()
{
    const auto purged = m_ledger.purge();
    Q_EMIT ledgerChanged();
    if (purged.removed >= 1)
        appendLog(done(u"permanently removed %1 items · %2 actually freed"_s.arg(
            QString::number(purged.removed), Format::bytes(purged.bytes))));
    refreshVolume();
    scan({});
}

// What was claimed is measured once a scan has ended after it, be it one that was under way already.
void AppModel::verifyClaim()
{
    if (!m_pendingClaim || !m_freeBeforeReclaim)
        return;
    const auto claimed = *std::exchange(m_pendingClaim, std::nullopt);
    const auto before = *std::exchange(m_freeBeforeReclaim, std::nullopt);
    refreshVolume();
    m_lastVerification
        = Verification{ .claimedBytes = claimed, .freeBefore = before, .freeAfter = volumeFree() };
    Q_EMIT lastVerificationChanged();
}

void AppModel::dismissVerification()
{
    if (!m_lastVerification)
        return;
    m_lastVerification.reset();
    Q_EMIT lastVerificationChanged();
}

void AppModel::clearFreeNowOffer()
{
    if (!m_freeNowOffer)
        return;
    m_freeNowOffer.reset();
    Q_EMIT freeNowOfferChanged();
}

void AppModel::offerToFree(qint64 bytes)
{
    if (bytes <= 0)
        return;
    m_freeNowOffer = bytes;
    Q_EMIT freeNowOfferChanged();
}

// The report's figure is of the last scan; a claim is held against what was free right before it.
qint64 AppModel::presentFree() const
{
    return m_liveFree >= 1 ? m_liveFree : volumeFree();
}

void AppModel::record(const std::vector<TrashedItem> &items)
{
    m_ledger.record(items);
    Q_EMIT ledgerChanged();
}

void AppModel::recordReclaimed(qint64 bytes)
{
    if (bytes <= 0)
        return;
    // What was stored may be any number.
    constexpr auto most = std::numeric_limits<qint64>::max();
    m_reclaimedSoFar = m_reclaimedSoFar > most - bytes ? most : m_reclaimedSoFar + bytes;
    m_services.kit.defaults.setInteger(reclaimedBytesKey(), m_reclaimedSoFar);
    Q_EMIT reclaimedSoFarChanged();
}

void AppModel::appendLog(const QString &line)
{
    m_reclaimLog.append(line);
    Q_EMIT reclaimLogChanged();
}

void AppModel::prependLog(const QString &line)
{
    m_reclaimLog.prepend(line);
    Q_EMIT reclaimLogChanged();
}

QList<StorageItem> AppModel::items(const Finding &finding) const
{
    if (!m_tree || m_rootNode < 0)
        return {};
    return StorageCatalogue::items(CatalogueServices::of(m_services.kit), finding, *m_tree, m_rootNode);
}

qint64 AppModel::measure(const std::string &path) const
{
    const auto kind = m_services.kit.files.kind(path);
    if (kind != FileKind::directory)
        return kind ? m_services.kit.files.length(path).value_or(0) : 0;
    FastScanner scanner(m_services.kit.directories);
    const auto result = scanner.scan({ .rootPath = path,
        .threads = FastScanner::defaultThreadCount(m_services.kit.processors),
        .exclusions = FastScanner::defaultExclusions() });
    return result.tree && result.root >= 0 ? result.tree->size(result.root) : 0;
}

void AppModel::refreshSafetyNet()
{
    askForSafetyNet();
}

QCoro::Task<> AppModel::askForSafetyNet()
{
    const QPointer self(this);
    // The future has a name because the compiler destroys what is made in an awaiting expression twice.
    const auto asking = QtConcurrent::run(
        &m_askingPool, [&processes = m_services.kit.processes, &backups = m_services.kit.backups] {
            return SafetyNet::current(processes, backups);
        });
    const auto net = co_await asking;
    if (!self)
        co_return;
    m_safetyNet = net;
    Q_EMIT safetyNetChanged();
}

} // namespace Quillbrook

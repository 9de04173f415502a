#include "Core/ReclaimDriver.h"

#include "Catalogue/StorageCatalogue.h"
#include "Core/Navigation.h"
#include "Core/ScanDriver.h"
#include "Core/Translation.h"
#include "Core/VolumeFigures.h"
#include "Platform/Clock.h"
#include "Platform/FileFacts.h"
#include "Platform/HomeFolder.h"
#include "Platform/SpaceHolders.h"
#include "Platform/Trash.h"
#include "Platform/UserDefaults.h"
#include "Removal/Clearance.h"
#include "Removal/HostGuards.h"
#include "Removal/StayedSpace.h"
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

// Shared by the threads that it goes through, one after the other.
struct ReclaimDriver::Clearing
{
    Clearance::Order order{};
    QString home{};
    std::vector<Reclaimer::Outcome> outcomes{};
    qint64 bytes = 0;
    qint64 freeBefore = 0;
    std::shared_ptr<StayedSpace> stayed{};
    std::vector<HeldItem> held{};
};

ReclaimDriver::ReclaimDriver(const KitServices &kit, const Others &others, QObject *parent)
    : QObject(parent)
    , m_kit(kit)
    , m_scans(others.scans)
    , m_navigation(others.navigation)
    , m_volume(others.volume)
    , m_queue(others.queue)
    , m_ledger(LedgerServices::of(kit), TrashLedger::standardStore(kit.dataFolder))
    , m_journal(
          kit.reading, kit.writing, RemovalJournal::besideLedger(TrashLedger::standardStore(kit.dataFolder)))
    , m_reclaimedSoFar(std::max<qint64>(kit.defaults.integer(reclaimedBytesKey).value_or(0), 0))
{
    m_askingPool.setMaxThreadCount(1);
    m_flushPool.setMaxThreadCount(1);
    books().takeUp(m_reclaimedSoFar, [this](qint64 bytes) { recordReclaimed(bytes); });
    refreshHeld();
}

ReclaimDriver::~ReclaimDriver() = default;

Books ReclaimDriver::books()
{
    return { .ledger = m_ledger, .journal = m_journal, .trash = m_kit.trash };
}

// The rows of a finding that failed in part stay unknown to the ledger, on purpose: what it holds is what was
// claimed.
void ReclaimDriver::reclaim(const QList<Finding> &findings, bool permanently)
{
    const auto clearing = std::make_shared<Clearing>();
    clearing->order = { .findings = findings,
        .disposal = permanently ? Reclaimer::Disposal::permanent : Reclaimer::Disposal::toTrash };
    clear(clearing, [this, clearing](const auto & /*outcomes*/) { takeOutcomes(*clearing); });
}

void ReclaimDriver::clearForRules(const QList<Finding> &findings, const Cleared &cleared)
{
    const auto clearing = std::make_shared<Clearing>();
    clearing->order = { .findings = findings, .byRule = true };
    clear(clearing, cleared);
}

void ReclaimDriver::clear(const std::shared_ptr<Clearing> &clearing, const Cleared &cleared)
{
    const bool permanently = clearing->order.disposal == Reclaimer::Disposal::permanent;
    const auto begin = [this, clearing] {
        m_volume.refreshVolume();
        clearing->freeBefore = presentFree();
        clearing->order.reclaimedSoFar = m_reclaimedSoFar;
        clearing->home = m_kit.home.homeDirectory();
    };
    const auto work = [this, clearing, permanently](const RemovalQueue::Watch &watch) {
        if (permanently) {
            std::vector<std::string> paths;
            for (const auto &finding : clearing->order.findings)
                paths.push_back(finding.path.toStdString());
            clearing->stayed = std::make_shared<StayedSpace>(m_kit.spaceHolders, std::move(paths));
        }
        const auto hold = m_kit.trash.hold();
        Clearance clearance(RemovalServices::of(m_kit), m_journal, clearing->home);
        clearing->outcomes = clearance.clear(clearing->order,
            { .progress =
                    [&watch](const Clearance::Progress &at) {
                        watch.progress({ .number = at.finding,
                            .count = at.findings,
                            .name = translatedTableText(at.title),
                            .bytes = at.bytes,
                            .inside = static_cast<double>(at.entry - 1)
                                / static_cast<double>(std::max<qsizetype>(at.entries, 1)) });
                    },
                .stop = watch.stop });
        if (clearing->stayed)
            clearing->stayed->removalEnded();
        clearing->bytes = books().record(clearing->outcomes, clearing->order.byRule);
        clearing->held = books().held();
    };
    const auto end = [this, clearing, cleared] {
        // What a rule cleared is not the person's doing.
        closeBooks(clearing->order.byRule ? 0 : clearing->bytes, std::move(clearing->held));
        cleared(clearing->outcomes);
    };
    m_queue.enqueue({ .verb = permanently ? RemovalQueue::Verb::deleting : RemovalQueue::Verb::moving,
        .begin = begin,
        .work = work,
        .end = end });
}

void ReclaimDriver::takeOutcomes(const Clearing &clearing)
{
    std::vector<QString> ids;
    QList<Finding> cleared;
    for (const auto &outcome : clearing.outcomes) {
        appendLog(line(outcome));
        if (outcome.error)
            continue;
        cleared.append(outcome.finding);
        for (const auto &item : outcome.trashed)
            ids.push_back(item.id);
    }
    const bool isInTrash = clearing.order.disposal == Reclaimer::Disposal::toTrash;
    // A claim and what was free before it belong together: neither is ever held against another's.
    m_pendingClaim = Claim{ .bytes = clearing.bytes,
        .freeBefore = clearing.freeBefore,
        .isInTrash = isInTrash,
        .stayed = clearing.stayed };
    Q_EMIT findingsCleared(cleared);
    if (isInTrash)
        offerToFree(clearing.bytes, ids);
    Q_EMIT diskChanged();
}

void ReclaimDriver::removeItems(const QList<StorageItem> &items, const Finding &finding)
{
    if (finding.rule.safety == Safety::reportOnly)
        return;
    struct Moving
    {
        QList<StorageItem> items{};
        qint64 reclaimedSoFar = 0;
        std::vector<std::expected<TrashedItem, QString>> moved{};
        std::vector<HeldItem> held{};
    };
    const auto moving = std::make_shared<Moving>();
    for (const auto &item : items)
        if (item.removable)
            moving->items.append(item);
    const auto work = [this, moving, finding](const RemovalQueue::Watch &watch) {
        const auto hold = m_kit.trash.hold();
        const Reclaimer reclaimer{ .services = RemovalServices::of(m_kit),
            .homeDirectory = m_kit.home.homeDirectory(),
            .journal = &m_journal };
        std::vector<TrashedItem> rows;
        qint64 bytes = 0;
        m_journal.startBatch(moving->reclaimedSoFar);
        for (const auto &item : moving->items) {
            if (watch.stop.stop_requested())
                break;
            watch.progress({ .number = static_cast<qsizetype>(moving->moved.size()) + 1,
                .count = moving->items.size(),
                .name = item.name,
                .bytes = bytes });
            moving->moved.push_back(reclaimer.moveItem(item, finding));
            if (const auto &moved = moving->moved.back()) {
                bytes += moved->bytes;
                rows.push_back(*moved);
            }
        }
        m_ledger.record(rows);
        moving->held = books().held();
    };
    const auto end = [this, moving] {
        qint64 bytes = 0;
        for (const auto &moved : moving->moved)
            bytes += moved ? moved->bytes : 0;
        closeBooks(bytes, std::move(moving->held));
        QStringList names;
        for (const auto &item : moving->items)
            names.append(item.name);
        takeMembers(moving->moved, names);
    };
    m_queue.enqueue(
        { .begin = [this, moving] { moving->reclaimedSoFar = m_reclaimedSoFar; }, .work = work, .end = end });
}

void ReclaimDriver::takeMembers(
    const std::vector<std::expected<TrashedItem, QString>> &moved, const QStringList &names)
{
    std::vector<QString> ids;
    qint64 total = 0;
    for (size_t index = 0; index < moved.size(); ++index) {
        const auto &name = names.at(static_cast<qsizetype>(index));
        const auto &one = moved[index];
        if (!one) {
            appendLog(failed(u"%1: %2"_s.arg(name, one.error())));
            continue;
        }
        appendLog(done(u"%1 — %2 to Trash"_s.arg(name, Format::bytes(one->bytes))));
        total += one->bytes;
        ids.push_back(one->id);
    }
    if (total <= 0)
        return;
    offerToFree(total, ids);
    Q_EMIT diskChanged();
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

std::function<std::uint64_t()> ReclaimDriver::inodeOf(const NodeSnapshot &snapshot) const
{
    return [path = m_navigation.rawPath(snapshot)] { return inodeAt(path).value_or(0); };
}

std::string ReclaimDriver::rawHome() const
{
    return m_kit.home.rawHomeDirectory();
}

// The tree goes on showing what was removed until the next scan.
void ReclaimDriver::removeSelected(bool permanent, std::uint64_t inode)
{
    const auto selected = m_navigation.selection();
    if (!selected)
        return;
    struct Removing
    {
        NodeSnapshot item{};
        PathRemoval::Item order{};
        qint64 reclaimedSoFar = 0;
        PathRemoval::Removal removal{};
        std::vector<HeldItem> held{};
    };
    const auto removing = std::make_shared<Removing>();
    removing->item = *selected;
    removing->order = { .path = m_navigation.rawPath(*selected),
        .bytes = selected->bytes,
        .label = selected->name,
        .picked = PathRemoval::Picked{ .isDirectory = selected->isDirectory, .inode = inode } };
    const auto work = [this, removing, permanent](const RemovalQueue::Watch &watch) {
        watch.progress({ .number = 1, .count = 1, .name = removing->order.label });
        m_journal.startBatch(removing->reclaimedSoFar);
        removing->removal = PathRemoval::remove(RemovalServices::of(m_kit), removing->order,
            { .permanent = permanent, .home = rawHome(), .host = &m_kit.guards, .journal = &m_journal });
        if (removing->removal.trashed)
            m_ledger.record({ *removing->removal.trashed });
        removing->held = books().held();
    };
    const auto end = [this, removing, permanent] {
        closeBooks(removing->removal.bytes, std::move(removing->held));
        takeSelected(removing->removal, removing->item, permanent);
    };
    m_queue.enqueue({ .verb = permanent ? RemovalQueue::Verb::deleting : RemovalQueue::Verb::moving,
        .begin = [this, removing] { removing->reclaimedSoFar = m_reclaimedSoFar; },
        .work = work,
        .end = end });
}

void ReclaimDriver::takeSelected(
    const PathRemoval::Removal &removal, const NodeSnapshot &item, bool permanent)
{
    if (removal.error) {
        prependLog(failed(*removal.error));
        return;
    }
    const auto fate = permanent ? u"removed"_s : u"moved to the Trash"_s;
    prependLog(done(u"%1 — %2 %3"_s.arg(item.name, Format::bytes(item.bytes), fate)));
    // Another thing may have been selected meanwhile.
    if (m_navigation.selection() == item)
        m_navigation.setSelection(std::nullopt);
    m_volume.refreshVolume();
}

void ReclaimDriver::removeBy(
    const Work &work, const QString &subject, bool permanent, const std::function<void()> &done)
{
    struct Removing
    {
        qint64 reclaimedSoFar = 0;
        std::vector<PathRemoval::Removal> removals{};
        std::vector<HeldItem> held{};
    };
    const auto removing = std::make_shared<Removing>();
    const auto onThread = [this, removing, work](const RemovalQueue::Watch &watch) {
        const auto hold = m_kit.trash.hold();
        m_journal.startBatch(removing->reclaimedSoFar);
        removing->removals = work(watch, m_journal);
        std::vector<TrashedItem> rows;
        for (const auto &removal : removing->removals)
            if (!removal.error && removal.trashed)
                rows.push_back(*removal.trashed);
        if (!rows.empty())
            m_ledger.record(rows);
        removing->held = books().held();
    };
    const auto end = [this, removing, subject, done] {
        qint64 total = 0;
        for (const auto &removal : removing->removals)
            total += removal.bytes;
        closeBooks(total, std::move(removing->held));
        takeRemovals(removing->removals, subject);
        if (done)
            done();
    };
    m_queue.enqueue({ .verb = permanent ? RemovalQueue::Verb::deleting : RemovalQueue::Verb::moving,
        .begin = [this, removing] { removing->reclaimedSoFar = m_reclaimedSoFar; },
        .work = onThread,
        .end = end });
}

void ReclaimDriver::takeRemovals(const std::vector<PathRemoval::Removal> &removals, const QString &subject)
{
    qint64 total = 0;
    for (const auto &removal : removals) {
        if (removal.error)
            m_uninstallLog.prepend(failed(*removal.error));
        else
            total += removal.bytes;
    }
    if (total > 0)
        m_uninstallLog.prepend(
            done(u"%1 — %2 moved to the Trash. The space comes back when the Trash is emptied."_s.arg(
                subject, Format::bytes(total))));
    Q_EMIT uninstallLogChanged();
    m_volume.refreshVolume();
}

void ReclaimDriver::tellOfUninstalling(bool isDone, const QString &what)
{
    m_uninstallLog.prepend(isDone ? done(what) : failed(what));
    Q_EMIT uninstallLogChanged();
    m_volume.refreshVolume();
}

void ReclaimDriver::finishRemoving(const QSet<QString> &kept)
{
    // What went into the Trash while this waited for its turn was not asked about.
    std::vector<TrashedItem> items;
    for (const auto &held : m_held)
        if (!held.isOnlyInJournal && !kept.contains(held.item.id))
            items.push_back(held.item);
    purge(items, [this](const TrashLedger::Purged &purged) {
        if (purged.removed >= 1)
            appendLog(done(u"permanently removed %1 items · %2 actually freed"_s.arg(
                QString::number(purged.removed), Format::bytes(purged.bytes))));
        m_volume.refreshVolume();
        Q_EMIT diskChanged();
    });
}

void ReclaimDriver::purge(const std::vector<TrashedItem> &items, const Purged &purged)
{
    struct Purging
    {
        std::vector<TrashedItem> items{};
        TrashLedger::Purged purged{};
        std::vector<HeldItem> held{};
    };
    const auto purging = std::make_shared<Purging>();
    purging->items = items;
    const auto work = [this, purging](const RemovalQueue::Watch &watch) {
        const auto before
            = [&watch](qsizetype number, qsizetype count, const TrashedItem &item, qint64 bytes) {
                  watch.progress({ .number = number, .count = count, .name = item.label, .bytes = bytes });
              };
        purging->purged = m_ledger.purge(purging->items, { .before = before, .stop = watch.stop });
        purging->held = books().held();
    };
    const auto end = [this, purging, purged] {
        setHeld(std::move(purging->held));
        startFlush();
        purged(purging->purged);
    };
    m_queue.enqueue({ .verb = RemovalQueue::Verb::deleting, .work = work, .end = end });
}

void ReclaimDriver::putBack(const QSet<QString> &ids)
{
    struct Putting
    {
        std::vector<HeldItem> things{};
        std::vector<std::optional<QString>> errors{};
        std::vector<HeldItem> held{};
    };
    const auto putting = std::make_shared<Putting>();
    for (const auto &held : m_held)
        if (ids.contains(held.item.id))
            putting->things.push_back(held);
    if (putting->things.empty())
        return;
    const auto work = [this, putting](const RemovalQueue::Watch &watch) {
        qint64 bytes = 0;
        for (const auto &held : putting->things) {
            if (watch.stop.stop_requested())
                break;
            watch.progress({ .number = static_cast<qsizetype>(putting->errors.size()) + 1,
                .count = static_cast<qsizetype>(putting->things.size()),
                .name = held.item.label,
                .bytes = bytes });
            const auto back = books().putBack(held);
            putting->errors.push_back(back ? std::nullopt : std::optional(back.error()));
            bytes += back ? held.item.bytes : 0;
        }
        putting->held = books().held();
    };
    const auto end = [this, putting] {
        setHeld(std::move(putting->held));
        for (size_t index = 0; index < putting->errors.size(); ++index) {
            const auto &item = putting->things[index].item;
            const auto &error = putting->errors[index];
            appendLog(error ? failed(u"%1: %2"_s.arg(item.label, *error))
                            : done(u"%1 — %2 put back"_s.arg(item.label, Format::bytes(item.bytes))));
        }
        Q_EMIT diskChanged();
    };
    m_queue.enqueue({ .verb = RemovalQueue::Verb::puttingBack, .work = work, .end = end });
}

void ReclaimDriver::closeBooks(qint64 bytes, std::vector<HeldItem> held)
{
    recordReclaimed(bytes);
    // On the thread on which the journal is read, and before the next removal writes to it.
    static_cast<void>(m_queue.ask([this] { m_journal.close(m_kit.trash); }));
    setHeld(std::move(held));
    startFlush();
}

void ReclaimDriver::refreshHeld()
{
    // Outlived by this, since the model waits for the queue.
    static_cast<void>(m_queue.ask([this] {
        QMetaObject::invokeMethod(
            this, [this, held = books().held()] { setHeld(held); }, Qt::QueuedConnection);
    }));
}

void ReclaimDriver::setHeld(std::vector<HeldItem> held)
{
    if (m_held == held)
        return;
    m_held = std::move(held);
    Q_EMIT ledgerChanged();
}

TrashLedger::Pending ReclaimDriver::pending() const
{
    TrashLedger::Pending pending;
    for (const auto &held : m_held)
        if (!held.isOnlyInJournal) {
            ++pending.count;
            pending.bytes += held.item.bytes;
        }
    return pending;
}

// The disk may go on writing for a while. What is free is read when it has done so.
void ReclaimDriver::startFlush()
{
    m_flushing
        = QtConcurrent::run(&m_flushPool, [&trash = m_kit.trash, home = rawHome()] { trash.flush(home); });
}

// What was claimed is measured once a scan has ended after it, be it one that was under way already.
void ReclaimDriver::verifyClaim()
{
    if (!m_pendingClaim)
        return;
    const auto claim = *std::exchange(m_pendingClaim, std::nullopt);
    m_volume.refreshVolume();
    m_lastVerification = Verification{
        .claimedBytes = claim.bytes, .freeBefore = claim.freeBefore, .freeAfter = m_volume.volumeFree()
    };
    setStayedReasons({});
    Q_EMIT lastVerificationChanged();
    if (m_lastVerification->isGood() || claim.bytes < 1)
        return;
    const StayedSpace::Removed removed{ .isInTrash = claim.isInTrash,
        .measured = claim.bytes,
        .freeBefore = claim.freeBefore,
        .freeAfter = m_lastVerification->freeAfter };
    const auto stayed = claim.stayed
        ? claim.stayed
        : std::make_shared<StayedSpace>(m_kit.spaceHolders, std::vector<std::string>());
    const auto find = [stayed, removed] {
        QStringList sentences;
        for (const auto &reason : stayed->reasons(removed))
            sentences.append(StayedSpace::sentence(reason));
        return sentences;
    };
    QtConcurrent::run(&m_askingPool, find)
        .then(this, [this, verification = *m_lastVerification](const QStringList &sentences) {
            if (m_lastVerification == verification)
                setStayedReasons(sentences);
        });
}

void ReclaimDriver::setStayedReasons(const QStringList &reasons)
{
    if (m_stayedReasons == reasons)
        return;
    m_stayedReasons = reasons;
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

void ReclaimDriver::offerToFree(qint64 bytes, const std::vector<QString> &ids)
{
    if (bytes <= 0)
        return;
    m_freeNowOffer = bytes;
    m_justMoved = QSet<QString>(ids.begin(), ids.end());
    Q_EMIT freeNowOfferChanged();
}

// The report's figure is of the last scan; a claim is held against what was free right before it. A disk with
// nothing free is one that says 0.
qint64 ReclaimDriver::presentFree() const
{
    return m_volume.measuredFree().value_or(m_volume.volumeFree());
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

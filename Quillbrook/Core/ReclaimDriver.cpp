#include "Core/ReclaimDriver.h"

#include "Catalogue/StorageCatalogue.h"
#include "Core/ChangedFolders.h"
#include "Core/LogLine.h"
#include "Core/RemovalBooks.h"
#include "Core/ScanDriver.h"
#include "Core/Translation.h"
#include "Core/VolumeFigures.h"
#include "Platform/HomeFolder.h"
#include "Platform/SpaceHolders.h"
#include "Removal/CappedSum.h"
#include "Removal/Clearance.h"
#include "Removal/StayedSpace.h"
#include "Scan/Format.h"

#include <QCoroFuture>
#include <QPointer>
#include <QtConcurrent>

#include <algorithm>
#include <iterator>
#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

QString line(const Reclaimer::Outcome &outcome)
{
    const auto &title = outcome.finding.rule.title;
    if (outcome.error)
        return LogLine::failed(u"%1: %2"_s.arg(title, *outcome.error));
    const auto fate = outcome.permanent ? u"deleted"_s : u"to Trash"_s;
    return LogLine::done(u"%1 — %2 %3"_s.arg(title, Format::bytes(outcome.bytesMoved), fate));
}

// How far a way out of the Trash is, thing by thing.
TrashLedger::Watch leaving(const RemovalQueue::Watch &watch)
{
    return { .before =
                 [tell = watch.progress](
                     qsizetype number, qsizetype count, const TrashedItem &item, qint64 bytes) {
                     tell({ .number = number, .count = count, .name = item.label, .bytes = bytes });
                 },
        .stop = watch.stop };
}

} // namespace

// Shared by the threads that it goes through, one after the other.
struct ReclaimDriver::Clearing
{
    Clearance::Order order{};
    std::string home{};
    std::vector<Reclaimer::Outcome> outcomes{};
    qint64 bytes = 0;
    qint64 freeBefore = 0;
    std::shared_ptr<StayedSpace> stayed{};
};

ReclaimDriver::ReclaimDriver(const KitServices &kit, const Others &others, QObject *parent)
    : QObject(parent)
    , m_kit(kit)
    , m_scans(others.scans)
    , m_volume(others.volume)
    , m_books(others.books)
{
    m_askingPool.setMaxThreadCount(1);
}

ReclaimDriver::~ReclaimDriver() = default;

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
        clearing->home = m_kit.home.rawHomeDirectory();
    };
    const auto work = [this, clearing, permanently](const RemovalQueue::Watch &watch, const Books &books) {
        if (permanently) {
            std::vector<std::string> paths;
            for (const auto &finding : clearing->order.findings)
                paths.push_back(finding.rawPath);
            clearing->stayed = std::make_shared<StayedSpace>(m_kit.spaceHolders, std::move(paths));
        }
        Clearance clearance(RemovalServices::of(m_kit), books.journal, clearing->home);
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
        clearing->bytes = books.record(clearing->outcomes, clearing->order.byRule);
        // What a rule cleared is not the person's doing.
        return clearing->order.byRule ? 0 : clearing->bytes;
    };
    m_books.run({ .verb = permanently ? RemovalQueue::Verb::deleting : RemovalQueue::Verb::moving,
        .begin = begin,
        .work = work,
        .changed = [clearing] { return ChangedFolders::of(clearing->order.findings); },
        .end = [clearing, cleared] { cleared(clearing->outcomes); } });
}

void ReclaimDriver::takeOutcomes(const Clearing &clearing)
{
    std::vector<QString> ids;
    QList<Finding> cleared;
    QStringList lines;
    for (const auto &outcome : clearing.outcomes) {
        lines.append(line(outcome));
        if (outcome.error)
            continue;
        cleared.append(outcome.finding);
        for (const auto &item : outcome.trashed)
            ids.push_back(item.id);
    }
    appendLines(lines);
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
        std::vector<std::expected<TrashedItem, QString>> moved{};
    };
    const auto moving = std::make_shared<Moving>();
    for (const auto &item : items)
        if (item.removable)
            moving->items.append(item);
    const auto work = [this, moving, finding](const RemovalQueue::Watch &watch, const Books &books) {
        const Reclaimer reclaimer{ .services = RemovalServices::of(m_kit),
            .home = m_kit.home.rawHomeDirectory(),
            .journal = &books.journal };
        std::vector<TrashedItem> rows;
        qint64 bytes = 0;
        for (const auto &item : moving->items) {
            if (watch.stop.stop_requested())
                break;
            watch.progress({ .number = static_cast<qsizetype>(moving->moved.size()) + 1,
                .count = moving->items.size(),
                .name = item.name,
                .bytes = bytes });
            moving->moved.push_back(reclaimer.moveItem(item, finding));
            if (const auto &moved = moving->moved.back()) {
                bytes = cappedSum(bytes, moved->bytes);
                rows.push_back(*moved);
            }
        }
        books.ledger.record(rows);
        return bytes;
    };
    const auto end = [this, moving] {
        QStringList names;
        for (const auto &item : moving->items)
            names.append(item.name);
        takeMembers(moving->moved, names);
    };
    m_books.run(
        { .work = work, .changed = [finding] { return std::vector{ finding.rawPath }; }, .end = end });
}

void ReclaimDriver::takeMembers(
    const std::vector<std::expected<TrashedItem, QString>> &moved, const QStringList &names)
{
    std::vector<QString> ids;
    QStringList lines;
    qint64 total = 0;
    for (size_t index = 0; index < moved.size(); ++index) {
        const auto &name = names.at(static_cast<qsizetype>(index));
        const auto &one = moved[index];
        if (!one) {
            lines.append(LogLine::failed(u"%1: %2"_s.arg(name, one.error())));
            continue;
        }
        lines.append(LogLine::done(u"%1 — %2 to Trash"_s.arg(name, Format::bytes(one->bytes))));
        total = cappedSum(total, one->bytes);
        ids.push_back(one->id);
    }
    appendLines(lines);
    if (total <= 0)
        return;
    offerToFree(total, ids);
    Q_EMIT diskChanged();
}

void ReclaimDriver::finishRemoving()
{
    // What went into the Trash while this waited for its turn was not asked about.
    const auto asked = std::make_shared<std::vector<TrashedItem>>();
    for (auto &held : m_books.deletable())
        asked->push_back(std::move(held.item));
    // Rows whose name in the Trash something else has by now are tried too, which they don't survive.
    const auto items = [asked](const Books &books) {
        auto all = std::move(*asked);
        std::ranges::move(books.ledger.exchanged(), std::back_inserter(all));
        return all;
    };
    purgeBy(items, [this](const TrashLedger::Purged &purged) {
        if (purged.removed >= 1)
            appendLog(LogLine::done(u"permanently removed %1 items · %2 actually freed"_s.arg(
                QString::number(purged.removed), Format::bytes(purged.bytes))));
        m_volume.refreshVolume();
        Q_EMIT diskChanged();
    });
}

void ReclaimDriver::purge(const std::vector<TrashedItem> &items, const Purged &purged)
{
    purgeBy([items](const Books & /*books*/) { return items; }, purged);
}

void ReclaimDriver::purgeBy(
    const std::function<std::vector<TrashedItem>(const Books &books)> &items, const Purged &purged)
{
    struct Purging
    {
        std::vector<TrashedItem> items{};
        TrashLedger::Purged purged{};
    };
    const auto purging = std::make_shared<Purging>();
    const auto work = [purging, items](const RemovalQueue::Watch &watch, const Books &books) -> qint64 {
        purging->items = items(books);
        purging->purged = books.purge(purging->items, leaving(watch));
        return 0;
    };
    m_books.run({ .verb = RemovalQueue::Verb::deleting,
        .work = work,
        .changed = [purging] { return ChangedFolders::of(purging->items); },
        .end = [purging, purged] { purged(purging->purged); } });
}

void ReclaimDriver::putBack()
{
    // Shared, as the results are: on its way from thread to thread an order is copied some times.
    const auto things = std::make_shared<const std::vector<HeldItem>>(m_books.ticked());
    if (things->empty())
        return;
    const auto results = std::make_shared<std::vector<std::expected<void, QString>>>();
    const auto work = [things, results](const RemovalQueue::Watch &watch, const Books &books) -> qint64 {
        *results = books.putBack(*things, leaving(watch));
        return 0;
    };
    m_books.run({ .verb = RemovalQueue::Verb::puttingBack,
        .work = work,
        .changed = [things] { return ChangedFolders::of(*things); },
        .end = [this, things, results] { takeReturns(*things, *results); } });
}

// After a stop some things have no result.
void ReclaimDriver::takeReturns(
    const std::vector<HeldItem> &things, const std::vector<std::expected<void, QString>> &results)
{
    QStringList lines;
    for (size_t index = 0; index < results.size(); ++index) {
        const auto &item = things[index].item;
        const auto &result = results[index];
        lines.append(result ? LogLine::done(u"%1 — %2 put back"_s.arg(item.label, Format::bytes(item.bytes)))
                            : LogLine::failed(u"%1: %2"_s.arg(item.label, result.error())));
    }
    appendLines(lines);
    Q_EMIT diskChanged();
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

void ReclaimDriver::appendLog(const QString &line)
{
    appendLines({ line });
}

// Told once, however many they are: who hears of it looks at the whole log.
void ReclaimDriver::appendLines(const QStringList &lines)
{
    if (lines.isEmpty())
        return;
    m_reclaimLog.append(lines);
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
        { .homeDirectory = tree.path(m_scans.rootNode()),
            .rawHome = tree.rawPath(m_scans.rootNode()),
            .host = &m_scans.hostCatalogue() });
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

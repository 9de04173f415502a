#include "Removal/Books.h"

#include "Platform/Trash.h"
#include "Removal/CappedSum.h"
#include "Removal/RemovalJournal.h"

#include <QSet>

#include <algorithm>
#include <tuple>

namespace Quillbrook {

namespace {

// The rows of one unit that a run has left, and what they are worth.
struct Found
{
    std::vector<TrashedItem> rows{};
    qint64 bytes = 0;
};

} // namespace

class Books::TakingUp
{
public:
    explicit TakingUp(const Books &books)
        : m_books(books)
    {
        for (const auto &item : books.ledger.items())
            m_known.insert(item.id);
    }

    [[nodiscard]] Found of(const JournalUnit &unit) const
    {
        Found found;
        const auto share = unit.bytes / unit.planned;
        qint64 bytes = 0;
        QSet<QString> counted;
        for (auto place = unit.moves.begin(); place != unit.moves.end(); ++place) {
            const auto &move = *place;
            const bool isTriedAgain = place + 1 != unit.moves.end() && (place + 1)->id == move.id;
            // The drive may bring it back; under the last name that was tried, if at all.
            const bool isThere
                = m_books.tidy(move) || (!isTriedAgain && m_books.trash.isAway(move.trashPath));
            if (unit.isOnlyHere() || counted.contains(move.id))
                continue;
            if (isThere && !m_known.contains(move.id))
                found.rows.push_back(row(move, unit, share));
            if (!isThere && !m_known.contains(move.id))
                continue;
            counted.insert(move.id);
            bytes = cappedSum(bytes, share);
        }
        // What a rule clears is not what a person has reclaimed.
        if (!unit.byRule)
            found.bytes = unit.state == JournalUnit::State::whole ? unit.bytes : bytes;
        return found;
    }

private:
    [[nodiscard]] static TrashedItem row(const TrashedItem &move, const JournalUnit &unit, qint64 share)
    {
        auto item = unit.byRule ? move.markedByRule() : move;
        item.bytes = share;
        return item;
    }

    const Books &m_books;
    QSet<QString> m_known;
};

bool Books::tidy(const TrashedItem &item) const
{
    const auto from = item.provenance();
    trash.takeBackRight(item.trashPath, from);
    if (trash.isStill(item.trashPath, from))
        return true;
    trash.dropLoneNote(item.trashPath, item.identity.value_or(ThingIdentity()).note);
    return false;
}

qint64 Books::record(const std::vector<Reclaimer::Outcome> &outcomes, bool byRule) const
{
    std::vector<TrashedItem> rows;
    qint64 total = 0;
    for (const auto &outcome : outcomes) {
        if (!outcome.error)
            total = cappedSum(total, outcome.bytesMoved);
        else if (!byRule)
            continue;
        for (const auto &item : outcome.trashed)
            rows.push_back(byRule ? item.markedByRule() : item);
    }
    ledger.record(rows);
    return total;
}

void Books::enter(const std::vector<Reclaimer::Outcome> &outcomes, bool byRule, const Count &count) const
{
    count(record(outcomes, byRule));
    close();
}

std::optional<qint64> Books::recover(qint64 reclaimedSoFar) const
{
    if (journal.units().empty() && journal.leaving().empty())
        return std::nullopt;
    for (const auto &item : journal.leaving())
        std::ignore = tidy(item);
    const TakingUp takingUp(*this);
    std::vector<TrashedItem> rows;
    auto total = journal.total().value_or(reclaimedSoFar);
    for (const auto &unit : journal.units()) {
        auto found = takingUp.of(unit);
        total = cappedSum(total, found.bytes);
        std::ranges::move(found.rows, std::back_inserter(rows));
    }
    if (!rows.empty())
        ledger.record(rows);
    return total > reclaimedSoFar ? total - reclaimedSoFar : 0;
}

void Books::takeUp(qint64 reclaimedSoFar, const Count &count) const
{
    const auto bytes = recover(reclaimedSoFar);
    if (!bytes)
        return;
    count(*bytes);
    close();
}

void Books::close() const
{
    if (ledger.isSaved())
        journal.close(trash);
}

std::vector<HeldItem> Books::held() const
{
    std::vector<HeldItem> things;
    const auto add = [&](const TrashedItem &item, bool isOnlyInJournal) {
        if (trash.isStill(item.trashPath, item.provenance()))
            things.push_back({ .item = item, .isOnlyInJournal = isOnlyInJournal });
    };
    for (const auto &item : ledger.items())
        add(item, false);
    for (const auto &unit : journal.units())
        for (auto item : unit.moves) {
            item.bytes = unit.bytes / unit.planned;
            if (unit.isOnlyHere())
                add(item, true);
        }
    std::ranges::stable_sort(things, {}, [](const HeldItem &held) { return held.item.movedAt; });
    return things;
}

std::vector<std::expected<void, QString>> Books::putBack(
    const std::vector<HeldItem> &things, const TrashLedger::Watch &watch) const
{
    std::vector<std::expected<void, QString>> results;
    QSet<QString> ofLedger;
    QSet<QString> ofJournal;
    qint64 bytes = 0;
    for (const auto &held : things) {
        const auto &item = held.item;
        if (watch.stop.stop_requested())
            break;
        if (watch.before)
            watch.before(static_cast<qsizetype>(results.size()) + 1, static_cast<qsizetype>(things.size()),
                item, bytes);
        journal.leave(item);
        results.push_back(ledger.putBack(item));
        if (!results.back())
            continue;
        bytes = cappedSum(bytes, item.bytes);
        (held.isOnlyInJournal ? ofJournal : ofLedger).insert(item.id);
    }
    if (!ofLedger.isEmpty())
        ledger.forget(ofLedger);
    if (!ofJournal.isEmpty())
        journal.forget(ofJournal);
    return results;
}

TrashLedger::Purged Books::purge(const std::vector<TrashedItem> &items, const TrashLedger::Watch &watch) const
{
    const auto before = [&](qsizetype number, qsizetype count, const TrashedItem &item, qint64 bytes) {
        journal.leave(item);
        if (watch.before)
            watch.before(number, count, item, bytes);
    };
    const auto purged = ledger.purge(items, { .before = before, .stop = watch.stop });
    ledger.finishPurging();
    return purged;
}

} // namespace Quillbrook

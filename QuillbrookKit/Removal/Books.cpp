#include "Removal/Books.h"

#include "Platform/Trash.h"
#include "Removal/RemovalJournal.h"
#include "Removal/TrashLedger.h"

#include <QSet>

#include <algorithm>

namespace Quillbrook {

namespace {

// The rows of one unit that a run has left, and what they are worth.
struct Found
{
    std::vector<TrashedItem> rows{};
    qint64 bytes = 0;
};

class TakingUp
{
public:
    TakingUp(const Books &books)
        : m_books(books)
    {
        for (const auto &item : books.ledger.items())
            m_known.insert(item.id);
    }

    [[nodiscard]] Found of(const JournalUnit &unit) const
    {
        Found found;
        const auto share = unit.bytes / unit.planned;
        QSet<QString> counted;
        for (const auto &move : unit.moves) {
            m_books.trash.takeBackRight(move.trashPath, move.provenance());
            const bool isThere = m_books.trash.isStill(move.trashPath, move.provenance());
            if (!isThere)
                m_books.trash.dropLoneNote(move.trashPath, move.identity.value_or(ThingIdentity()).note);
            // What a rule moved is known, whatever became of the rest.
            if ((unit.state == JournalUnit::State::failed && !unit.byRule) || counted.contains(move.id))
                continue;
            if (isThere && !m_known.contains(move.id))
                found.rows.push_back(row(move, unit, share));
            if (isThere || m_known.contains(move.id))
                counted.insert(move.id);
        }
        if (unit.state == JournalUnit::State::open)
            found.bytes = share * counted.size();
        if (unit.state == JournalUnit::State::whole)
            found.bytes = unit.bytes;
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

} // namespace

qint64 Books::record(const std::vector<Reclaimer::Outcome> &outcomes, bool byRule) const
{
    std::vector<TrashedItem> rows;
    std::vector<QString> ofFailed;
    qint64 total = 0;
    for (const auto &outcome : outcomes) {
        if (!outcome.error)
            total += outcome.bytesMoved;
        else if (!byRule)
            continue;
        for (const auto &item : outcome.trashed) {
            rows.push_back(byRule ? item.markedByRule() : item);
            if (outcome.error)
                ofFailed.push_back(item.id);
        }
    }
    ledger.record(rows);
    for (const auto &id : ofFailed)
        journal.forget(id);
    return total;
}

void Books::enter(const std::vector<Reclaimer::Outcome> &outcomes, bool byRule, const Count &count) const
{
    count(record(outcomes, byRule));
    journal.close(trash);
}

void Books::takeUp(qint64 reclaimedSoFar, const Count &count) const
{
    if (journal.units().empty())
        return;
    const TakingUp takingUp(*this);
    std::vector<TrashedItem> rows;
    auto total = journal.total().value_or(reclaimedSoFar);
    for (const auto &unit : journal.units()) {
        auto found = takingUp.of(unit);
        total += found.bytes;
        std::ranges::move(found.rows, std::back_inserter(rows));
    }
    if (!rows.empty())
        ledger.record(rows);
    if (total > reclaimedSoFar)
        count(total - reclaimedSoFar);
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
            if (unit.state == JournalUnit::State::failed)
                add(item, true);
        }
    std::ranges::stable_sort(things, {}, [](const HeldItem &held) { return held.item.movedAt; });
    return things;
}

std::expected<void, QString> Books::putBack(const HeldItem &held) const
{
    if (!held.isOnlyInJournal)
        return ledger.putBack(held.item);
    const auto from = held.item.provenance();
    auto done = trash.restore(held.item.trashPath, held.item.originalPath, &from);
    if (done)
        journal.forget(held.item.id);
    return done;
}

} // namespace Quillbrook

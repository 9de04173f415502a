#include "Removal/BookedMove.h"

#include "Platform/Clock.h"
#include "Removal/RemovalJournal.h"

#include <QCoreApplication>

namespace Quillbrook::BookedMove {

std::expected<TrashedItem, QString> entry(
    const RemovalServices &services, RemovalJournal *journal, TrashedItem facts, const TakingJudge &judge)
{
    facts.movedAt = services.clock.now();
    auto row = TrashedItem::moved(std::move(facts));
    const auto announce = [&](const TrashedThing &planned) -> std::expected<void, QString> {
        row.trashPath = planned.path;
        row.identity = planned.identity;
        return journal != nullptr ? journal->plan(row) : std::expected<void, QString>();
    };
    const auto moved = services.trash.move(row.originalPath, { .judge = judge, .announce = announce });
    if (!moved) {
        if (journal != nullptr)
            journal->fail(row.id);
        return std::unexpected(moved.error());
    }
    row.trashPath = moved->path;
    row.identity = moved->identity;
    return row;
}

std::expected<TrashedItem, QString> alone(
    const RemovalServices &services, RemovalJournal *journal, TrashedItem facts, const TakingJudge &judge)
{
    if (journal == nullptr)
        return entry(services, nullptr, std::move(facts), judge);
    if (const auto begun = journal->begin({ .title = facts.label, .bytes = facts.bytes }); !begun)
        return std::unexpected(notBegun(begun.error()));
    auto moved = entry(services, journal, std::move(facts), judge);
    journal->settle();
    return moved;
}

QString notBegun(const QString &error)
{
    return QCoreApplication::translate(
        "BookedMove", "Quillbrook could not note down what goes, so nothing was moved: %1")
        .arg(error);
}

} // namespace Quillbrook::BookedMove

#pragma once

// The journal as a file: one JSON object a line, in the order of what happened.
//
//     {"batch": TOTAL}             a clearance begins; TOTAL is what had been reclaimed so far, in bytes
//     {"begin": {"title", "bytes", "planned", "byRule"}}
//                                  a finding begins, of so many bytes and planned entries
//     {"move": ROW, "inode", "born", "note", "mode"}
//                                  an entry of it is about to go to ROW's "trashPath", with that note; a
//                                  further line with the same "id" names another place, the first being taken
//     {"failed": ID}               the entry with that id did not go, so that the finding failed in part;
//                                  empty for what went wrong outside an entry
//     {"whole": true}              the finding has ended, and all of it went
//     {"leave": ROW, "inode", "born", "note", "mode"}
//                                  what lies at ROW's "trashPath" is about to be put back or deleted
//
// ROW is a row as it stands in the ledger, without its bytes. An empty line means nothing, and neither does a
// line that can't be understood: a kill leaves at most one, and the next finding begins on a line of its own.
// An entry whose finding can't be told is one by itself, of no bytes.

#include "Removal/TrashedItem.h"

#include <QByteArray>
#include <QByteArrayView>

#include <vector>

namespace Quillbrook {

/// One finding, or one thing that was picked by itself, on its way to the Trash.
struct JournalUnit
{
    enum class State : std::uint8_t { open, whole, failed };

    /// What it is called, for rows and for a person.
    QString title{};
    qint64 bytes = 0;
    qint64 planned = 1;
    bool byRule = false;
    State state = State::open;
    /// Each name that was tried is one; those of one entry have one id and stand in the order of trying.
    std::vector<TrashedItem> moves{};

    bool operator==(const JournalUnit &) const = default;

    /// Whether its things are no rows of the ledger: what a person's removal moved before it failed. What a
    /// rule moved is known there, whatever became of the rest.
    [[nodiscard]] bool isOnlyHere() const { return state == State::failed && !byRule; }
};

namespace JournalFormat {

struct Content
{
    /// Absent where no clearance has begun.
    std::optional<qint64> total{};
    std::vector<JournalUnit> units{};
    /// What was about to leave the Trash.
    std::vector<TrashedItem> leaving{};

    bool operator==(const Content &) const = default;
};

[[nodiscard]] QByteArray batch(qint64 total);
[[nodiscard]] QByteArray begin(const JournalUnit &unit);
[[nodiscard]] QByteArray move(const TrashedItem &item);
[[nodiscard]] QByteArray failed(const QString &id);
[[nodiscard]] QByteArray whole();
[[nodiscard]] QByteArray leave(const TrashedItem &item);

[[nodiscard]] QByteArray encode(const std::vector<JournalUnit> &units);
[[nodiscard]] Content decode(QByteArrayView lines);

} // namespace JournalFormat

} // namespace Quillbrook

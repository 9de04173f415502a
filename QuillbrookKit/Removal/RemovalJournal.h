#pragma once

// The books before the act: what is about to go to the Trash stands here before it goes, so that a kill at
// any moment loses track of nothing. The next start reads what the last run left, and `Books` makes rows of
// it. The things of a finding that failed in part are kept here for as long as they lie in the Trash, to be
// put back; they are never rows. What is about to leave the Trash stands here too, so that a kill on the way
// leaves nothing half done.
//
// A line costs no more than writing it: what a program has written outlives a kill of it. After a loss of
// power some of the last lines may be missing, as may the moves that they tell of.
//
// One thread at a time. Blocks on the disk.

#include "Removal/JournalFormat.h"

#include <QSet>

#include <expected>

namespace Quillbrook {

class FileReading;
class FileWriting;
class Trash;

class RemovalJournal
{
public:
    /// The journal's file for a ledger's.
    [[nodiscard]] static std::string besideLedger(const std::string &ledger);

    /// Reads what is at `path` (absolute, raw bytes). What is referred to outlives this object.
    RemovalJournal(const FileReading &reading, FileWriting &writing, std::string path);
    RemovalJournal(const RemovalJournal &) = delete;
    RemovalJournal &operator=(const RemovalJournal &) = delete;

    /// A clearance begins; `total` is what had been reclaimed so far, in bytes. Written with its first
    /// finding. The total of one that was written and never closed stays.
    void startBatch(qint64 total);
    /// A finding begins. On an error, told as a person may read it, nothing of it may be moved.
    [[nodiscard]] std::expected<void, QString> begin(JournalUnit unit);
    /// `item` is about to go to its `trashPath`. On an error it may not be moved.
    [[nodiscard]] std::expected<void, QString> plan(const TrashedItem &item);
    /// The entry with that id, the last one planned, did not go; with an empty one, the finding failed
    /// otherwise.
    void fail(const QString &id);
    /// The finding has ended: failed where something did, else whole.
    void settle();
    /// `item` is about to leave the Trash. Where that can't be written it may leave all the same: deleting
    /// asks for no room on the disk.
    void leave(const TrashedItem &item);

    [[nodiscard]] std::optional<qint64> total() const { return m_total; }
    [[nodiscard]] const std::vector<JournalUnit> &units() const { return m_units; }
    /// What a run that did not come to its end was about to take out of the Trash.
    [[nodiscard]] const std::vector<TrashedItem> &leaving() const { return m_leaving; }

    /// What the units hold is in the ledger: forgets all but what a person's removal left in `trash` when it
    /// failed in part. What a drive holds that is not connected now is not forgotten.
    void close(const Trash &trash);
    /// Forgets entries of what failed.
    void forget(const QSet<QString> &ids);

private:
    void write(const QByteArray &lines);
    void save();

    FileWriting &m_writing;
    std::string m_path;
    std::optional<qint64> m_total;
    bool m_isTotalWritten = false;
    bool m_isFileThere = false;
    std::vector<JournalUnit> m_units;
    std::vector<TrashedItem> m_leaving;
};

} // namespace Quillbrook

#pragma once

// The books about what Quillbrook itself moved to the Trash, kept in a file. Moving something there frees
// nothing until it leaves the Trash: the ledger says how much is still waiting, deletes exactly those things
// and never the user's other Trash, and tells what an automation rule moved long enough ago.
//
// A row is found again by its `trashPath` alone, and nothing is deleted or put back that is not the thing
// that was moved there: the Trash gives the names of what has left it again. By what things are known stands
// in a file of its own beside the ledger's (`IdentityFormat`). A row that is no longer in the Trash, because
// the user emptied it or put the thing back, counts nowhere and stays in the file until something removes it.
//
// One thread at a time; every operation blocks on the disk. A file that is missing, can't be read or holds
// anything but rows is an empty ledger, and stays until the next save. What can't be saved is right in memory
// for as long as the program runs. Neither is told to anyone.

#include "Removal/LedgerServices.h"
#include "Removal/TrashedItem.h"

#include <QSet>

#include <expected>
#include <functional>
#include <stop_token>
#include <vector>

namespace Quillbrook {

class TrashLedger
{
public:
    struct Pending
    {
        qsizetype count = 0;
        qint64 bytes = 0;

        bool operator==(const Pending &) const = default;
    };

    struct Purged
    {
        qsizetype removed = 0;
        qint64 bytes = 0;

        bool operator==(const Purged &) const = default;
    };

    /// Of what leaves the Trash, thing by thing.
    struct Watch
    {
        /// Told before each thing goes: which, from 1, of how many, and the bytes that went before it.
        std::function<void(qsizetype number, qsizetype count, const TrashedItem &item, qint64 bytes)>
            before{};
        /// Obeyed between two things.
        std::stop_token stop{};
    };

    /// How long what a rule moved stays in the Trash for the user to take it back.
    static constexpr qint64 ruleGracePeriodSeconds = 86'400;
    /// Below so much free space, a rule's things are due at once.
    static constexpr qint64 criticalFreeBytes = 5'368'709'120;

    /// The ledger's file below the folder in which programs keep the user's data (absolute, raw bytes).
    [[nodiscard]] static std::string standardStore(const std::string &dataFolder);
    /// Where the identities of the things of the ledger at `store` stand.
    [[nodiscard]] static std::string identitiesBeside(const std::string &store);

    /// Loads `storePath` (absolute, raw bytes).
    TrashLedger(const LedgerServices &services, std::string storePath);
    TrashLedger(const TrashLedger &) = delete;
    TrashLedger &operator=(const TrashLedger &) = delete;

    /// Adds the rows in order, and saves, also when there are none.
    void record(const std::vector<TrashedItem> &items);
    /// Deletes for good what of all rows is still in the Trash, and saves. A row that is tried is forgotten
    /// whether or not its thing could be deleted: nothing is tried twice. What failed is logged.
    Purged purge();
    /// The same for `items`; the other rows stay.
    Purged purge(const std::vector<TrashedItem> &items) { return purge(items, {}); }
    /// The same. After a stop what was not tried stays as it is.
    Purged purge(const std::vector<TrashedItem> &items, const Watch &watch);
    /// Deletes what a purge that was cut short has left of things that were out of the Trash already.
    void finishPurging();
    /// Puts a thing back where it was, with the folders it needs. Why it can't go back, as where something
    /// else has its place, is told as a person may read it. The row stays: it counts no more, and is for the
    /// caller to forget.
    [[nodiscard]] std::expected<void, QString> putBack(const TrashedItem &item) const;
    /// Forgets the rows with these ids, and saves.
    void forget(const QSet<QString> &ids);
    /// Puts one back and forgets it; false when it is not in the Trash, or, logged, when it can't go back.
    [[nodiscard]] bool restore(const TrashedItem &item);
    /// Forgets the rows that are no longer in the Trash; saves when there were any.
    void prune();

    /// Whether the file says what the rows say. Not so where the last save had no room.
    [[nodiscard]] bool isSaved() const { return m_isSaved; }
    /// In order of recording.
    [[nodiscard]] const std::vector<TrashedItem> &items() const { return m_items; }
    /// Asks the disk about each row, every time.
    [[nodiscard]] Pending pending() const;
    [[nodiscard]] qint64 pendingBytes() const { return pending().bytes; }
    [[nodiscard]] qsizetype pendingCount() const { return pending().count; }
    [[nodiscard]] bool stillInTrash(const TrashedItem &item) const;
    /// The rows under whose name something else lies in the Trash by now.
    [[nodiscard]] std::vector<TrashedItem> exchanged() const;
    /// What rules moved and what may go for good now, in order: all that still lies in the Trash when
    /// `freeBytes` is critical, else what has lain there for the grace period.
    [[nodiscard]] std::vector<TrashedItem> ruleItemsDue(const QDateTime &now, qint64 freeBytes) const;

private:
    void loadIdentities();
    [[nodiscard]] bool saveIdentities();
    void load();
    void save();
    [[nodiscard]] std::vector<TrashedItem> stillInTrash(const std::vector<TrashedItem> &items) const;

    LedgerServices m_services;
    std::string m_storePath;
    std::vector<TrashedItem> m_items;
    bool m_hasIdentities = false;
    bool m_isSaved = true;
};

} // namespace Quillbrook

#pragma once

// Turns a finding of the catalogue into space: the only code that removes what the catalogue found, whether a
// person asked for it or an automation rule. Whether a finding is stale enough is the caller's to ask. Writes
// to no ledger and keeps no state; blocks on the disk; callable from any thread.

#include "Catalogue/Finding.h"
#include "Catalogue/StorageItem.h"
#include "Removal/RemovalServices.h"
#include "Removal/TrashedItem.h"

#include <QList>

#include <cstdint>
#include <expected>
#include <functional>
#include <stop_token>
#include <vector>

namespace Quillbrook {

class RemovalJournal;

/// Why nothing, or not all, was removed, as sentences for a person.
namespace ReclaimError {

[[nodiscard]] QString notActionable(const QString &title);
[[nodiscard]] QString outsideHome(const QString &path);
[[nodiscard]] QString redirected();
[[nodiscard]] QString alreadyInTrash();
[[nodiscard]] QString running(const QString &name);
[[nodiscard]] QString perhapsRunning(const QString &name);
[[nodiscard]] QString failed(const QString &name, const QString &error);
[[nodiscard]] QString stopped();

} // namespace ReclaimError

struct Reclaimer
{
    enum class Disposal : std::uint8_t { toTrash, permanent };

    struct Outcome
    {
        /// As it was given.
        Finding finding{};
        /// What counts as gone: all of the finding as soon as one of its things went, else 0. The measurement
        /// after the next scan puts it right.
        qint64 bytesMoved = 0;
        /// A row for each thing that went to the Trash, with an equal share of the finding's bytes.
        std::vector<TrashedItem> trashed{};
        /// What was asked for, also when nothing happened.
        bool permanent = false;
        /// The last thing that went wrong.
        std::optional<QString> error{};

        bool operator==(const Outcome &) const = default;
    };

    /// An entry that is about to go. Counts begin at 1; `bytes` is what the entries before it came to.
    struct Step
    {
        qsizetype entry = 0;
        qsizetype entries = 0;
        QString name{};
        qint64 bytes = 0;
    };

    struct Steps
    {
        std::function<void(const Step &)> before{};
        /// Obeyed before each entry: the rest stays, and the finding has failed.
        std::stop_token stop{};
    };

    RemovalServices services;
    /// Absolute, in raw bytes, without a slash at its end.
    std::string home{};
    /// Written before each move to the Trash, where there is one. A finding that it can't take is not begun.
    RemovalJournal *journal = nullptr;
    /// How the journal marks what goes; the rows of an outcome are marked by the caller.
    bool byRule = false;

    /// Removes what lies in the finding's folder, or the finding itself where its rule says so. Never touches
    /// what is report-only, what is not below the home folder, or what is a link. What can't be removed stays
    /// and is told, and the rest goes; nothing that can't go to the Trash is deleted instead. A folder that
    /// can't be read is an empty one, and emptying it no failure. Nor is anything touched whose application
    /// runs by now, or can't be told not to when the finding is a safe one. What goes is taken from the
    /// folder that was found to be below the home folder, even where its path leads elsewhere by then.
    ///
    /// What lies in the Trash already goes for good only, each thing with its note of where it came from.
    [[nodiscard]] Outcome reclaim(const Finding &finding, Disposal disposal) const
    {
        return reclaim(finding, disposal, {});
    }
    [[nodiscard]] Outcome reclaim(const Finding &finding, Disposal disposal, const Steps &steps) const;
    /// The same for each, in order; one failure does not stop the others.
    [[nodiscard]] std::vector<Outcome> reclaimAll(const QList<Finding> &findings, Disposal disposal) const;

    /// Moves one of the things in a finding's folder to the Trash, past the same tests as the finding itself.
    /// The row has the item's own bytes.
    [[nodiscard]] std::expected<TrashedItem, QString> moveItem(
        const StorageItem &item, const Finding &finding) const;

private:
    [[nodiscard]] std::optional<QString> refusal(const Finding &finding, Disposal disposal) const;
    [[nodiscard]] bool isBelowHome(const std::string &path) const;
    struct Targets;

    [[nodiscard]] std::expected<Targets, QString> targets(const Finding &finding) const;
    void clear(const Targets &targets, Outcome &outcome, const Steps &steps) const;
    [[nodiscard]] bool isReallyBelowHome(const std::string &path) const;
    [[nodiscard]] std::vector<std::string> keptTargets() const;
    [[nodiscard]] TakingJudge judge(const Targets &targets) const;
    [[nodiscard]] std::expected<void, QString> dispose(
        const std::string &target, const Targets &targets, Outcome &outcome) const;
    [[nodiscard]] std::expected<void, QString> moveToTrash(
        const std::string &target, const Targets &targets, Outcome &outcome) const;
};

} // namespace Quillbrook

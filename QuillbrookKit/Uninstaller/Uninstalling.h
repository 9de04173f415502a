#pragma once

// Takes an application away with what a person chose of what it wrote elsewhere, or what is left of others.
// Synchronous, for a worker thread: it blocks on the disk, and on Flatpak's own program for minutes.

#include "Removal/PathRemoval.h"
#include "Uninstaller/HostApplications.h"
#include "Uninstaller/UninstallerServices.h"

#include <functional>
#include <stop_token>

namespace Quillbrook::Uninstalling {

/// Told before each thing goes, counted from 1, with the bytes that went before it; a stop is obeyed between
/// two things.
struct Watch
{
    std::function<void(qsizetype number, qsizetype count, const PathRemoval::Item &item, qint64 bytes)>
        before{};
    std::stop_token stop{};
};

struct Order
{
    InstalledApp app{};
    /// In the order in which they go, all of them before the application.
    std::vector<Leftover> leftovers{};
    Measure measure{};
    PathRemoval::Manner manner{};
    Watch watch{};
};

struct Result
{
    /// Why nothing was touched, for the log.
    std::optional<QString> refusal{};
    /// What went to the Trash, and what did not.
    std::vector<PathRemoval::Removal> removals{};
    /// What became of the application, for the log, where `removals` does not tell that: how much went of one
    /// that doesn't go by path, or why it stays.
    std::optional<std::expected<qint64, QString>> takenAway{};
};

/// Whether it runs is asked again. What fails does not stop the rest.
[[nodiscard]] Result uninstall(const HostApplications &host, const UninstallerServices &services,
    const RemovalServices &removal, const Order &order);

/// Removes each in order, until a stop; one failure does not stop the others.
[[nodiscard]] std::vector<PathRemoval::Removal> removeAll(const RemovalServices &removal,
    const std::vector<PathRemoval::Item> &items, const PathRemoval::Manner &manner, const Watch &watch);

/// What goes, by path, with an application: the leftovers, and the application last.
[[nodiscard]] std::vector<PathRemoval::Item> items(const Order &order);
[[nodiscard]] std::vector<PathRemoval::Item> items(const std::vector<Orphan> &orphans);

} // namespace Quillbrook::Uninstalling

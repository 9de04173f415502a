#pragma once

// The kinds of applications that one platform has beside bundles: which there are, what they wrote elsewhere,
// and how those go that don't go by moving a path. Every call blocks on the disk, some on other programs, and
// may come from any thread.

#include "Uninstaller/InstalledApp.h"
#include "Uninstaller/Orphan.h"
#include "Uninstaller/Plan.h"

#include <QSet>

#include <expected>
#include <stop_token>

namespace Quillbrook {

struct HostListing
{
    /// In the order they were found.
    std::vector<InstalledApp> apps{};
    /// Identifiers that somebody owns, whether or not they show up as an application.
    QSet<QString> owners{};
};

/// An orphan with the date of the newest thing in it.
struct FoundOrphan
{
    Orphan orphan{};
    std::optional<QDateTime> newestInside{};
    /// It lies in a place of the host's own, where more owners were asked about.
    bool isInHostPlace = false;

    bool operator==(const FoundOrphan &) const = default;
};

/// What a plan of the host's is about.
struct HostPlanRequest
{
    InstalledApp app{};
    /// All that are listed; it may be among them.
    std::vector<InstalledApp> all{};
    Measure measure{};
    /// What a person reads of a sentence, in which names are filled in afterwards; absent: the sentence.
    std::function<QString(const QString &sentence)> wording{};
};

class HostApplications
{
public:
    virtual ~HostApplications() = default;

    /// All of them without sizes, but for those that are known without measuring.
    [[nodiscard]] virtual HostListing listing() const = 0;
    /// The bytes of one of these.
    [[nodiscard]] virtual qint64 bytes(const InstalledApp &app, const Measure &measure) const = 0;
    /// The plan of one of these.
    [[nodiscard]] virtual Plan plan(const HostPlanRequest &request) const = 0;
    /// What is left in the host's places of what nobody in `listing` owns; largest first.
    [[nodiscard]] virtual std::vector<FoundOrphan> orphans(
        const HostListing &listing, const Measure &measure, qint64 staleDays) const = 0;
    /// Whether one of these runs; absent where it can't be told.
    [[nodiscard]] virtual std::optional<bool> isRunning(const InstalledApp &app) const = 0;
    /// Bytes of the runtimes that nothing else uses after it.
    [[nodiscard]] virtual qint64 runtimeBytes(const InstalledApp &app, const Measure &measure) const = 0;

    /// Why one that doesn't go by path could not be taken away now; absent where nothing stands against it.
    [[nodiscard]] virtual std::optional<QString> obstacle(const InstalledApp &app) const = 0;
    /// Takes one away that doesn't go by path, for good. May take minutes; once a stop is requested, it comes
    /// to an end soon. The error is for a person.
    [[nodiscard]] virtual std::expected<void, QString> takeAway(
        const InstalledApp &app, const std::stop_token &stop) const = 0;
};

} // namespace Quillbrook

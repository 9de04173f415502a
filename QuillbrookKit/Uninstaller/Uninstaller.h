#pragma once

// Which applications the machine has, what each wrote elsewhere, and what is left of those that are gone.
// Pure functions without state, for a worker thread: they block on the disk, and on the measuring for as long
// as that takes. Nothing here removes anything. Whatever can't be read means one row fewer.

#include "Uninstaller/Orphan.h"
#include "Uninstaller/Plan.h"
#include "Uninstaller/UninstallerServices.h"

#include <QStringList>

namespace Quillbrook::Uninstaller {

/// The folders that applications lie in, in raw bytes, for a home folder.
[[nodiscard]] std::vector<std::string> appFolders(const std::string &home);

/// The applications in `folders`, and one level deep in the folders there, largest first. Of those that share
/// an identifier the first is taken.
[[nodiscard]] std::vector<AppBundle> installedApps(
    const UninstallerServices &services, const std::vector<std::string> &folders, const Measure &measure);

/// The application at `path`; absent where nothing there says that it is one.
[[nodiscard]] std::optional<AppBundle> readBundle(
    const UninstallerServices &services, const std::string &path, const Measure &measure);

/// Whether an application of exactly this identifier runs; absent where it can't be told.
[[nodiscard]] std::optional<bool> isRunning(const UninstallerServices &services, const QString &bundleID);

/// What a plan is about. `library` is that of all users.
struct PlanRequest
{
    AppBundle app{};
    Measure measure{};
    std::string home{};
    std::string library = "/Library";
};

/// A refusal is a plan with `blocked` set, for which nothing was measured.
[[nodiscard]] Plan plan(const UninstallerServices &services, const PlanRequest &request);

struct OrphanRequest
{
    std::vector<AppBundle> installed{};
    Measure measure{};
    qint64 staleDays = 180;
    std::string home{};
};

/// Folders of some size, named like an identifier, that nothing installed can claim and that were not
/// modified for longer than `staleDays`; largest first.
[[nodiscard]] std::vector<Orphan> orphans(const UninstallerServices &services, const OrphanRequest &request);

/// Whether an identifier has the three pieces by which it can be taken for one.
[[nodiscard]] bool isReverseDomain(const QString &identifier);
/// A folder of this size, or of less, isn't worth showing.
inline constexpr qint64 orphanThreshold = 1'048'576;
/// Before this moment something counts as untouched.
[[nodiscard]] QDateTime staleBefore(const UninstallerServices &services, qint64 staleDays);

/// Why `app` must stay whatever its kind, in this order: it is a part of the system; it has no identifier; it
/// runs, or may. `running` is asked for last.
[[nodiscard]] QString systemSentence();
[[nodiscard]] QString unnamedSentence();
[[nodiscard]] QString runningSentence();
[[nodiscard]] QString unknownRunningSentence();
/// All of these, in which "{name}" stands for the application's name, for those who translate.
[[nodiscard]] QStringList sentences();

/// The leftovers that are worth showing, largest first.
[[nodiscard]] std::vector<Leftover> worthShowing(std::vector<Leftover> found);

} // namespace Quillbrook::Uninstaller

#pragma once

// The guards of `PathRemoval` that hold on every platform, as the table they are.

#include "Removal/HostGuards.h"

#include <array>
#include <span>

namespace Quillbrook::PathGuards {

/// Folders at the top of a home folder that are never removed as a whole.
inline constexpr std::array<std::string_view, 11> homeSkeleton{ "Desktop", "Documents", "Downloads",
    "Library", "Movies", "Music", "Pictures", "Public", "Applications", "Sites", "Developer" };

/// Extensions, in lower case, of packages: folders in form, one file in use.
inline constexpr std::array<QStringView, 14> libraryBundles{ u"photoslibrary", u"photolibrary", u"aplibrary",
    u"musiclibrary", u"tvlibrary", u"fcpbundle", u"logicx", u"band", u"sparsebundle", u"backupbundle", u"pvm",
    u"utm", u"vmwarevm", u"rtfd" };

/// In this order, the first match is named.
inline constexpr std::array<std::string_view, 12> systemRoots{ "/System", "/usr", "/bin", "/sbin", "/etc",
    "/var", "/private/var", "/private/etc", "/cores", "/dev", "/Volumes/Recovery", "/Library/Apple" };

[[nodiscard]] std::span<const Guard> builtIn();

/// The sentence of the first row of `table` that holds for `path`, in the words of `wording` where there is
/// one; absent when none does.
[[nodiscard]] std::optional<QString> answer(std::span<const Guard> table, const GuardedPath &path,
    const std::function<QString(const QString &sentence)> &wording = {});

/// The sentences about a package itself ({name}) and about what lies in one ({named}).
[[nodiscard]] QString packageSentence();
[[nodiscard]] QString insidePackageSentence();

} // namespace Quillbrook::PathGuards

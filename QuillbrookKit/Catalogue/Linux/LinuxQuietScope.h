#pragma once

// What Linux adds to the quiet scope's two fences: which folders of the home folder the first scan may enter,
// and which it neither enters nor measures, because they hold the user's own documents, photos, music and
// videos, mail, synchronised files, or keys and passwords.

#include "Platform/Linux/Folders/LinuxBaseFolders.h"
#include "Platform/Linux/Folders/LinuxUserFolders.h"
#include "Scan/FastScanner.h"

namespace Quillbrook::LinuxQuietScope {

/// To be united with the built-in allowlist, key by key. `moved` are the bases that are not in their usual
/// place, relative to `home`; of what lies around one nothing else is opened.
[[nodiscard]] FastScanner::Allowlist allowlist(const QString &home, const QStringList &moved = {});

/// Absolute paths, to be united with the built-in protected ones. Keys and passwords are protected in their
/// usual places and where `bases` moves them.
[[nodiscard]] QSet<QString> protectedPaths(
    const QString &home, const LinuxUserFolders::Folders &folders, const LinuxBaseFolders &bases = {});

} // namespace Quillbrook::LinuxQuietScope

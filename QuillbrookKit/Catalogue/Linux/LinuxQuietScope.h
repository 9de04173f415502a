#pragma once

// What Linux adds to the quiet scope's two fences: which folders of the home folder the first look may enter,
// and which it neither enters nor measures, because they hold the user's own documents, photos, music and
// videos, mail, synchronised files, or keys and passwords.

#include "Platform/Linux/Folders/LinuxUserFolders.h"
#include "Scan/FastScanner.h"

namespace Quillbrook::LinuxQuietScope {

/// To be united with the built-in allowlist, key by key.
[[nodiscard]] FastScanner::Allowlist allowlist(const QString &home);

/// Absolute paths, to be united with the built-in protected ones.
[[nodiscard]] QSet<QString> protectedPaths(const QString &home, const LinuxUserFolders::Folders &folders);

} // namespace Quillbrook::LinuxQuietScope

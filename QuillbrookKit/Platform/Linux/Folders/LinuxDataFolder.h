#pragma once

// Where programs keep the user's data, each in a folder of its own.

#include <string>

namespace Quillbrook {

class HomeFolder;

/// Absolute, in raw bytes, and without a slash at its end; it need not be there. The environment's answer
/// where that is a path, else the usual place in the home folder of this process.
[[nodiscard]] std::string linuxDataFolder(const HomeFolder &home);

} // namespace Quillbrook

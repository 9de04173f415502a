#pragma once

// How many files this process may have open at once.

namespace Quillbrook {

/// Raises the limit as far as the system grants without asking, up to half a million. To be called once,
/// before there are threads. Where it fails, the limit stays as it was.
void raiseOpenFileLimit();

} // namespace Quillbrook

#pragma once

// Ends the process on a broken invariant, in release builds too, after one line on standard error.
// For programming errors only; whatever a disk or a person can cause is handled, never fatal.

namespace Quillbrook {

[[noreturn]] void fatal(const char *message);

} // namespace Quillbrook

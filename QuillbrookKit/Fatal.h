#pragma once

// Ends the process on a broken invariant, in release builds too, after one line on standard error. For
// programming errors, for counts and sums past what their type holds, and for want of memory. Whatever else a
// disk or a person can cause is handled.

namespace Quillbrook {

[[noreturn]] void fatal(const char *message);

} // namespace Quillbrook

#pragma once

// What this process holds of the memory.

#include <cstdint>

namespace Quillbrook::Benchmarks {

/// Bytes: the most that was resident at any time since the program was started; 0 when the system does not
/// tell. (Not what getrusage tells: that also knows the process that started this one.)
[[nodiscard]] std::int64_t peakResident();

} // namespace Quillbrook::Benchmarks

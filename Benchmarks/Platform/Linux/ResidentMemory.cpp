#include "Platform/Linux/ResidentMemory.h"

#include <fstream>
#include <string>

namespace Quillbrook::Benchmarks {

std::int64_t peakResident()
{
    std::ifstream status("/proc/self/status");
    for (std::string field; status >> field;) {
        std::int64_t kibibytes = 0;
        if (field == "VmHWM:" && status >> kibibytes)
            return kibibytes * 1024;
    }
    return 0;
}

} // namespace Quillbrook::Benchmarks

#include "Uninstaller/MeasuredBytes.h"

#include "Platform/FileFacts.h"
#include "Scan/FastScanner.h"

namespace Quillbrook {

namespace {

// Most of what is measured is small, and hundreds of scans follow one another.
constexpr qsizetype expectedNodes = 4096;

} // namespace

Measure measureOnDisk(const MeasuringServices &services, const std::stop_token &stop)
{
    const int threads = FastScanner::defaultThreadCount(services.processors);
    return [services, stop, threads](const std::string &path) -> qint64 {
        const auto kind = services.files.kind(path);
        if (kind != FileKind::directory)
            return kind ? services.files.length(path).value_or(0) : 0;
        FastScanner scanner(services.directories);
        const auto result = scanner.scan({ .rootPath = path,
            .threads = threads,
            .exclusions = FastScanner::defaultExclusions(),
            .expectedNodes = expectedNodes,
            .stop = stop });
        return result.tree && result.root >= 0 ? result.tree->size(result.root) : 0;
    };
}

} // namespace Quillbrook

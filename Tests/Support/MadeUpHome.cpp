#include "Support/MadeUpHome.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>

namespace Quillbrook {

void MadeUpHome::touch(const std::string &name, const QDateTime &moment) const
{
    const auto milliseconds = moment.toMSecsSinceEpoch();
    const timespec time{ .tv_sec = milliseconds / 1000, .tv_nsec = milliseconds % 1000 * 1'000'000 };
    const timespec times[2] = { time, time };
    if (::utimensat(AT_FDCWD, tree.path(name).c_str(), times, 0) != 0) {
        std::perror("utimensat");
        std::abort();
    }
}

FastScanner::Result MadeUpHome::scan()
{
    return FastScanner(m_directories).scan({ .rootPath = path().toStdString(), .threads = 2 });
}

} // namespace Quillbrook

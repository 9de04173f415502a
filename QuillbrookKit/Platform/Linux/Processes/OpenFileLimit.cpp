#include "Platform/Linux/Processes/OpenFileLimit.h"

#include <algorithm>
#include <sys/resource.h>

namespace Quillbrook {

namespace {

// Programs that we start inherit the limit, and some close every number up to it, one by one. A container may
// grant a billion.
constexpr rlim_t enough = 524'288;

} // namespace

void raiseOpenFileLimit()
{
    rlimit limit = {};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= enough)
        return;
    limit.rlim_cur = std::min(limit.rlim_max, enough);
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

} // namespace Quillbrook

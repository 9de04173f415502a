// Walks a tree bare and prints what it took as one JSON object.
//
//     BareWalk FOLDER THREADS

#include "Platform/Linux/BareWalk.h"

#include <cstdio>
#include <cstdlib>
#include <sys/resource.h>

namespace {

// A folder stays open while it has child folders that wait, so a deep tree holds many.
void allowManyDescriptors()
{
    rlimit limit = {};
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = limit.rlim_max;
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
}

} // namespace

int main(int count, char **arguments)
{
    if (count != 3) {
        std::fputs("BareWalk FOLDER THREADS\n", stderr);
        return 2;
    }
    allowManyDescriptors();
    const auto walked = Quillbrook::Benchmarks::bareWalk(arguments[1], std::atoi(arguments[2]));
    std::printf(
        "{\"seconds\": %.6f, \"folders\": %llu, \"files\": %llu, \"blocks\": %llu, \"failures\": %llu}\n",
        walked.seconds, static_cast<unsigned long long>(walked.folders),
        static_cast<unsigned long long>(walked.files), static_cast<unsigned long long>(walked.blocks),
        static_cast<unsigned long long>(walked.failures));
    return walked.failures == 0 ? 0 : 1;
}

// A slow disk for end-to-end tests: loaded before the C library, it lets every reading of a folder's entries
// take SLOW_DISK_MILLISECONDS, so that a scan of a few thousand folders lasts long enough to be watched and
// stopped by hand. The program under test is the one that ships.

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

extern "C" ssize_t getdents64(int folder, void *buffer, size_t size) noexcept
{
    static const long milliseconds = [] {
        const char *value = std::getenv("SLOW_DISK_MILLISECONDS");
        return value ? std::atol(value) : 0L;
    }();
    timespec left{ milliseconds / 1000, milliseconds % 1000 * 1000000 };
    while (nanosleep(&left, &left) != 0 && errno == EINTR) { }
    return syscall(SYS_getdents64, folder, buffer, size);
}

#pragma once

// A disk of 256 KiB that only the test's own program sees, to be filled. The program has entered mounts of
// its own before; without the disk it ends, and writes nowhere else.

#include "Support/FakeSpaceReserve.h"
#include "Support/PrivateMounts.h"
#include "Support/TempTree.h"

#include <algorithm>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace Quillbrook {

class SmallDisk
{
public:
    SmallDisk()
        : m_mounted("none", madeFolder(m_tree), "tmpfs", 0, "size=256k,mode=755")
    {
        requireDisk();
    }

    [[nodiscard]] std::string path() const { return m_tree.path("disk"); }
    [[nodiscard]] std::string path(const std::string &name) const { return path() + '/' + name; }
    void folder(const std::string &name) const { m_tree.folder("disk/" + name); }

    /// Takes all space but `bytesFree`.
    void fill(off_t bytesFree = 0) const
    {
        requireDisk();
        const int file = ::open(path("filler").c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
        const std::string block(4096, 'f');
        while (::write(file, block.data(), block.size()) > 0) { }
        const auto length = ::lseek(file, 0, SEEK_END);
        if (::ftruncate(file, std::max<off_t>(length - bytesFree, 0)) != 0)
            qFatal("the small disk can't be filled");
        ::close(file);
    }
    /// Gives all of that back.
    void empty() const { ::unlink(path("filler").c_str()); }

    /// Takes `bytes` that `reserve` gives back.
    void keep(FakeSpaceReserve &reserve, qint64 bytes) const
    {
        requireDisk();
        m_tree.file("disk/reserve", bytes);
        reserve.onRelease = [reserved = path("reserve")] { ::unlink(reserved.c_str()); };
    }

private:
    static std::string madeFolder(const TempTree &tree)
    {
        tree.folder("disk");
        return tree.path("disk");
    }

    void requireDisk() const
    {
        if (!m_mounted.failure().isEmpty() || !PrivateMounts::isMounted(path()))
            qFatal("the small disk is not there");
    }

    TempTree m_tree;
    PrivateMounts::Mounted m_mounted;
};

} // namespace Quillbrook

#include "Support/TempTree.h"

#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

void require(bool done, const char *what)
{
    if (done)
        return;
    std::perror(what);
    std::abort();
}

std::vector<std::string> namesIn(int folder)
{
    std::vector<std::string> names;
    auto *listing = ::fdopendir(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    require(listing != nullptr, "fdopendir");
    while (const auto *entry = ::readdir(listing)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..")
            names.push_back(name);
    }
    ::closedir(listing);
    return names;
}

// Folders come up to the top before they are emptied, so that neither the length of a path nor the depth of a
// tree matters.
void removeContents(int top)
{
    int moved = 0;
    for (auto names = namesIn(top); !names.empty(); names = namesIn(top)) {
        for (const auto &name : names) {
            if (::unlinkat(top, name.c_str(), 0) == 0)
                continue;
            ::fchmodat(top, name.c_str(), 0700, 0);
            const auto folder = ::openat(top, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
            require(folder >= 0, "openat");
            for (const auto &child : namesIn(folder)) {
                if (::unlinkat(folder, child.c_str(), 0) == 0)
                    continue;
                ::fchmodat(folder, child.c_str(), 0700, 0);
                const auto upper = "\n" + std::to_string(moved++);
                require(::renameat(folder, child.c_str(), top, upper.c_str()) == 0, "renameat");
            }
            ::close(folder);
            require(::unlinkat(top, name.c_str(), AT_REMOVEDIR) == 0, "rmdir");
        }
    }
}

void makeParents(const std::string &path)
{
    for (auto slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1))
        ::mkdir(path.substr(0, slash).c_str(), 0755);
}

} // namespace

TempTree::TempTree(const QString &place)
    : m_path((place + u"/quillbrook-test-XXXXXX"_s).toStdString())
{
    require(::mkdtemp(m_path.data()) != nullptr, "mkdtemp");
    require(::chmod(m_path.c_str(), 0755) == 0, "chmod");
}

TempTree::~TempTree()
{
    ::chmod(m_path.c_str(), 0700);
    const auto folder = ::open(m_path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        removeContents(folder);
        ::close(folder);
    }
    ::rmdir(m_path.c_str());
}

QString TempTree::text(const std::string &name) const
{
    return QString::fromStdString(name.empty() ? m_path : path(name));
}

void TempTree::folder(const std::string &name) const
{
    makeParents(path(name) + '/');
    struct stat status
    {
    };
    require(::stat(path(name).c_str(), &status) == 0 && S_ISDIR(status.st_mode), "mkdir");
}

void TempTree::file(const std::string &name, qint64 bytes) const
{
    fileWith(name, std::string(static_cast<size_t>(bytes), 'q'));
}

void TempTree::fileWith(const std::string &name, const std::string &content) const
{
    makeParents(path(name));
    const auto file = ::open(path(name).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    require(file >= 0, "open");
    require(::write(file, content.data(), content.size()) == static_cast<ssize_t>(content.size()), "write");
    ::close(file);
}

void TempTree::link(const std::string &name, const std::string &target) const
{
    makeParents(path(name));
    require(::symlink(target.c_str(), path(name).c_str()) == 0, "symlink");
}

void TempTree::hardLink(const std::string &name, const std::string &existing) const
{
    makeParents(path(name));
    require(::link(path(existing).c_str(), path(name).c_str()) == 0, "link");
}

void TempTree::pipe(const std::string &name) const
{
    makeParents(path(name));
    require(::mkfifo(path(name).c_str(), 0644) == 0, "mkfifo");
}

void TempTree::permissions(const std::string &name, unsigned mode) const
{
    require(::chmod(path(name).c_str(), mode) == 0, "chmod");
}

qint64 TempTree::allocated(const std::string &name) const
{
    struct stat status
    {
    };
    require(::lstat(path(name).c_str(), &status) == 0, "lstat");
    return qint64{ status.st_blocks } * 512;
}

} // namespace Quillbrook

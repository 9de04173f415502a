#include "Support/TempTree.h"

#include <QDir>

#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Quillbrook {

namespace {

void require(bool done, const char *what)
{
    if (done)
        return;
    std::perror(what);
    std::abort();
}

// Goes by open folders, so that the length of a path does not matter.
void removeContents(int folder)
{
    ::fchmod(folder, 0700);
    auto *listing = ::fdopendir(::dup(folder));
    require(listing != nullptr, "fdopendir");
    while (const auto *entry = ::readdir(listing)) {
        const std::string name = entry->d_name;
        if (name == "." || name == "..")
            continue;
        const auto child = ::openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (child >= 0) {
            removeContents(child);
            ::close(child);
        }
        ::unlinkat(folder, name.c_str(), child >= 0 ? AT_REMOVEDIR : 0);
    }
    ::closedir(listing);
}

void makeParents(const std::string &path)
{
    for (auto slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1))
        ::mkdir(path.substr(0, slash).c_str(), 0755);
}

} // namespace

TempTree::TempTree()
    : m_path((QDir::tempPath() + QStringLiteral("/quillbrook-test-XXXXXX")).toStdString())
{
    require(::mkdtemp(m_path.data()) != nullptr, "mkdtemp");
    require(::chmod(m_path.c_str(), 0755) == 0, "chmod");
}

TempTree::~TempTree()
{
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

#pragma once

// Opens the folders of one scan for one worker, each relative to an ancestor that is still open where there
// is one. A walk goes deep first, so that this is mostly the parent: one name is looked up instead of a whole
// path, and how long the path has grown does not matter. No link is followed and no mount is entered.

#include "Platform/Linux/Files/FileDescriptor.h"

#include <string>
#include <vector>

namespace Quillbrook {

class OpenFolders
{
public:
    /// `rootPath` is the path that all others start with, `rootDescriptor` its open folder, which outlives
    /// this object.
    OpenFolders(std::string rootPath, int rootDescriptor);

    /// A descriptor of the folder at `path`, the root or below it; -1 when it can't be opened. It stays owned
    /// here and is good until the next call.
    [[nodiscard]] int open(const std::string &path);

private:
    struct Ancestor
    {
        size_t pathLength;
        FileDescriptor folder;
    };

    void keepAncestorsOf(const std::string &path);
    [[nodiscard]] FileDescriptor openFromNearest(const std::string &path);
    [[nodiscard]] FileDescriptor openBelow(int folder, const char *relativePath, size_t length);
    [[nodiscard]] FileDescriptor openAt(int folder, const char *relativePath, int flags);

    // How much of a path the root is: nothing for "/", so that a slash always follows.
    size_t m_rootLength;
    int m_root;
    // The folder opened last and those of its ancestors that are still open, outermost first.
    std::string m_path;
    std::vector<Ancestor> m_line;
    bool m_canRefuseMounts = true;
};

} // namespace Quillbrook

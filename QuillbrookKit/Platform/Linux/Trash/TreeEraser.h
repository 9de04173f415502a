#pragma once

// Deletes one thing for good, a folder with all in it. Works relative to open folders alone, so that a folder
// that is exchanged for a link meanwhile is not entered; follows no link and never leaves the mount that it
// started on. The deepest few folders stay open with a buffer each, and of those above only the names are
// kept: neither the depth of a tree nor the width of a folder matters. Serves one deletion on one thread.

#include "Platform/Linux/Files/FileDescriptor.h"
#include "Platform/Linux/Folders/MountedDevice.h"
#include "Platform/Linux/Trash/FileCalls.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Quillbrook {

/// What came of it. What vanished in between counts as neither.
struct Erasure
{
    std::uint64_t removed = 0;
    /// Things that stay for a reason of their own; the folders that they lie in stay with them.
    std::uint64_t failures = 0;
    /// The errno of the first, and its path below what was to be deleted, empty for that itself.
    int firstError = 0;
    std::string firstPath{};

    bool operator==(const Erasure &) const = default;

    [[nodiscard]] bool isComplete() const { return failures == 0; }
};

class TreeEraser
{
public:
    /// `startFolder` is the open folder in which the thing lies. Both outlive this object.
    TreeEraser(const FileCalls &calls, int startFolder);
    TreeEraser(const TreeEraser &) = delete;
    TreeEraser &operator=(const TreeEraser &) = delete;
    ~TreeEraser();

    /// Deletes `name` in that folder.
    [[nodiscard]] Erasure erase(const char *name);

private:
    struct Entry;
    struct Buffer;
    struct Level;

    [[nodiscard]] const Entry *next(Level &level);
    void take(const Entry &entry);
    void enter(const char *name);
    void leave();
    void startAgain(Level &level);
    void pop();

    [[nodiscard]] int openFolder(const char *name, int flags);
    [[nodiscard]] int openOnMount(const char *name, int flags);
    [[nodiscard]] FileDescriptor openGranting(const char *name, std::optional<mode_t> &modeBefore);
    [[nodiscard]] int unlink(Level *parent, const char *name, int flags);
    [[nodiscard]] bool grantRights(Level &level);
    void putBackRights(Level &level);

    void closeOutermost(size_t mostOpen);
    [[nodiscard]] bool reopenParent();
    [[nodiscard]] FileDescriptor walkDown(size_t depth);

    [[nodiscard]] Level *parentOfLast();
    [[nodiscard]] int folderNow() const;
    void recordFailure(int error, const char *name);

    const FileCalls &m_calls;
    const int m_start;
    MountedDevice m_place;
    std::vector<Level> m_levels;
    size_t m_closedLevels = 0;
    std::vector<std::unique_ptr<Buffer>> m_spareBuffers;
    Erasure m_result;
    bool m_canRefuseMounts = true;
};

} // namespace Quillbrook

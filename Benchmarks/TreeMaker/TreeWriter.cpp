#include "TreeMaker/TreeWriter.h"

#include "TreeMaker/FileMaker.h"
#include "TreeMaker/FolderOpener.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace Quillbrook::Benchmarks {

namespace {

namespace fs = std::filesystem;

constexpr auto stampEnding = ".stamp";
// Lies beside a tree from before its first file until its stamp is written, and so tells whose it is.
constexpr auto unfinishedEnding = ".unfinished";
// How the content of both begins: a file of that ending which begins otherwise is somebody else's.
constexpr auto markBeginning = "quillbrook benchmark tree ";

// What a home tree takes at most, with a margin.
constexpr std::uint64_t bytesPerFile = 2900;
constexpr std::uint64_t bytesPerFolder = 8192;

fs::path beside(const fs::path &tree, const char *ending)
{
    auto path = tree;
    path += ending;
    return path;
}

std::unexpected<std::string> failure(const std::string &doing, const fs::path &path)
{
    return std::unexpected(doing + " " + path.string() + ": " + std::strerror(errno));
}

std::string contentOf(const fs::path &path)
{
    std::ifstream file(path, std::ios::binary);
    return { std::istreambuf_iterator<char>(file), {} };
}

bool isMark(const fs::path &path)
{
    return fs::is_regular_file(fs::symlink_status(path)) && contentOf(path).starts_with(markBeginning);
}

bool writeText(const fs::path &path, const std::string &text)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << text;
    file.close();
    return !file.fail();
}

std::expected<void, std::string> removeOwn(const fs::path &tree)
{
    std::error_code error;
    fs::remove_all(tree, error);
    if (error)
        return std::unexpected("Can't remove " + tree.string() + ": " + error.message());
    fs::remove(beside(tree, stampEnding), error);
    fs::remove(beside(tree, unfinishedEnding), error);
    return {};
}

std::expected<void, std::string> checkRoom(const TreePlan &plan, const fs::path &directory)
{
    struct statvfs volume = {};
    if (::statvfs(directory.c_str(), &volume) != 0)
        return failure("Can't ask the volume of", directory);
    const auto folders = plan.folders.size();
    const auto nodes = plan.request.files + folders;
    // A file system without a fixed number of inodes tells 0 of 0.
    if (volume.f_files > 0 && volume.f_favail < nodes)
        return std::unexpected("Not enough free inodes in " + directory.string());
    const auto perFile = plan.request.kind == TreeKind::home ? bytesPerFile : 64;
    if (volume.f_bavail * volume.f_frsize < plan.request.files * perFile + folders * bytesPerFolder)
        return std::unexpected("Not enough free space in " + directory.string());
    return {};
}

std::expected<void, std::string> fill(const TreePlan &plan, int root, const fs::path &tree)
{
    FolderOpener folders(plan, root);
    FileMaker files(plan, root);
    for (size_t index = 0; index < plan.folders.size(); ++index) {
        const auto &folder = plan.folders[index];
        if (index > 0) {
            const auto parent = folders.open(static_cast<size_t>(folder.parent));
            if (parent < 0 || ::mkdirat(parent, folder.name.c_str(), 0755) != 0)
                return failure("Can't make folder \"" + folder.name + "\" in", tree);
        }
        const auto descriptor = folders.open(index);
        if (descriptor < 0 || !files.fill(descriptor, index))
            return failure("Can't make files in folder \"" + folder.name + "\" of", tree);
    }
    return {};
}

std::expected<void, std::string> makeTree(const TreePlan &plan, const fs::path &tree)
{
    if (!writeText(beside(tree, unfinishedEnding), description(plan)))
        return failure("Can't write beside", tree);
    if (::mkdir(tree.c_str(), 0755) != 0)
        return failure("Can't make", tree);
    const auto root = ::open(tree.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (root < 0)
        return failure("Can't open", tree);
    const auto filled = fill(plan, root, tree);
    ::close(root);
    if (!filled)
        return filled;
    if (!writeText(beside(tree, stampEnding), description(plan)))
        return failure("Can't write the stamp of", tree);
    ::unlink(beside(tree, unfinishedEnding).c_str());
    return {};
}

} // namespace

std::expected<StandingTree, std::string> ensureTree(const TreePlan &plan, const fs::path &directory)
{
    const auto tree = directory / folderName(plan.request);
    if (fs::is_directory(tree) && contentOf(beside(tree, stampEnding)) == description(plan))
        return StandingTree{ .path = tree };
    if (isMark(beside(tree, unfinishedEnding))) {
        if (const auto removed = removeOwn(tree); !removed)
            return std::unexpected(removed.error());
    }
    if (fs::exists(fs::symlink_status(tree)))
        return std::unexpected(tree.string() + " is in the way and has no stamp of ours");
    if (const auto room = checkRoom(plan, directory); !room)
        return std::unexpected(room.error());
    if (const auto made = makeTree(plan, tree); !made)
        return std::unexpected(made.error());
    return StandingTree{ .path = tree, .isNew = true };
}

void settle(const StandingTree &tree)
{
    if (!tree.isNew)
        return;
    const auto root = ::open(tree.path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (root < 0)
        return;
    ::syncfs(root);
    ::close(root);
}

std::expected<int, std::string> removeTrees(const fs::path &directory)
{
    std::vector<fs::path> trees;
    std::error_code error;
    for (const auto &entry : fs::directory_iterator(directory, error))
        if ((entry.path().extension() == stampEnding || entry.path().extension() == unfinishedEnding)
            && isMark(entry.path()))
            trees.push_back(fs::path(entry.path()).replace_extension());
    for (const auto &tree : trees)
        if (const auto removed = removeOwn(tree); !removed)
            return std::unexpected(removed.error());
    return static_cast<int>(trees.size());
}

} // namespace Quillbrook::Benchmarks

#pragma once

// A home folder in a temporary folder with a trash of its own, and ways to look at both.

#include "Platform/Linux/Trash/LinuxTrash.h"
#include "Support/FailingFileCalls.h"
#include "Support/FakeClock.h"
#include "Support/FakeSpaceReserve.h"
#include "Support/TempTree.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <unistd.h>

namespace Quillbrook {

class TrashFixture
{
public:
    TempTree home;
    FakeClock clock;
    FakeSpaceReserve reserve;
    FailingFileCalls calls;
    const TrashPlaces places{ .homeTrash = home.path(".local/share/Trash"), .user = ::getuid() };
    LinuxTrash trash{ places, reserve, clock, calls };

    TrashFixture() = default;
    explicit TrashFixture(const std::string &place)
        : home(QString::fromStdString(place))
    {
    }

    [[nodiscard]] std::string files(const std::string &name) const
    {
        return places.homeTrash + "/files/" + name;
    }
    [[nodiscard]] std::string note(const std::string &name) const
    {
        return places.homeTrash + "/info/" + name + ".trashinfo";
    }

    /// Whether something lies there, a link not followed.
    [[nodiscard]] static bool isThere(const std::string &path)
    {
        std::error_code error;
        return std::filesystem::exists(std::filesystem::symlink_status(path, error));
    }
    [[nodiscard]] static std::string content(const std::string &path)
    {
        std::ifstream file(path, std::ios::binary);
        return { std::istreambuf_iterator<char>(file), {} };
    }
    /// Names in a folder, sorted; none where there is no folder.
    [[nodiscard]] static std::vector<std::string> names(const std::string &path)
    {
        std::vector<std::string> found;
        std::error_code error;
        for (const auto &entry : std::filesystem::directory_iterator(path, error))
            found.push_back(entry.path().filename().string());
        std::ranges::sort(found);
        return found;
    }
    /// Everything below a folder: paths relative to it, with what a file holds and where a link leads.
    [[nodiscard]] static std::map<std::string, std::string> everything(const std::string &path)
    {
        std::map<std::string, std::string> found;
        std::error_code error;
        for (const auto &entry : std::filesystem::recursive_directory_iterator(path, error)) {
            const auto relative = entry.path().string().substr(path.size() + 1);
            if (entry.is_symlink())
                found[relative] = "link to " + std::filesystem::read_symlink(entry.path()).string();
            else
                found[relative] = entry.is_directory() ? "folder" : "file: " + content(entry.path().string());
        }
        return found;
    }
};

} // namespace Quillbrook

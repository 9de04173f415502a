#pragma once

// Where the trashes of a user lie: one below the home folder, and one at the top of every other volume.

#include <array>
#include <optional>
#include <string>

namespace Quillbrook {

class HomeFolder;

struct TrashPlaces
{
    /// Absolute, standardised.
    std::string homeTrash{};
    unsigned user = 0;

    /// A path seen from the trash that it is or lies in.
    struct Position
    {
        std::string trash{};
        /// What follows the trash and its slash; empty for the trash itself.
        std::string inner{};

        bool operator==(const Position &) const = default;
    };

    /// Those of this process's user, by its environment.
    [[nodiscard]] static TrashPlaces ofThisUser(const HomeFolder &home);

    /// Absent for what lies in no trash of the user. `path` is standardised.
    [[nodiscard]] std::optional<Position> position(const std::string &path) const;
    /// Whether it lies where the trash of a volume would be, and no volume is there.
    [[nodiscard]] bool isOnAbsentVolume(const std::string &path) const;
    /// The folder in `.Trash` at the top of a volume, and the folder at its top where there is none.
    [[nodiscard]] std::string userName() const { return std::to_string(user); }
    [[nodiscard]] std::string ownTrashName() const { return ".Trash-" + userName(); }

private:
    /// As they stand behind the top of a volume.
    [[nodiscard]] std::array<std::string, 2> namesOnVolumes() const;
};

} // namespace Quillbrook

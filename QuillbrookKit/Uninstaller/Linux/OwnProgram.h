#pragma once

// What an entry of this user's starts, and whether that may go with it.

#include <QStringList>

#include <string>
#include <vector>

namespace Quillbrook {

struct ApplicationPlaces;

struct OwnProgram
{
    /// Where the program lies (raw bytes); empty where the command names none that is there.
    std::string path{};
    /// Its last component.
    QString name{};
    /// Paths by which a process of it is known: the program, and the script it is given.
    std::vector<std::string> marks{};
    bool isAppImage = false;
    bool isInHome = false;
    /// It is an AppImage, or a regular file that can be run, in one of the folders for such.
    bool mayGo = false;

    /// By the words of a command.
    [[nodiscard]] static OwnProgram of(const QStringList &command, const ApplicationPlaces &places);
    /// Whether a program of that name or path is there.
    [[nodiscard]] static bool isThere(const QString &program, const ApplicationPlaces &places);
    /// The AppImages that lie in the usual folders.
    [[nodiscard]] static std::vector<std::string> appImages(const ApplicationPlaces &places);
};

} // namespace Quillbrook

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
    /// Paths by which a process of it is known: those of the program, or of the script that it is given.
    std::vector<std::string> marks{};
    bool isAppImage = false;
    bool isInHome = false;
    /// It is an AppImage, or a regular file that can be run and really lies in one of the folders for such.
    bool mayGo = false;

    /// By the words of a command.
    [[nodiscard]] static OwnProgram of(const QStringList &command, const ApplicationPlaces &places);
    /// The paths by which a process that runs the file at `path` is known: the kernel tells where a program
    /// really lies. Not where that is a program which starts others, whose processes would pass for this
    /// one's.
    [[nodiscard]] static std::vector<std::string> marksOf(const std::string &path);
    /// Whether a program of that name or path is there.
    [[nodiscard]] static bool isThere(const QString &program, const ApplicationPlaces &places);
    /// The AppImages that lie in the usual folders.
    [[nodiscard]] static std::vector<std::string> appImages(const ApplicationPlaces &places);
};

} // namespace Quillbrook

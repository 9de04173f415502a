#pragma once

// All desktop entries of a machine by their ids, the folder that counts first first.

#include "Uninstaller/Linux/DesktopEntry.h"

#include <QSet>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace Quillbrook {

class FileReading;
struct ApplicationPlaces;

enum class EntryPlace : std::uint8_t { ofUser, flatpakOfUser, ofSystem, flatpakOfSystem, ofSnaps };

struct FoundEntry
{
    /// The path below the folder, with "-" for "/" and without its ending.
    QString id{};
    std::string path{};
    EntryPlace place = EntryPlace::ofUser;
    DesktopEntry entry{};
};

struct DesktopEntries
{
    /// What can't be understood is left out, and takes nobody's place.
    std::map<QString, std::vector<FoundEntry>> found{};
    /// Those of all there are, understood or not.
    QSet<QString> ids{};

    [[nodiscard]] static DesktopEntries of(const FileReading &reading, const ApplicationPlaces &places);
};

} // namespace Quillbrook

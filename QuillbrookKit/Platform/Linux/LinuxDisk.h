#pragma once

// Everything by which files are read, written, moved and deleted, put together. The program has one, and so
// has each test and benchmark that works on real files.

#include "Platform/Linux/Copying/LinuxRelocationDisk.h"
#include "Platform/Linux/Drives/LinuxDrives.h"
#include "Platform/Linux/Drives/LinuxSpeedProbe.h"
#include "Platform/Linux/Files/LinuxFileFacts.h"
#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Platform/Linux/Files/LinuxFileWriting.h"
#include "Platform/Linux/Files/LinuxSpaceReserve.h"
#include "Platform/Linux/Folders/LinuxDirectoryReading.h"
#include "Platform/Linux/Folders/LinuxSpaceHolders.h"
#include "Platform/Linux/Trash/LinuxFileRemoval.h"
#include "Platform/Linux/Trash/LinuxTrash.h"

#include <string>

namespace Quillbrook {

struct LinuxDisk
{
    /// `programFolder` is the folder of the program's own data, absolute and in raw bytes; `clock` outlives
    /// this.
    LinuxDisk(const std::string &programFolder, const TrashPlaces &places, const Clock &clock)
        : reserve(programFolder + "/reserve")
        , trash(places, reserve, clock)
    {
    }

    LinuxDirectoryReading directories;
    LinuxFileFacts files;
    LinuxFileReading reading;
    LinuxSpaceReserve reserve;
    LinuxTrash trash;
    LinuxFileRemoval removal;
    LinuxSpaceHolders spaceHolders;
    LinuxFileWriting writing{ &reserve };
    LinuxRelocationDisk relocation;
    LinuxDrives drives;
    LinuxSpeedProbe speeds;
};

} // namespace Quillbrook

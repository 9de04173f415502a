#pragma once

// The file of the program's settings, by a path that Qt can open. Qt's paths are texts. Where the folder's
// name is none, the folder is held open, and the path leads by way of the kernel's folder of open things.

#include "Platform/Linux/Files/FileDescriptor.h"

#include <QString>

#include <string>

namespace Quillbrook {

class HomeFolder;

class LinuxSettingsFile
{
public:
    /// `Quillbrook/Quillbrook.conf` where the environment says that settings are, else in the usual place in
    /// the home folder of this process. A folder that has to be held is made.
    explicit LinuxSettingsFile(const HomeFolder &home);

    /// Absolute, and good as long as this object lives. Nothing can be opened there where the folder could
    /// not be held.
    [[nodiscard]] const QString &path() const { return m_path; }

private:
    FileDescriptor m_folder;
    QString m_path;
};

} // namespace Quillbrook

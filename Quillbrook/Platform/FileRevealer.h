#pragma once

// Shows a file or folder in the desktop's file manager.

#include <string>

namespace Quillbrook {

class FileRevealer
{
public:
    virtual ~FileRevealer() = default;
    /// Asks the file manager to open the folder that holds `path` (absolute, raw bytes) with it selected, or
    /// where no file manager answers to open that folder. Returns at once; without any way to do it nothing
    /// happens. Main thread only.
    virtual void reveal(const std::string &path) = 0;
};

} // namespace Quillbrook

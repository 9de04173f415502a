#pragma once

// Where the user's files are. The two homes differ exactly when the program runs in a sandbox.

#include <QString>

#include <string>

namespace Quillbrook {

class HomeFolder
{
public:
    virtual ~HomeFolder() = default;
    /// The home this process is given: the sandbox's own inside a sandbox, else the same as
    /// `realHomeDirectory`.
    [[nodiscard]] virtual QString homeDirectory() const = 0;
    /// The user's home by the account database, normalised (absolute, no trailing slash).
    [[nodiscard]] virtual QString realHomeDirectory() const = 0;
    /// The same two in raw bytes, for system calls. The texts repair what is not UTF-8 in them.
    [[nodiscard]] virtual std::string rawHomeDirectory() const { return homeDirectory().toStdString(); }
    [[nodiscard]] virtual std::string rawRealHomeDirectory() const
    {
        return realHomeDirectory().toStdString();
    }
};

} // namespace Quillbrook

#pragma once

// The home folder by the account database. Inside a Flatpak that may not see the home folder, and inside a
// strictly confined Snap, the process has a home of its own.

#include "Platform/HomeFolder.h"
#include "RawText.h"

#include <QByteArray>
#include <QProcessEnvironment>

#include <optional>
#include <string>

namespace Quillbrook {

class LinuxHomeFolder final : public HomeFolder
{
public:
    /// What tells of a sandbox and of the account.
    struct Sources
    {
        /// Content of /.flatpak-info; absent outside a Flatpak.
        std::optional<QByteArray> flatpakInfo{};
        QProcessEnvironment environment{};
        /// The home of the account database, in raw bytes; absent when it has none.
        std::optional<std::string> accountHome{};
    };

    /// Those of this process.
    LinuxHomeFolder();
    explicit LinuxHomeFolder(const Sources &sources);

    [[nodiscard]] QString homeDirectory() const override { return repairedText(m_home); }
    [[nodiscard]] QString realHomeDirectory() const override { return repairedText(m_realHome); }
    [[nodiscard]] std::string rawHomeDirectory() const override { return m_home; }
    [[nodiscard]] std::string rawRealHomeDirectory() const override { return m_realHome; }

private:
    std::string m_realHome;
    std::string m_home;
};

/// Whether the environment is that of a Snap under strict confinement: only there HOME is its own data
/// folder.
[[nodiscard]] bool isStrictSnap(const QProcessEnvironment &environment);

} // namespace Quillbrook

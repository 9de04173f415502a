#pragma once

// Drives by the kernel's mount table.

#include "Platform/Drives.h"
#include "Platform/Linux/Drives/DriveKind.h"

namespace Quillbrook {

class LinuxDrives final : public Drives
{
public:
    LinuxDrives() = default;
    explicit LinuxDrives(DriveKinds kinds)
        : m_kinds(std::move(kinds))
    {
    }

    [[nodiscard]] DriveFacts facts(const std::string &path) const override;
    [[nodiscard]] std::optional<bool> areOnOneFileSystem(
        const std::string &one, const std::string &other) const override;
    [[nodiscard]] QString name(const std::string &path) const override;
    [[nodiscard]] QString likelyName(const std::string &path) const override;

    /// The mount that holds `path`; absent where it can't be told.
    [[nodiscard]] static std::optional<Mount> mountOf(const std::string &path);

private:
    DriveKinds m_kinds;
};

} // namespace Quillbrook

#pragma once

// Whether the volume of a mount is built in, can be taken out, or is neither, as far as the system tells it.

#include "Platform/Linux/Folders/MountTable.h"

#include <QString>

#include <chrono>
#include <optional>
#include <string>

namespace Quillbrook {

struct DriveKind
{
    std::optional<bool> isRemovable{};
    std::optional<bool> isInternal{};

    bool operator==(const DriveKind &) const = default;
};

class DriveKinds
{
public:
    /// Where it is asked; other than the machine's for tests.
    struct Options
    {
        /// The kernel's folder of devices.
        std::string devices = "/sys";
        /// Address of the bus of the disk service; empty for the system's own.
        QString busAddress{};
        /// How long that service has to answer.
        std::chrono::milliseconds patience{ 2000 };
        /// The number of a device, as "8:1", by its path; empty where it can't be told.
        std::string (*deviceNumber)(const std::string &path) = &numberOfDevice;
    };

    DriveKinds() = default;
    explicit DriveKinds(Options options)
        : m_options(std::move(options))
    {
    }

    /// By the type of its file system, by what the disk service says of its device, and where that does not
    /// answer, by what the kernel says. Nothing for what stands on no device.
    [[nodiscard]] DriveKind of(const Mount &mount) const;

private:
    static std::string numberOfDevice(const std::string &path);
    [[nodiscard]] std::optional<DriveKind> toldByService(const std::string &device) const;
    [[nodiscard]] DriveKind toldByKernel(const std::string &device) const;

    Options m_options;
};

} // namespace Quillbrook

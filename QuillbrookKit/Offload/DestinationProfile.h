#pragma once

// What a folder on a drive can take and how fast, as it was measured. A plain value.

#include <QString>

#include <string>

namespace Quillbrook {

struct DestinationProfile
{
    /// Absolute, raw bytes.
    std::string path{};
    double writeMBPerSecond = 0;
    /// Past what the system keeps in memory.
    double readMBPerSecond = 0;
    qint64 freeBytes = 0;
    bool isRemovable = false;
    /// Neither internal nor removable, by what the volume says.
    bool isNetwork = false;
    /// A drive in this machine or plugged into it, by what it says. Any other may keep whoever asks it
    /// waiting.
    bool isLocal = false;
    /// Whether owners, rights and attributes of files survive there.
    bool keepsAttributes = true;

    bool operator==(const DestinationProfile &) const = default;

    [[nodiscard]] bool isSlowBus() const { return writeMBPerSecond < slowestMBPerSecond; }
    /// Both rates and what is free, in words.
    [[nodiscard]] QString summary() const;

private:
    static constexpr double slowestMBPerSecond = 150.0;
};

} // namespace Quillbrook

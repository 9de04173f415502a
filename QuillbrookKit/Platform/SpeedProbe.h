#pragma once

// Measures a drive with a real file.

#include <QString>

#include <expected>
#include <stop_token>
#include <string>

namespace Quillbrook {

/// Seconds that one sample took, at least 0.0001 each.
struct MeasuredSpeed
{
    double writeSeconds = 0;
    double readSeconds = 0;
    /// What was set on the sample as owner's rights and attributes was still so afterwards.
    bool keepsAttributes = true;
};

class SpeedProbe
{
public:
    struct Sample
    {
        /// Absolute, raw bytes.
        std::string folder{};
        /// A multiple of 4096.
        qint64 bytes = 0;
        std::stop_token stop{};
    };

    virtual ~SpeedProbe() = default;
    /// Writes so many bytes to a file of its own in the folder, until they are on the device, and reads them
    /// back past what the system keeps in memory. Nothing of it remains, nor of a measurement that was cut
    /// off more than a day ago. The error, a sentence for a person, says why it can't be written there.
    /// Blocks for as long as the drive takes; any thread.
    [[nodiscard]] virtual std::expected<MeasuredSpeed, QString> measure(const Sample &sample) const = 0;
};

} // namespace Quillbrook

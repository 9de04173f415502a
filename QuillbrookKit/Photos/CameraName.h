#pragma once

// The moment at which a camera, a phone or a screen took a picture, as the name of its file tells it. Pure
// functions on raw bytes.

#include <QDateTime>

#include <optional>
#include <string_view>
#include <unordered_map>

namespace Quillbrook {

/// What a name says, in the time of the place it was taken in, or of UTC. Where only a day is told it is the
/// beginning of that.
struct CameraMoment
{
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    bool isUtc = false;

    bool operator==(const CameraMoment &) const = default;
};

namespace CameraName {

/// `name` with or without its extension. Absent where it has none of the usual forms, or tells no real
/// moment.
[[nodiscard]] std::optional<CameraMoment> moment(std::string_view name);

} // namespace CameraName

/// Turns such moments into seconds since 1970 by this machine's time zone, quickly for many of a few days.
/// One thread.
class MomentClock
{
public:
    [[nodiscard]] qint64 seconds(const CameraMoment &moment);

private:
    /// When a day begins; absent for one on which the clock is changed.
    [[nodiscard]] std::optional<qint64> beginning(const QDate &day);

    std::unordered_map<qint64, std::optional<qint64>> m_days;
};

} // namespace Quillbrook

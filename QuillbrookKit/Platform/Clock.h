#pragma once

// The present moment, so that what depends on it can be tested at any moment.

#include <QDateTime>

namespace Quillbrook {

class Clock
{
public:
    virtual ~Clock() = default;
    /// Callable from any thread.
    [[nodiscard]] virtual QDateTime now() const = 0;
};

/// The machine's own clock.
class SystemClock final : public Clock
{
public:
    [[nodiscard]] QDateTime now() const override { return QDateTime::currentDateTimeUtc(); }
};

} // namespace Quillbrook

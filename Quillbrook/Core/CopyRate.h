#pragma once

// How fast a copy goes, by what it had written at the last few moments. A plain value.

#include <QtGlobal>

#include <deque>
#include <optional>

namespace Quillbrook {

class CopyRate
{
public:
    /// `bytes` had been written at `milliseconds`, later than the moment before. Fewer than before starts
    /// anew.
    void add(qint64 milliseconds, qint64 bytes);
    void clear() { m_moments.clear(); }
    /// Over the last three seconds at most; absent before half a second has gone by.
    [[nodiscard]] std::optional<qint64> bytesPerSecond() const;

private:
    struct Moment
    {
        qint64 milliseconds;
        qint64 bytes;
    };
    std::deque<Moment> m_moments;
};

} // namespace Quillbrook

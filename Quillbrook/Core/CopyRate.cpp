#include "Core/CopyRate.h"

namespace Quillbrook {

namespace {

constexpr qint64 longest = 3000;
constexpr qint64 shortest = 500;
constexpr qint64 second = 1000;

} // namespace

void CopyRate::add(qint64 milliseconds, qint64 bytes)
{
    if (!m_moments.empty() && bytes < m_moments.back().bytes)
        m_moments.clear();
    m_moments.push_back({ .milliseconds = milliseconds, .bytes = bytes });
    while (m_moments.front().milliseconds < milliseconds - longest)
        m_moments.pop_front();
}

std::optional<qint64> CopyRate::bytesPerSecond() const
{
    if (m_moments.empty())
        return std::nullopt;
    const auto time = m_moments.back().milliseconds - m_moments.front().milliseconds;
    if (time < shortest)
        return std::nullopt;
    return (m_moments.back().bytes - m_moments.front().bytes) * second / time;
}

} // namespace Quillbrook

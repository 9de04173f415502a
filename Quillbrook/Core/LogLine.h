#pragma once

// How a line of a removal's log begins, by which a person sees at a glance whether it was done. Logs stay
// English.

#include <QString>

namespace Quillbrook::LogLine {

[[nodiscard]] inline QString done(const QString &what)
{
    return QStringLiteral("✓ ") + what;
}

[[nodiscard]] inline QString failed(const QString &what)
{
    return QStringLiteral("✗ ") + what;
}

} // namespace Quillbrook::LogLine

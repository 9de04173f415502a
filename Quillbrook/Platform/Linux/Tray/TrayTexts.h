#pragma once

// What the tray's item says, whichever way the desktop shows it.

#include <QString>

namespace Quillbrook::TrayTexts {

[[nodiscard]] inline QString program()
{
    return QStringLiteral("Quillbrook");
}

[[nodiscard]] inline QString free(const QString &figure)
{
    return figure + QStringLiteral(" free");
}

/// For desktops that know one text only.
[[nodiscard]] inline QString whole(const QString &figure)
{
    return program() + QStringLiteral(" - ") + free(figure);
}

[[nodiscard]] inline QString open()
{
    return QStringLiteral("Open");
}

[[nodiscard]] inline QString checkNow()
{
    return QStringLiteral("Check now");
}

[[nodiscard]] inline QString quit()
{
    return QStringLiteral("Quit");
}

} // namespace Quillbrook::TrayTexts

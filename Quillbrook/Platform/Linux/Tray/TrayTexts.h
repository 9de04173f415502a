#pragma once

// What the tray's item says, whichever way the desktop shows it.

#include <QCoreApplication>
#include <QString>

namespace Quillbrook::TrayTexts {

[[nodiscard]] inline QString program()
{
    return QStringLiteral("Quillbrook");
}

[[nodiscard]] inline QString free(const QString &figure)
{
    return QCoreApplication::translate("Tray", "%1 free").arg(figure);
}

/// For desktops that know one text only.
[[nodiscard]] inline QString whole(const QString &figure)
{
    return program() + QStringLiteral(" - ") + free(figure);
}

[[nodiscard]] inline QString open()
{
    return QCoreApplication::translate("Tray", "Open");
}

[[nodiscard]] inline QString checkNow()
{
    return QCoreApplication::translate("Tray", "Check now");
}

[[nodiscard]] inline QString quit()
{
    return QCoreApplication::translate("Tray", "Quit");
}

} // namespace Quillbrook::TrayTexts

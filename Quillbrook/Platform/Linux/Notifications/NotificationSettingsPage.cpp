#include "Platform/Linux/Notifications/NotificationSettingsPage.h"

#include <array>

namespace Quillbrook {

namespace {

struct Row
{
    QStringView desktop;
    QStringView program;
    /// Of the program; empty for one that shows nothing else.
    QStringView page;
};

// Of several rows of a desktop the first whose program is there counts.
constexpr std::array rows{
    Row{ u"GNOME", u"gnome-control-center", u"notifications" },
    Row{ u"Unity", u"gnome-control-center", u"notifications" },
    Row{ u"Budgie", u"budgie-control-center", u"notifications" },
    Row{ u"Budgie", u"gnome-control-center", u"notifications" },
    Row{ u"KDE", u"systemsettings", u"kcm_notifications" },
    Row{ u"KDE", u"systemsettings5", u"kcm_notifications" },
    Row{ u"XFCE", u"xfce4-notifyd-config", u"" },
    Row{ u"X-Cinnamon", u"cinnamon-settings", u"notifications" },
    Row{ u"Cinnamon", u"cinnamon-settings", u"notifications" },
    Row{ u"MATE", u"mate-notification-properties", u"" },
};

} // namespace

std::optional<NotificationSettingsPage> NotificationSettingsPage::of(const DesktopSession &session)
{
    if (!session.sandbox.isNone())
        return std::nullopt;
    for (const auto &desktop : session.desktops)
        for (const auto &row : rows) {
            if (desktop.compare(row.desktop, Qt::CaseInsensitive) != 0)
                continue;
            if (const auto program = session.findProgram(row.program.toString()); !program.isEmpty())
                return NotificationSettingsPage{ .program = program,
                    .arguments = row.page.isEmpty() ? QStringList() : QStringList(row.page.toString()) };
        }
    return std::nullopt;
}

} // namespace Quillbrook

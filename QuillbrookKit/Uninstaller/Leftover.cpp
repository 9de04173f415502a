#include "Uninstaller/Leftover.h"

#include <array>
#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

std::span<const LeftoverKindRow> leftoverKinds()
{
    using enum LeftoverKind;
    static const std::array rows{
        LeftoverKindRow{ container, u"Container"_s,
            u"Everything the app saved for itself — settings, logins, and any documents it kept inside itself rather than in your folders."_s },
        LeftoverKindRow{ groupContainer, u"Shared container"_s,
            u"Shared with the app's extensions and helpers. Removed only if no other app you have is using it."_s },
        LeftoverKindRow{ supportFiles, u"Application support"_s,
            u"Databases, downloaded extras and templates the app made as you used it."_s },
        LeftoverKindRow{ cache, u"Cache"_s,
            u"Temporary files kept to make the app start faster. Nothing here is yours."_s },
        LeftoverKindRow{ preferences, u"Preferences"_s,
            u"The app's settings. Tiny, but the reason a reinstalled app still remembers everything."_s },
        LeftoverKindRow{ savedState, u"Saved windows"_s, u"Which windows were open, and where."_s },
        LeftoverKindRow{
            webStorage, u"Web data"_s, u"Cookies and site data from web pages shown inside the app."_s },
        LeftoverKindRow{ logs, u"Logs"_s, u"Diagnostic text the app wrote while running."_s },
        LeftoverKindRow{ cookies, u"Cookies"_s, u"Sign-in cookies belonging to the app."_s },
        LeftoverKindRow{ launchItem, u"Opens at login"_s,
            u"An instruction to start this app when you log in. Left behind, it tries to launch something that is no longer there."_s },
        LeftoverKindRow{
            scripts, u"Automation scripts"_s, u"Scripts the app was allowed to run on your behalf."_s },
        LeftoverKindRow{ systemWide, u"Installed for all users"_s,
            u"Installed for every account on this Mac. Quillbrook can show it but cannot remove it — that needs an administrator."_s },
    };
    return rows;
}

namespace {

const LeftoverKindRow &row(LeftoverKind kind)
{
    return leftoverKinds()[std::to_underlying(kind)];
}

} // namespace

const QString &rawValue(LeftoverKind kind)
{
    return row(kind).rawValue;
}

const QString &explanation(LeftoverKind kind)
{
    return row(kind).explanation;
}

} // namespace Quillbrook

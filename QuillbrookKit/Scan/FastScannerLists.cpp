// The fixed lists of the scanner. What a machine of another kind keeps elsewhere does not belong here.

#include "Scan/FastScanner.h"

#include <array>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr std::array<QStringView, 8> excludedPaths{
    u"/System/Volumes/Data",
    u"/System/Volumes/VM",
    u"/System/Volumes/Preboot",
    u"/System/Volumes/Update",
    u"/System/Volumes/Recovery",
    u"/dev",
    u"/net",
    u"/home",
};

constexpr std::array<QStringView, 23> quietInHome{
    u"Library",
    u"Applications",
    u"development",
    u".gradle",
    u".npm",
    u".android",
    u".ollama",
    u".pub-cache",
    u".cache",
    u".nvm",
    u".vscode",
    u".claude",
    u".codex",
    u".platformio",
    u".dartServer",
    u".local",
    u".cargo",
    u".rustup",
    u".m2",
    u".docker",
    u".Trash",
    u"go",
    u"sdk",
};

constexpr std::array<QStringView, 4> quietInLibrary{
    u"Developer",
    u"Caches",
    u"Logs",
    u"Application Support",
};

constexpr std::array<QStringView, 12> quietInApplicationSupport{
    u"Google",
    u"Code",
    u"Cursor",
    u"Firefox",
    u"discord",
    u"Claude",
    u"JetBrains",
    u"Steam",
    u"MobileSync",
    u"Titan",
    u"pip",
    u"npm",
};

constexpr std::array<QStringView, 27> protectedInHome{
    u"Desktop",
    u"Documents",
    u"Downloads",
    u"Pictures",
    u"Music",
    u"Movies",
    u"Library/Containers",
    u"Library/Group Containers",
    u"Library/Calendars",
    u"Library/Safari",
    u"Library/Mail",
    u"Library/Messages",
    u"Library/Cookies",
    u"Library/HomeKit",
    u"Library/IdentityServices",
    u"Library/Metadata/CoreSpotlight",
    u"Library/PersonalizationPortrait",
    u"Library/Suggestions",
    u"Library/Accounts",
    u"Library/Sharing",
    u"Library/Application Support/AddressBook",
    u"Library/Application Support/CallHistoryDB",
    u"Library/Application Support/CallHistoryTransactions",
    u"Library/Application Support/com.apple.TCC",
    u"Library/Application Support/Knowledge",
    u"Library/Application Support/FileProvider",
    u"Library/CloudStorage",
};

template <size_t Count>
QSet<QString> textsOf(const std::array<QStringView, Count> &texts, const QString &prefix = {})
{
    QSet<QString> result;
    for (const auto text : texts)
        result.insert(prefix + text.toString());
    return result;
}

} // namespace

QSet<QString> FastScanner::defaultExclusions()
{
    return textsOf(excludedPaths);
}

FastScanner::Allowlist FastScanner::quietAllowlist(const QString &home)
{
    return {
        { home, textsOf(quietInHome) },
        { home + u"/Library"_s, textsOf(quietInLibrary) },
        { home + u"/Library/Application Support"_s, textsOf(quietInApplicationSupport) },
    };
}

QSet<QString> FastScanner::tccProtectedPaths(const QString &home)
{
    return textsOf(protectedInHome, home + u'/');
}

} // namespace Quillbrook

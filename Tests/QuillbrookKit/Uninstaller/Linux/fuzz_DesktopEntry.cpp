// Whatever a file of another program's holds, what is told of it is one line that can be seen, and a path in
// it leads nowhere else.
// Links with libFuzzer, and with Support/FuzzDriver.cpp where the compiler has none.

#include "Fatal.h"
#include "Uninstaller/Linux/DesktopEntry.h"
#include "Uninstaller/Linux/FlatpakInstallation.h"
#include "Uninstaller/Linux/IconTheme.h"

#include <QByteArray>

#include <algorithm>

using namespace Quillbrook;

namespace {

void mustBePlain(const QString &text)
{
    if (text != plainLine(text))
        fatal("a text was read that is not one plain line");
}

void mustLeadBelow(const std::string &path)
{
    const auto framed = '/' + path + '/';
    for (const auto *piece : { "//", "/./", "/../" })
        if (framed.find(piece) != std::string::npos)
            fatal("a folder was read that leads out of its theme");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    if (const auto entry = DesktopEntry::parse(bytes)) {
        mustBePlain(entry->name);
        mustBePlain(entry->appImageVersion);
        if (entry->name.isEmpty() && !entry->isHidden)
            fatal("an entry without a name was read");
    }
    if (const auto theme = IconTheme::parse(bytes)) {
        std::ranges::for_each(theme->folders, mustLeadBelow);
        std::ranges::for_each(theme->parents, mustLeadBelow);
    }
    mustBePlain(FlatpakInstallation::originOf(bytes));
    mustBePlain(FlatpakInstallation::versionOf(bytes));
    return 0;
}

// Whatever a file of another program's holds, what is told of it is one line that can be seen.
// Links with libFuzzer, and with Support/FuzzDriver.cpp where the compiler has none.

#include "Fatal.h"
#include "Uninstaller/Linux/DesktopEntry.h"
#include "Uninstaller/Linux/FlatpakInstallation.h"

#include <QByteArray>

using namespace Quillbrook;

namespace {

void mustBePlain(const QString &text)
{
    if (text != plainLine(text))
        fatal("a text was read that is not one plain line");
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
    mustBePlain(FlatpakInstallation::originOf(bytes));
    mustBePlain(FlatpakInstallation::versionOf(bytes));
    return 0;
}

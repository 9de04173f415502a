#include "Platform/Linux/Files/FlatpakInfo.h"

#include <QByteArray>
#include <QList>

namespace Quillbrook {

FlatpakInfo parseFlatpakInfo(QByteArrayView text)
{
    FlatpakInfo info;
    bool hidesHome = false;
    QByteArray group;
    for (const auto &rawLine : text.toByteArray().split('\n')) {
        const auto line = rawLine.trimmed();
        if (line.startsWith('[')) {
            group = line;
            continue;
        }
        const auto separator = line.indexOf('=');
        if (separator < 0)
            continue;
        const auto key = line.first(separator).trimmed();
        const auto value = line.sliced(separator + 1).trimmed();
        if (group == "[Application]" && key == "name")
            info.application = QString::fromUtf8(value);
        if (group == "[Application]" && key == "runtime")
            info.runtime = QString::fromUtf8(value);
        if (group != "[Context]" || key != "filesystems")
            continue;
        for (const auto &entry : value.split(';')) {
            // What follows a colon is how it may be used: ro, rw, create.
            const auto place = entry.split(':').constFirst().trimmed();
            info.seesHome |= place == "home" || place == "host";
            hidesHome |= place == "!home";
        }
    }
    info.seesHome &= !hidesHome;
    return info;
}

} // namespace Quillbrook

#include "Platform/Linux/Sandbox/Sandbox.h"

#include "Platform/Linux/Files/FlatpakInfo.h"
#include "Platform/Linux/Folders/LinuxHomeFolder.h"

#include <QDir>
#include <QFile>

namespace Quillbrook {

using namespace Qt::StringLiterals;

Sandbox Sandbox::detect(const QString &root, const QProcessEnvironment &environment)
{
    QFile flatpakInfo(QDir(root).filePath(u".flatpak-info"_s));
    if (flatpakInfo.open(QIODevice::ReadOnly))
        return { .kind = Kind::flatpak, .application = parseFlatpakInfo(flatpakInfo.readAll()).application };
    if (isStrictSnap(environment))
        return { .kind = Kind::snap, .application = environment.value(u"SNAP_NAME"_s) };
    return {};
}

} // namespace Quillbrook

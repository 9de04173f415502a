#include "Platform/Linux/Sandbox/Sandbox.h"

#include "Platform/Linux/Folders/LinuxHomeFolder.h"

#include <QDir>
#include <QFile>

namespace Quillbrook {

Sandbox Sandbox::detect(const QString &root, const QProcessEnvironment &environment)
{
    QFile flatpakInfo(QDir(root).filePath(QStringLiteral(".flatpak-info")));
    if (flatpakInfo.open(QIODevice::ReadOnly))
        return { .kind = Kind::flatpak, .application = parseFlatpakInfo(flatpakInfo.readAll()).application };
    if (isStrictSnap(environment))
        return { .kind = Kind::snap, .application = environment.value(QStringLiteral("SNAP_NAME")) };
    return {};
}

} // namespace Quillbrook

#include "Platform/Linux/Session/DesktopSession.h"

#include <QDir>
#include <QStandardPaths>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

QStringList listOf(const QProcessEnvironment &environment, const QString &name)
{
    return environment.value(name).split(u':', Qt::SkipEmptyParts);
}

// A relative path in one of these means nothing.
QStringList foldersOf(const QProcessEnvironment &environment, const QString &name)
{
    auto folders = listOf(environment, name);
    folders.removeIf([](const QString &folder) { return !folder.startsWith(u'/'); });
    return folders;
}

} // namespace

DesktopSession DesktopSession::of(
    const QProcessEnvironment &environment, const QString &home, const QString &root)
{
    const auto configFolder = environment.value(u"XDG_CONFIG_HOME"_s);
    DesktopSession session{ .sandbox = Sandbox::detect(root, environment),
        .desktops = listOf(environment, u"XDG_CURRENT_DESKTOP"_s),
        .configFolder = configFolder.startsWith(u'/') ? configFolder : QDir(home).filePath(u".config"_s),
        .systemConfigFolders = foldersOf(environment, u"XDG_CONFIG_DIRS"_s),
        .programFolders = foldersOf(environment, u"PATH"_s) };
    if (session.systemConfigFolders.isEmpty())
        session.systemConfigFolders.append(u"/etc/xdg"_s);
    return session;
}

QString DesktopSession::findProgram(const QString &name) const
{
    // Without folders the search would take those of this process.
    const bool isPath = name.startsWith(u'/');
    if (name.isEmpty() || (!isPath && (programFolders.isEmpty() || name.contains(u'/'))))
        return {};
    return QStandardPaths::findExecutable(name, programFolders);
}

} // namespace Quillbrook

#include "Platform/Linux/Session/DesktopSession.h"

#include <QFile>
#include <QStandardPaths>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

std::string raw(const QString &path)
{
    return QFile::encodeName(path).toStdString();
}

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
    const QProcessEnvironment &environment, const std::string &home, const QString &root)
{
    const auto configFolder = raw(environment.value(u"XDG_CONFIG_HOME"_s));
    DesktopSession session{ .sandbox = Sandbox::detect(root, environment),
        .desktops = listOf(environment, u"XDG_CURRENT_DESKTOP"_s),
        .configFolder = configFolder.starts_with('/') ? configFolder : home + "/.config",
        .programFolders = foldersOf(environment, u"PATH"_s) };
    for (const auto &folder : foldersOf(environment, u"XDG_CONFIG_DIRS"_s))
        session.systemConfigFolders.push_back(raw(folder));
    if (session.systemConfigFolders.empty())
        session.systemConfigFolders.emplace_back("/etc/xdg");
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

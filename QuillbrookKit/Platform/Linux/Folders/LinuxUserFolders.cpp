#include "Platform/Linux/Folders/LinuxUserFolders.h"

#include "Platform/FileReading.h"
#include "StandardisedPath.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <filesystem>

namespace Quillbrook::LinuxUserFolders {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype maximumFileBytes = qsizetype{ 64 } * 1024;

struct Row
{
    QLatin1StringView key;
    std::optional<QString> Folders::*folder;
};

constexpr std::array<Row, 8> rows{ {
    { QLatin1StringView("DESKTOP"), &Folders::desktop },
    { QLatin1StringView("DOCUMENTS"), &Folders::documents },
    { QLatin1StringView("DOWNLOAD"), &Folders::downloads },
    { QLatin1StringView("MUSIC"), &Folders::music },
    { QLatin1StringView("PICTURES"), &Folders::pictures },
    { QLatin1StringView("PUBLICSHARE"), &Folders::publicShare },
    { QLatin1StringView("TEMPLATES"), &Folders::templates },
    { QLatin1StringView("VIDEOS"), &Folders::videos },
} };

QString unescaped(const QString &quoted)
{
    QString text;
    for (qsizetype i = 0; i < quoted.size(); ++i) {
        if (quoted[i] == u'\\' && i + 1 < quoted.size())
            ++i;
        text += quoted[i];
    }
    return text;
}

// Without "." and "..", doubled and trailing slashes.
QString normalised(const QString &path)
{
    auto text = QString::fromStdString(std::filesystem::path(path.toStdString()).lexically_normal().string());
    while (text.size() > 1 && text.endsWith(u'/'))
        text.chop(1);
    return text;
}

// The folder that a value names; absent for the home folder itself, and for what is no absolute path.
std::optional<QString> folder(const QString &value, const QString &home)
{
    const auto variable = u"$HOME"_s;
    auto path = value;
    if (isAtOrBelow(path, variable))
        path = home + path.sliced(variable.size());
    if (!path.startsWith(u'/'))
        return std::nullopt;
    path = normalised(path);
    return path == normalised(home) ? std::nullopt : std::optional(path);
}

} // namespace

std::vector<QString> Folders::all() const
{
    std::vector<QString> paths;
    for (const auto &row : rows)
        if (const auto &path = this->*row.folder)
            paths.push_back(*path);
    return paths;
}

Folders parse(const QByteArray &text, const QString &home)
{
    static const QRegularExpression line(uR"re(^\s*XDG_([A-Z]+)_DIR\s*=\s*"((?:[^"\\]|\\.)*)"\s*$)re"_s);
    Folders folders;
    for (const auto &written : QString::fromUtf8(text).split(u'\n')) {
        const auto match = line.match(written);
        const auto row = std::ranges::find(rows, match.captured(1), &Row::key);
        if (match.hasMatch() && row != rows.end())
            folders.*row->folder = folder(unescaped(match.captured(2)), home);
    }
    return folders;
}

Folders read(const FileReading &reading, const std::string &settings, const QString &home)
{
    const auto text = reading.contents(settings + "/user-dirs.dirs", maximumFileBytes);
    return text ? parse(*text, home) : Folders();
}

} // namespace Quillbrook::LinuxUserFolders

#include "Catalogue/ApplicationNames.h"

#include "Catalogue/HostCatalogue.h"
#include "Platform/FileReading.h"

#include <QRegularExpression>

namespace Quillbrook::ApplicationNames {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype maximumFileBytes = qsizetype{ 256 } * 1024;
constexpr qsizetype maximumNameLength = 80;

// One line of it without characters that are not seen, some of which turn the writing around; absent where
// nothing is left.
std::optional<QString> plain(const QString &name)
{
    static const QRegularExpression unseen(u"(?!\\s)[\\p{Cf}\\p{Cc}]"_s);
    const auto line = QString(name).remove(unseen).simplified().left(maximumNameLength);
    return line.isEmpty() ? std::nullopt : std::optional(line);
}

} // namespace

std::optional<QString> parseDesktopEntry(QByteArrayView text)
{
    bool isInside = false;
    for (const auto &line : QString::fromUtf8(text).split(u'\n')) {
        if (line.startsWith(u'[')) {
            if (isInside)
                break;
            isInside = line.trimmed() == u"[Desktop Entry]";
        } else if (isInside && line.section(u'=', 0, 0).trimmed() == u"Name") {
            return plain(line.section(u'=', 1));
        }
    }
    return std::nullopt;
}

std::optional<QString> parseSteamManifest(QByteArrayView text)
{
    static const QRegularExpression line(
        uR"re(^\s*"name"\s*"((?:[^"\\\n]|\\.)*)"\s*$)re"_s, QRegularExpression::MultilineOption);
    const auto match = line.match(QString::fromUtf8(text));
    if (!match.hasMatch())
        return std::nullopt;
    static const QRegularExpression escape(uR"(\\(.))"_s);
    return plain(match.captured(1).replace(escape, u"\\1"_s));
}

QString ofFlatpak(
    const FileReading &reading, const HostCatalogue &host, const std::string &home, const QString &id)
{
    for (const auto &folder : host.desktopEntryFolders) {
        const auto path = (folder.startsWith(u'/') ? std::string() : home + '/')
            + (folder + u'/' + id + u".desktop"_s).toStdString();
        if (const auto text = reading.contents(path, maximumFileBytes))
            if (auto name = parseDesktopEntry(*text))
                return *name;
    }
    return id;
}

std::optional<QString> ofSteamGame(
    const FileReading &reading, const std::string &folder, const QString &number)
{
    const auto text
        = reading.contents(folder + "/appmanifest_" + number.toStdString() + ".acf", maximumFileBytes);
    return text ? parseSteamManifest(*text) : std::nullopt;
}

} // namespace Quillbrook::ApplicationNames

#include "Uninstaller/Linux/DesktopEntry.h"

#include "Uninstaller/Linux/KeyFile.h"

#include <QRegularExpression>

#include <glib.h>
#include <memory>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype maximumNameLength = 200;
constexpr auto group = G_KEY_FILE_DESKTOP_GROUP;

// Codes like %f and %U stand for what is opened; %% is the sign itself.
QStringList commandOf(const QString &line)
{
    char **arguments = nullptr;
    int count = 0;
    if (g_shell_parse_argv(line.toUtf8().constData(), &count, &arguments, nullptr) == FALSE)
        return {};
    const std::unique_ptr<char *, decltype(&g_strfreev)> owned(arguments, &g_strfreev);
    static const QRegularExpression code(u"^%[A-Za-z]$"_s);
    QStringList words;
    for (int index = 0; index < count; ++index) {
        const auto word = QString::fromUtf8(arguments[index]);
        if (!code.match(word).hasMatch())
            words.append(QString(word).replace(u"%%"_s, u"%"_s));
    }
    return words;
}

} // namespace

QString plainLine(const QString &text)
{
    static const QRegularExpression unseen(u"(?!\\s)[\\p{Cf}\\p{Cc}]"_s);
    auto line = QString(text).remove(unseen).simplified().left(maximumNameLength);
    // Half a letter is none.
    if (!line.isEmpty() && line.back().isHighSurrogate())
        line.chop(1);
    return line.trimmed();
}

std::optional<DesktopEntry> DesktopEntry::parse(QByteArrayView bytes)
{
    const auto file = bytes.size() <= maximumBytes ? KeyFile::parse(bytes) : std::nullopt;
    if (!file)
        return std::nullopt;
    DesktopEntry entry{ .name = plainLine(file->localText(group, "Name")),
        .command = commandOf(file->text(group, "Exec")),
        .tryExec = file->text(group, "TryExec"),
        .icon = file->localText(group, "Icon"),
        .isApplication = file->text(group, "Type") == u"Application",
        .isHidden = file->isTrue(group, "Hidden"),
        .isDisplayed = !file->isTrue(group, "NoDisplay"),
        .onlyShownIn = file->words(group, "OnlyShowIn"),
        .notShownIn = file->words(group, "NotShowIn"),
        .flatpak = file->text(group, "X-Flatpak"),
        .snap = file->text(group, "X-SnapInstanceName"),
        .appImageVersion = plainLine(file->text(group, "X-AppImage-Version")) };
    // A translation without a word is none.
    if (entry.name.isEmpty())
        entry.name = plainLine(file->text(group, "Name"));
    // One that only says that it is hidden takes another's place without a name of its own.
    if (entry.name.isEmpty() && !entry.isHidden)
        return std::nullopt;
    return entry;
}

bool DesktopEntry::isShownIn(const QStringList &desktops) const
{
    for (const auto &desktop : desktops) {
        if (onlyShownIn.contains(desktop))
            return true;
        if (notShownIn.contains(desktop))
            return false;
    }
    return onlyShownIn.isEmpty();
}

} // namespace Quillbrook

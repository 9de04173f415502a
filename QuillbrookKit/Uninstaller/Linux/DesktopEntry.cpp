#include "Uninstaller/Linux/DesktopEntry.h"

#include <QRegularExpression>

#include <glib.h>
#include <memory>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype maximumNameLength = 200;
constexpr auto group = G_KEY_FILE_DESKTOP_GROUP;

struct Free
{
    void operator()(GKeyFile *file) const { g_key_file_unref(file); }
    void operator()(char *text) const { g_free(text); }
    void operator()(char **texts) const { g_strfreev(texts); }
};
using KeyFile = std::unique_ptr<GKeyFile, Free>;

QString text(GKeyFile *file, const char *key)
{
    const std::unique_ptr<char, Free> value(g_key_file_get_string(file, group, key, nullptr));
    return QString::fromUtf8(value.get());
}

QString localText(GKeyFile *file, const char *key)
{
    const std::unique_ptr<char, Free> value(g_key_file_get_locale_string(file, group, key, nullptr, nullptr));
    return QString::fromUtf8(value.get());
}

bool isTrue(GKeyFile *file, const char *key)
{
    return g_key_file_get_boolean(file, group, key, nullptr) != FALSE;
}

QStringList words(GKeyFile *file, const char *key)
{
    const std::unique_ptr<char *, Free> values(
        g_key_file_get_string_list(file, group, key, nullptr, nullptr));
    QStringList words;
    for (auto *const *value = values.get(); value != nullptr && *value != nullptr; ++value)
        words.append(QString::fromUtf8(*value));
    return words;
}

// Codes like %f and %U stand for what is opened; %% is the sign itself.
QStringList commandOf(const QString &line)
{
    char **arguments = nullptr;
    int count = 0;
    if (g_shell_parse_argv(line.toUtf8().constData(), &count, &arguments, nullptr) == FALSE)
        return {};
    const std::unique_ptr<char *, Free> owned(arguments);
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
    if (bytes.isEmpty() || bytes.size() > maximumBytes || bytes.contains('\0'))
        return std::nullopt;
    const KeyFile file(g_key_file_new());
    if (g_key_file_load_from_data(
            file.get(), bytes.data(), static_cast<gsize>(bytes.size()), G_KEY_FILE_NONE, nullptr)
        == FALSE)
        return std::nullopt;
    DesktopEntry entry{ .name = plainLine(localText(file.get(), "Name")),
        .command = commandOf(text(file.get(), "Exec")),
        .tryExec = text(file.get(), "TryExec"),
        .icon = localText(file.get(), "Icon"),
        .isApplication = text(file.get(), "Type") == u"Application",
        .isHidden = isTrue(file.get(), "Hidden"),
        .isDisplayed = !isTrue(file.get(), "NoDisplay"),
        .onlyShownIn = words(file.get(), "OnlyShowIn"),
        .notShownIn = words(file.get(), "NotShowIn"),
        .flatpak = text(file.get(), "X-Flatpak"),
        .snap = text(file.get(), "X-SnapInstanceName"),
        .appImageVersion = plainLine(text(file.get(), "X-AppImage-Version")) };
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

#include "Platform/Linux/Session/AutostartEntry.h"

#include <algorithm>
#include <array>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

// What a key file can't hold as it is.
struct Escape
{
    QChar character;
    QChar letter;
};

constexpr std::array escapes{
    Escape{ u'\\', u'\\' },
    Escape{ u'\n', u'n' },
    Escape{ u'\t', u't' },
    Escape{ u'\r', u'r' },
    Escape{ u' ', u's' },
};

QString unescaped(const QString &value)
{
    QString text;
    for (qsizetype i = 0; i < value.size(); ++i) {
        const auto *const escape = value[i] == u'\\' && i + 1 < value.size()
            ? std::ranges::find(escapes, value[i + 1], &Escape::letter)
            : escapes.end();
        text += escape != escapes.end() ? escape->character : value[i];
        if (escape != escapes.end())
            ++i;
    }
    return text;
}

// A blank needs it only where it would be taken for the file's own: at the end.
QString escaped(const QString &text)
{
    QString value;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const auto *const escape = std::ranges::find(escapes, text[i], &Escape::character);
        if (escape == escapes.end() || (text[i] == u' ' && i + 1 < text.size()))
            value += text[i];
        else
            value += QString(u'\\') + escape->letter;
    }
    return value;
}

// One argument of a command line, as the rules for desktop entries quote it.
QString quoted(const QString &argument)
{
    constexpr QStringView reserved = u" \t\n\r\"'\\><~|&;$*?#()`";
    constexpr QStringView escapedInQuotes = u"\"`$\\";
    QString text;
    bool needsQuotes = false;
    for (const auto character : argument) {
        needsQuotes |= reserved.contains(character);
        if (escapedInQuotes.contains(character))
            text += u'\\';
        text += character;
        // Alone it would stand for a file to open.
        if (character == u'%')
            text += u'%';
    }
    return needsQuotes ? u'"' + text + u'"' : text;
}

QStringList listOf(const QString &value)
{
    return value.split(u';', Qt::SkipEmptyParts);
}

void take(AutostartEntry &entry, const QByteArray &key, const QString &value)
{
    if (key == "Exec")
        entry.exec = unescaped(value);
    else if (key == "TryExec")
        entry.tryExec = unescaped(value);
    else if (key == "Hidden")
        entry.isHidden = value == u"true"_s;
    else if (key == "X-GNOME-Autostart-enabled")
        entry.isSwitchedOff = value == u"false"_s;
    else if (key == "OnlyShowIn")
        entry.onlyShowIn = listOf(value);
    else if (key == "NotShowIn")
        entry.notShowIn = listOf(value);
}

} // namespace

std::optional<AutostartEntry> AutostartEntry::parse(QByteArrayView text)
{
    std::optional<AutostartEntry> entry;
    bool isInside = false;
    for (const auto &rawLine : text.toByteArray().split('\n')) {
        const auto line = rawLine.trimmed();
        if (line.startsWith('[')) {
            isInside = line == "[Desktop Entry]";
            if (isInside && !entry)
                entry.emplace();
            continue;
        }
        const auto separator = line.indexOf('=');
        if (isInside && separator > 0 && !line.startsWith('#'))
            take(*entry, line.first(separator).trimmed(),
                QString::fromUtf8(line.sliced(separator + 1).trimmed()));
    }
    return entry;
}

bool AutostartEntry::isFor(const QStringList &desktops) const
{
    if (isHidden || isSwitchedOff || exec.isEmpty())
        return false;
    const auto isOneOf = [&desktops](const QStringList &names) {
        return std::ranges::any_of(
            desktops, [&names](const QString &desktop) { return names.contains(desktop); });
    };
    return (!onlyShowIn || isOneOf(*onlyShowIn)) && !isOneOf(notShowIn);
}

QByteArray autostartFile(const QString &program, bool isHidden)
{
    const auto text = u"[Desktop Entry]\n"
                      "Type=Application\n"
                      "Version=1.4\n"
                      "Name=Quillbrook\n"
                      "Icon=com.tarnwick.Quillbrook\n"_s
        + u"Exec="_s + escaped(quoted(program) + u" --background"_s) + u"\nTryExec="_s + escaped(program)
        + u"\nTerminal=false\nX-GNOME-Autostart-enabled=true\n"_s
        + (isHidden ? u"Hidden=true\n"_s : QString());
    return text.toUtf8();
}

} // namespace Quillbrook

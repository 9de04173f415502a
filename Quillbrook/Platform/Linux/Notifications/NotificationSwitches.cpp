#include "Platform/Linux/Notifications/NotificationSwitches.h"

#include "Platform/FileReading.h"
#include "Platform/ProcessRunner.h"

#include <algorithm>
#include <array>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::seconds patience{ 3 };
constexpr qsizetype outputLimit = 1024;
constexpr qsizetype fileLimit = qsizetype{ 1024 } * 1024;

// The application id as GNOME makes a path of it: in small letters, with a hyphen for all else.
const auto gnomeSwitch = u"org.gnome.desktop.notifications.application:"
                         "/org/gnome/desktop/notifications/application/com-tarnwick-quillbrook/"_s;

bool gnomeKeepsBack(const DesktopSession &session, const ProcessRunner &processes)
{
    const auto program = session.findProgram(u"gsettings"_s);
    if (program.isEmpty())
        return false;
    const auto result = processes.run({ .program = program,
        .arguments = { u"get"_s, gnomeSwitch, u"enable"_s },
        .timeLimit = patience,
        .outputLimit = outputLimit });
    return result && result->exited && result->exitCode == 0 && result->output.trimmed() == "false";
}

bool plasmaKeepsBack(const DesktopSession &session, const FileReading &reading)
{
    const auto text = reading.contents(session.configFolder + "/plasmanotifyrc", fileLimit);
    return text && NotificationSwitches::plasmaFileSaysOff(*text);
}

// What the system's administrator has locked carries a mark behind its name.
QByteArray withoutMark(const QByteArray &name)
{
    return name.endsWith("[$i]") ? name.chopped(4) : name;
}

} // namespace

bool NotificationSwitches::areOff(
    const DesktopSession &session, const ProcessRunner &processes, const FileReading &reading)
{
    const auto isDesktop
        = [&session](const QString &name) { return session.desktops.contains(name, Qt::CaseInsensitive); };
    return (isDesktop(u"GNOME"_s) && gnomeKeepsBack(session, processes))
        || (isDesktop(u"KDE"_s) && plasmaKeepsBack(session, reading));
}

bool NotificationSwitches::plasmaFileSaysOff(QByteArrayView text)
{
    constexpr std::array<QByteArrayView, 4> offValues{ "false", "off", "no", "0" };
    bool isOff = false;
    QByteArray group;
    for (const auto &rawLine : text.toByteArray().split('\n')) {
        const auto line = rawLine.trimmed();
        if (line.startsWith('['))
            group = withoutMark(line);
        const auto separator = line.indexOf('=');
        if (group == "[Applications][com.tarnwick.Quillbrook]" && separator > 0
            && withoutMark(line.first(separator).trimmed()) == "ShowPopups")
            isOff = std::ranges::find(offValues, line.sliced(separator + 1).trimmed().toLower())
                != offValues.end();
    }
    return isOff;
}

} // namespace Quillbrook

#include "Platform/Linux/Photos/TrashEmptying.h"

#include "Platform/FileReading.h"
#include "Platform/ProcessRunner.h"

#include <algorithm>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::seconds patience{ 3 };
constexpr qsizetype outputLimit = 1024;
constexpr qsizetype fileLimit = qsizetype{ 1024 } * 1024;
// What Plasma goes by where its file says no number.
constexpr int usualDays = 7;

QByteArray gnomeSetting(const QString &program, const ProcessRunner &processes, const QString &key)
{
    const auto result = processes.run({ .program = program,
        .arguments = { u"get"_s, u"org.gnome.desktop.privacy"_s, key },
        .timeLimit = patience,
        .outputLimit = outputLimit });
    return result && result->exited && result->exitCode == 0 ? result->output.trimmed() : QByteArray();
}

std::optional<int> daysInGnome(const DesktopSession &session, const ProcessRunner &processes)
{
    const auto program = session.findProgram(u"gsettings"_s);
    if (program.isEmpty() || gnomeSetting(program, processes, u"remove-old-trash-files"_s) != "true")
        return std::nullopt;
    // "uint32 30"
    const auto days = gnomeSetting(program, processes, u"old-files-age"_s).split(' ').last().toInt();
    return days > 0 ? std::optional(days) : std::nullopt;
}

/// What one group of the file says.
struct Limit
{
    bool isUsed = false;
    int days = usualDays;
};

void shorten(std::optional<int> &days, const Limit &limit)
{
    if (limit.isUsed && limit.days > 0)
        days = std::min(days.value_or(limit.days), limit.days);
}

} // namespace

std::optional<int> TrashEmptying::days(
    const DesktopSession &session, const ProcessRunner &processes, const FileReading &reading)
{
    if (session.desktops.contains(u"KDE"_s, Qt::CaseInsensitive)) {
        const auto text = reading.contents(session.configFolder + "/ktrashrc", fileLimit);
        return text ? daysInPlasma(*text) : std::nullopt;
    }
    // Others of its kind keep the same settings.
    return daysInGnome(session, processes);
}

std::optional<int> TrashEmptying::daysInPlasma(QByteArrayView text)
{
    std::optional<int> days;
    Limit limit;
    for (const auto &rawLine : text.toByteArray().split('\n')) {
        const auto line = rawLine.trimmed();
        if (line.startsWith('[')) {
            shorten(days, limit);
            limit = {};
        }
        const auto separator = line.indexOf('=');
        const auto key = line.first(std::max<qsizetype>(separator, 0));
        if (key == "UseTimeLimit")
            limit.isUsed = line.sliced(separator + 1) == "true";
        if (key == "Days")
            limit.days = line.sliced(separator + 1).toInt();
    }
    shorten(days, limit);
    return days;
}

} // namespace Quillbrook

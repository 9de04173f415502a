#include "Uninstaller/Linux/PackageOwners.h"

#include "Platform/ProcessRunner.h"
#include "Uninstaller/Linux/ApplicationPlaces.h"
#include "Uninstaller/Linux/DesktopEntry.h"

#include <QSet>
#include <QStringList>

#include <unistd.h>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr std::size_t mostPaths = 5000;
constexpr qint64 bytesPerKilobyte = 1024;

// What a tool would take for a pattern or would not give back as it got it is left out.
bool canBeAsked(const std::string &path)
{
    return path.starts_with('/') && path.find_first_of("*?[]\\\n\t") == std::string::npos
        && QString::fromStdString(path).toStdString() == path;
}

std::optional<QByteArray> printed(
    const ProcessRunner &processes, const std::string &program, const QStringList &arguments)
{
    const auto result = processes.run({ .program = QString::fromStdString(program), .arguments = arguments });
    // Both tools say by their code that they didn't know one of the files, and tell of the others.
    return result && result->exited ? std::optional(result->output) : std::nullopt;
}

// "package, other:arch: /path" a line; where several own a file, the first is taken.
std::map<std::string, QString> debianOwners(const QByteArray &answer)
{
    std::map<std::string, QString> owners;
    for (const auto &line : answer.split('\n')) {
        const auto separator = line.indexOf(": /");
        if (separator < 0 || line.startsWith("diversion by ") || line.startsWith("local diversion "))
            continue;
        const auto package = QString::fromUtf8(line.first(separator)).section(u", "_s, 0, 0);
        owners.emplace(line.sliced(separator + 2).toStdString(), package);
    }
    return owners;
}

std::map<std::string, PackageOwners::Package> byDebian(
    const ProcessRunner &processes, const std::string &program, const QStringList &paths)
{
    const auto answer = printed(processes, program, QStringList{ u"-S"_s, u"--"_s } + paths);
    const auto owners = debianOwners(answer.value_or(QByteArray()));
    if (owners.empty())
        return {};
    QStringList names;
    for (const auto &[path, name] : owners)
        if (!names.contains(name))
            names.append(name);
    const auto facts = printed(processes, program,
        QStringList{ u"-W"_s, u"-f"_s,
            u"${binary:Package}\\t${Package}\\t${Version}\\t${Installed-Size}\\n"_s, u"--"_s }
            + names);
    std::map<QString, PackageOwners::Package> packages;
    for (const auto &line : facts.value_or(QByteArray()).split('\n')) {
        const auto fields = line.split('\t');
        if (fields.size() != 4)
            continue;
        const PackageOwners::Package package{ .name = QString::fromUtf8(fields[1]),
            .version = plainLine(QString::fromUtf8(fields[2])),
            .bytes = std::max<qint64>(fields[3].toLongLong(), 0) * bytesPerKilobyte };
        packages[QString::fromUtf8(fields[0])] = package;
        packages.emplace(package.name, package);
    }
    std::map<std::string, PackageOwners::Package> found;
    for (const auto &[path, name] : owners) {
        const auto known = packages.find(name);
        found[path] = known == packages.end() ? PackageOwners::Package{ .name = name.section(u':', 0, 0) }
                                              : known->second;
    }
    return found;
}

// One line a path, in the order they were asked for; a sentence where nobody owns it. A file of several
// packages has a line of each, and then no line tells any more which file it is about.
std::map<std::string, PackageOwners::Package> byRpm(const ProcessRunner &processes,
    const std::string &program, const std::vector<std::string> &paths, const QStringList &arguments)
{
    const auto answer = printed(processes, program,
        QStringList{
            u"-qf"_s, u"--queryformat"_s, u"%{NAME}\\t%{VERSION}-%{RELEASE}\\t%{SIZE}\\n"_s, u"--"_s }
            + arguments);
    const auto lines = answer.value_or(QByteArray()).trimmed().split('\n');
    std::map<std::string, PackageOwners::Package> found;
    if (lines.size() != qsizetype(paths.size()))
        return found;
    for (std::size_t index = 0; index < paths.size(); ++index) {
        const auto fields = lines[qsizetype(index)].split('\t');
        if (fields.size() == 3)
            found[paths[index]] = { .name = QString::fromUtf8(fields[0]),
                .version = plainLine(QString::fromUtf8(fields[1])),
                .bytes = std::max<qint64>(fields[2].toLongLong(), 0) };
    }
    return found;
}

bool isThere(const std::string &program)
{
    return !program.empty() && ::access(program.c_str(), X_OK) == 0;
}

} // namespace

std::map<std::string, PackageOwners::Package> PackageOwners::of(
    const ProcessRunner &processes, const ApplicationPlaces &places, const std::vector<std::string> &paths)
{
    std::vector<std::string> asked;
    QStringList arguments;
    for (const auto &path : paths) {
        if (!canBeAsked(path) || asked.size() == mostPaths)
            continue;
        asked.push_back(path);
        arguments.append(QString::fromStdString(path));
    }
    if (asked.empty())
        return {};
    if (isThere(places.dpkgQuery))
        return byDebian(processes, places.dpkgQuery, arguments);
    return isThere(places.rpm) ? byRpm(processes, places.rpm, asked, arguments)
                               : std::map<std::string, Package>();
}

} // namespace Quillbrook

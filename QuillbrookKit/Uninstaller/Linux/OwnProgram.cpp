#include "Uninstaller/Linux/OwnProgram.h"

#include "RawText.h"
#include "StandardisedPath.h"
#include "Uninstaller/FolderNames.h"
#include "Uninstaller/Linux/ApplicationPlaces.h"
#include "Uninstaller/Linux/LinuxLeftovers.h"

#include <QFile>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <filesystem>
#include <iterator>
#include <unistd.h>

namespace Quillbrook {

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

namespace {

constexpr std::array programFolders{ "/Applications", "/bin", "/.local/bin", "/opt", "/.local/opt" };
constexpr std::array appImageFolders{ "/Applications", "/bin", "/.local/bin", "/Downloads" };

bool isRegular(const std::string &path)
{
    std::error_code error;
    return fs::symlink_status(path, error).type() == fs::file_type::regular;
}

// Through a link too; folders have the same right for another reason.
bool canBeRun(const std::string &path)
{
    std::error_code error;
    return fs::is_regular_file(path, error) && ::access(path.c_str(), X_OK) == 0;
}

bool isAppImageName(const std::string &name)
{
    return QString::fromStdString(name).endsWith(u".appimage"_s, Qt::CaseInsensitive);
}

// Where it really lies; nothing where that can't be told.
std::string withoutLinks(const std::string &path)
{
    std::error_code error;
    const auto found = fs::canonical(path, error);
    return error ? std::string() : found.native();
}

// Through a link it would lie elsewhere, perhaps in a project.
bool liesInHomeWithoutLinks(const std::string &path, const std::string &home)
{
    const auto realHome = withoutLinks(home);
    return !realHome.empty() && withoutLinks(path) == realHome + path.substr(home.size());
}

// The file that a word of a command means: a path, or a name that is looked for in the folders of programs.
std::string found(const QString &word, const ApplicationPlaces &places)
{
    const auto raw = QFile::encodeName(word).toStdString();
    std::error_code error;
    if (raw.starts_with('/')) {
        const auto path = standardisedPath(raw, places.home);
        return fs::exists(path, error) ? path : std::string();
    }
    if (!FolderNames::isName(raw))
        return {};
    for (const auto &folder : places.programs)
        if (canBeRun(folder + '/' + raw))
            return folder + '/' + raw;
    return {};
}

// Which word of a command is the program: "env -u OTHER NAME=value program" starts that.
qsizetype placeOfProgram(const QStringList &command)
{
    static const QRegularExpression setting(u"^[A-Za-z_][A-Za-z0-9_]*="_s);
    qsizetype place = 0;
    bool isBehindEnv = false;
    for (; place < command.size(); ++place) {
        const auto &word = command[place];
        const bool isOption = isBehindEnv && word.startsWith(u'-');
        if (word.section(u'/', -1) == u"env")
            isBehindEnv = true;
        else if (!isOption && !setting.match(word).hasMatch())
            break;
        // These are followed by what they are about.
        if (isOption && (word == u"-u" || word == u"-C" || word == u"--unset" || word == u"--chdir"))
            ++place;
    }
    return place;
}

} // namespace

OwnProgram OwnProgram::of(const QStringList &command, const ApplicationPlaces &places)
{
    const auto first = placeOfProgram(command);
    if (first >= command.size())
        return {};
    OwnProgram program{ .path = found(command[first], places) };
    program.name = command[first].section(u'/', -1);
    if (program.path.empty())
        return program;
    const bool startsOthers = LinuxLeftovers::isLauncher(program.name);
    if (!startsOthers)
        program.marks = marksOf(program.path);
    for (qsizetype index = first + 1; startsOthers && index < command.size(); ++index) {
        const auto script = command[index].startsWith(u'/') ? found(command[index], places) : std::string();
        if (isRegular(script))
            std::ranges::copy(marksOf(script), std::back_inserter(program.marks));
    }
    program.isInHome = program.path.starts_with(places.home + '/');
    program.isAppImage = isAppImageName(program.path) && isRegular(program.path);
    const bool isInFolder = std::ranges::any_of(programFolders,
        [&](const char *folder) { return program.path.starts_with(places.home + folder + '/'); });
    program.mayGo = program.isInHome && !startsOthers && isRegular(program.path)
        && (program.isAppImage
            || (isInFolder && canBeRun(program.path) && liesInHomeWithoutLinks(program.path, places.home)));
    return program;
}

std::vector<std::string> OwnProgram::marksOf(const std::string &path)
{
    std::vector marks{ path };
    const auto real = withoutLinks(path);
    const auto name = repairedText(std::string_view(real).substr(real.rfind('/') + 1));
    if (!real.empty() && real != path && !LinuxLeftovers::isLauncher(name))
        marks.push_back(real);
    return marks;
}

bool OwnProgram::isThere(const QString &program, const ApplicationPlaces &places)
{
    return canBeRun(found(program, places));
}

std::vector<std::string> OwnProgram::appImages(const ApplicationPlaces &places)
{
    std::vector<std::string> images;
    for (const auto *folder : appImageFolders)
        for (const auto &name : FolderNames::in(places.home + folder))
            if (!name.starts_with('.') && isAppImageName(name)
                && isRegular(places.home + folder + '/' + name))
                images.push_back(places.home + folder + '/' + name);
    return images;
}

} // namespace Quillbrook

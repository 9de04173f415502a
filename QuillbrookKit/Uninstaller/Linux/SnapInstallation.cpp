#include "Uninstaller/Linux/SnapInstallation.h"

#include "Platform/FileReading.h"
#include "Uninstaller/FolderNames.h"
#include "Uninstaller/Linux/ApplicationPlaces.h"
#include "Uninstaller/Linux/DesktopEntry.h"

#include <QRegularExpression>

#include <charconv>
#include <filesystem>

namespace Quillbrook::SnapInstallation {

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

namespace {

constexpr std::string_view ending = ".snap";
constexpr qsizetype longestNote = 65'536;

// The revision that an image is of: a number, behind an "x" where it was installed from a file.
std::optional<unsigned long long> revisionOf(std::string_view file, const std::string &name)
{
    if (!file.starts_with(name + '_') || !file.ends_with(ending))
        return std::nullopt;
    file.remove_prefix(name.size() + 1);
    file.remove_suffix(ending.size());
    if (file.starts_with('x'))
        file.remove_prefix(1);
    unsigned long long revision = 0;
    const auto [end, error] = std::from_chars(file.data(), file.data() + file.size(), revision);
    return error == std::errc() && end == file.data() + file.size() ? std::optional(revision) : std::nullopt;
}

} // namespace

std::string image(const ApplicationPlaces &places, const std::string &name)
{
    const auto folder = places.snapd + "/snaps/";
    std::error_code error;
    const auto current = fs::read_symlink(places.snaps + '/' + name + "/current", error);
    const auto inUse = folder + name + '_' + current.filename().native() + std::string(ending);
    if (!error && fs::exists(inUse, error))
        return inUse;
    std::string newest;
    unsigned long long highest = 0;
    for (const auto &file : FolderNames::in(folder)) {
        const auto revision = revisionOf(file, name);
        if (!revision || (!newest.empty() && *revision < highest))
            continue;
        highest = *revision;
        newest = folder + file;
    }
    return newest;
}

std::optional<QString> version(
    const FileReading &reading, const ApplicationPlaces &places, const std::string &name)
{
    static const QRegularExpression line(
        u"^version:\\s*['\"]?([^'\"\\n]+)['\"]?\\s*$"_s, QRegularExpression::MultilineOption);
    const auto note = reading.contents(places.snaps + '/' + name + "/current/meta/snap.yaml", longestNote);
    const auto match = line.match(QString::fromUtf8(note.value_or(QByteArray())));
    return match.hasMatch() ? std::optional(plainLine(match.captured(1))) : std::nullopt;
}

} // namespace Quillbrook::SnapInstallation

#include "Platform/Linux/Folders/LinuxHomeFolder.h"

#include "Platform/Linux/Files/FlatpakInfo.h"
#include "StandardisedPath.h"

#include <QFile>

#include <cerrno>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

const auto flatpakInfoPath = u"/.flatpak-info"_s;
constexpr size_t smallestEntry = 1024;
constexpr size_t largestEntry = 1024 * smallestEntry;

std::optional<std::string> accountHome()
{
    for (auto size = smallestEntry; size <= largestEntry; size *= 2) {
        std::vector<char> texts(size);
        passwd entry{};
        passwd *found = nullptr;
        const auto error = ::getpwuid_r(::getuid(), &entry, texts.data(), texts.size(), &found);
        if (error == ERANGE || error == EINTR)
            continue;
        if (error != 0 || found == nullptr || found->pw_dir == nullptr)
            return std::nullopt;
        return std::string(found->pw_dir);
    }
    return std::nullopt;
}

std::optional<QByteArray> flatpakInfo()
{
    QFile file(flatpakInfoPath);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

std::string rawValue(const QProcessEnvironment &environment, const QString &name)
{
    return QFile::encodeName(environment.value(name)).toStdString();
}

// An account without a usable entry has only its environment to go by.
std::string realHome(const LinuxHomeFolder::Sources &sources)
{
    const auto home = sources.accountHome.value_or(std::string());
    if (home.starts_with('/'))
        return standardisedPath(home, std::string());
    const auto fallback = rawValue(sources.environment, u"HOME"_s);
    return fallback.starts_with('/') ? standardisedPath(fallback, std::string()) : "/";
}

std::optional<std::string> sandboxHome(const LinuxHomeFolder::Sources &sources, const std::string &realHome)
{
    if (sources.flatpakInfo) {
        const auto info = parseFlatpakInfo(*sources.flatpakInfo);
        if (info.seesHome || info.application.isEmpty())
            return std::nullopt;
        return realHome + "/.var/app/" + info.application.toStdString();
    }
    if (isStrictSnap(sources.environment))
        return standardisedPath(rawValue(sources.environment, u"SNAP_USER_DATA"_s), std::string());
    return std::nullopt;
}

} // namespace

LinuxHomeFolder::LinuxHomeFolder()
    : LinuxHomeFolder(Sources{ .flatpakInfo = Quillbrook::flatpakInfo(),
        .environment = QProcessEnvironment::systemEnvironment(),
        .accountHome = Quillbrook::accountHome() })
{
}

LinuxHomeFolder::LinuxHomeFolder(const Sources &sources)
    : m_realHome(realHome(sources))
    , m_home(sandboxHome(sources, m_realHome).value_or(m_realHome))
{
}

bool isStrictSnap(const QProcessEnvironment &environment)
{
    const auto data = environment.value(u"SNAP_USER_DATA"_s);
    return environment.contains(u"SNAP"_s) && data.startsWith(u'/') && environment.value(u"HOME"_s) == data;
}

} // namespace Quillbrook

#include "Platform/Linux/Sandbox/LinuxFolderGrants.h"

#include "Platform/Linux/Bus/BusCall.h"
#include "Platform/Linux/Files/FileDescriptor.h"
#include "Platform/Linux/Files/LinuxErrorText.h"
#include "Platform/Linux/Sandbox/FolderBookmark.h"
#include "StandardisedPath.h"

#include <QDBusMessage>
#include <QDBusReply>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <future>
#include <memory>
#include <string_view>
#include <system_error>
#include <thread>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

/// Where homes lie on most systems.
constexpr std::array<std::string_view, 2> homePrefixes{ "/home/", "/var/home/" };

/// The folder of a login's sockets, on all systems with a login manager: this and the number of the user.
constexpr std::string_view runtimeFolders = "/run/user/";
/// The document portal's mount point below it, and in every Flatpak.
constexpr std::string_view documentFolder = "/doc";
constexpr std::string_view flatpakMountPoint = "/run/flatpak/doc";

// The error number of opening it for reading as a folder; 0 when it can be.
int openingError(const std::string &path)
{
    const FileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return folder.isOpen() ? 0 : errno;
}

// A file system whose server is gone would hold this for ever; the thread that asks it is left behind then.
int openingErrorWithin(const std::string &path, std::chrono::milliseconds patience)
{
    const auto answer = std::make_shared<std::promise<int>>();
    auto answered = answer->get_future();
    try {
        std::thread([answer, path] { answer->set_value(openingError(path)); }).detach();
    } catch (const std::system_error &) {
        return openingError(path);
    }
    return answered.wait_for(patience) == std::future_status::ready ? answered.get() : ETIMEDOUT;
}

// The mount point of the document portal by the look of the path, whichever login it was told to.
std::string mountPointIn(const std::string &path)
{
    if (path.starts_with(flatpakMountPoint))
        return std::string(flatpakMountPoint);
    if (!path.starts_with(runtimeFolders))
        return {};
    const auto end = path.find('/', runtimeFolders.size());
    return end == std::string::npos ? std::string() : path.substr(0, end).append(documentFolder);
}

std::optional<PortalDocument> documentByLooks(const std::string &path, const std::string &runtimeFolder)
{
    if (auto document = portalDocument(path, mountPointIn(path)))
        return document;
    return runtimeFolder.empty() ? std::nullopt
                                 : portalDocument(path, runtimeFolder + std::string(documentFolder));
}

} // namespace

LinuxFolderGrants::LinuxFolderGrants(Options options, const QDBusConnection &sessionBus)
    : m_options(std::move(options))
    , m_bus(sessionBus)
{
}

std::expected<QByteArray, QString> LinuxFolderGrants::bookmark(const std::string &path)
{
    if (!path.starts_with('/') || path.find('\0') != std::string::npos)
        return std::unexpected(LinuxErrorText::sentence(EINVAL));
    // What can't be read now may be readable later; what is no folder never will be.
    if (const auto error = openingErrorWithin(path, m_options.patience); error != 0 && error != EACCES)
        return std::unexpected(LinuxErrorText::sentence(error));
    FolderBookmark bookmark{ .path = path, .document = documentByLooks(path, m_options.runtimeFolder) };
    if (!bookmark.document && path.find(std::string(documentFolder) + '/') != std::string::npos)
        bookmark.document = portalDocument(path, askForMountPoint().value_or(std::string()));
    return encode(bookmark);
}

std::optional<FolderGrants::Resolved> LinuxFolderGrants::resolve(const QByteArray &bookmark)
{
    const auto kept = decodeFolderBookmark(bookmark);
    if (!kept)
        return std::nullopt;
    if (startAccessing(kept->path))
        return Resolved{ .path = kept->path };
    if (!kept->document)
        return std::nullopt;
    const auto mountPoint = askForMountPoint();
    if (!mountPoint)
        return std::nullopt;
    const auto present = *mountPoint + '/' + kept->document->id + '/' + kept->document->rest;
    if (present == kept->path || !startAccessing(present))
        return std::nullopt;
    return Resolved{ .path = present, .isStale = true };
}

bool LinuxFolderGrants::startAccessing(const std::string &path)
{
    return openingErrorWithin(path, m_options.patience) == 0;
}

bool LinuxFolderGrants::isOnStartupDisk(const std::string &path) const
{
    const auto &home = m_options.realHome;
    if (!home.empty() && (path == home || path.starts_with(home + '/')))
        return true;
    // A home right below the root says nothing about its neighbours.
    if (const auto homes = parentOf(home); homes != "/" && path.starts_with(homes + '/'))
        return true;
    return std::ranges::any_of(homePrefixes, [&path](auto prefix) { return path.starts_with(prefix); })
        || documentByLooks(path, m_options.runtimeFolder);
}

std::optional<std::string> LinuxFolderGrants::askForMountPoint() const
{
    const auto name = u"org.freedesktop.portal.Documents"_s;
    const QDBusReply<QByteArray> reply = BusCall::wait(m_bus,
        QDBusMessage::createMethodCall(
            name, u"/org/freedesktop/portal/documents"_s, name, u"GetMountPoint"_s),
        m_options.patience);
    if (!reply.isValid())
        return std::nullopt;
    // The bytes end with a zero.
    const std::string mountPoint(reply.value().constData());
    return mountPoint.starts_with('/') ? std::optional(mountPoint) : std::nullopt;
}

} // namespace Quillbrook

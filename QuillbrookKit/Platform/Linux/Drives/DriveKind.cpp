#include "Platform/Linux/Drives/DriveKind.h"

#include "Platform/Linux/Files/LinuxFileReading.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDeadlineTimer>
#include <QUuid>
#include <QVariantMap>

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr std::array<std::string_view, 24> networkTypes{ "nfs", "nfs4", "cifs", "smb3", "smbfs", "afs", "9p",
    "ceph", "glusterfs", "lustre", "beegfs", "orangefs", "coda", "ncpfs", "davfs", "fuse.sshfs",
    "fuse.rclone", "fuse.gvfsd-fuse", "fuse.davfs2", "fuse.s3fs", "fuse.curlftpfs", "fuse.glusterfs",
    "fuse.juicefs", "fuse.cephfs" };

/// A drive with another beneath it, as an encrypted one has, has no end in a made-up folder of devices.
constexpr int mostLayers = 16;

std::string contentOf(const std::filesystem::path &path)
{
    constexpr qsizetype longest = 256;
    const auto text = LinuxFileReading().contents(path.string(), longest);
    return text ? text->trimmed().toStdString() : std::string();
}

// The device beneath one that is made of others, or else its whole disk.
std::filesystem::path diskOf(std::filesystem::path device)
{
    std::error_code error;
    for (int layer = 0; layer < mostLayers; ++layer) {
        const auto slaves = std::filesystem::directory_iterator(device / "slaves", error);
        if (error || slaves == std::filesystem::directory_iterator())
            break;
        device = std::filesystem::canonical(slaves->path(), error);
    }
    return std::filesystem::exists(device / "partition", error) ? device.parent_path() : device;
}

// The disk service over a connection of this thread's own, so that nobody else's waits behind it.
class DiskService
{
public:
    DiskService(const QString &address, std::chrono::milliseconds patience)
        : m_connection(address.isEmpty() ? QDBusConnection::connectToBus(QDBusConnection::SystemBus, m_name)
                                         : QDBusConnection::connectToBus(address, m_name))
        , m_deadline(patience)
    {
    }
    DiskService(const DiskService &) = delete;
    DiskService &operator=(const DiskService &) = delete;
    ~DiskService() { QDBusConnection::disconnectFromBus(m_name); }

    [[nodiscard]] QString blockOf(const std::string &device) const
    {
        const QVariantMap which{ { u"path"_s, QString::fromStdString(device) } };
        const auto reply = ask(u"/org/freedesktop/UDisks2/Manager"_s, u"org.freedesktop.UDisks2.Manager"_s,
            u"ResolveDevice"_s, { which, QVariantMap() }, u"ao"_s);
        const auto found = reply ? qdbus_cast<QList<QDBusObjectPath>>(*reply) : QList<QDBusObjectPath>();
        return found.isEmpty() ? QString() : found.constFirst().path();
    }

    [[nodiscard]] QVariant property(
        const QString &object, const QString &interface, const QString &name) const
    {
        const auto reply = ask(object, u"org.freedesktop.DBus.Properties"_s, u"Get"_s,
            { u"org.freedesktop.UDisks2."_s + interface, name }, u"v"_s);
        return reply ? reply->value<QDBusVariant>().variant() : QVariant();
    }

private:
    [[nodiscard]] std::optional<QVariant> ask(const QString &object, const QString &interface,
        const QString &method, const QVariantList &arguments, const QString &signature) const
    {
        if (!m_connection.isConnected() || m_deadline.hasExpired())
            return std::nullopt;
        auto call = QDBusMessage::createMethodCall(u"org.freedesktop.UDisks2"_s, object, interface, method);
        call.setArguments(arguments);
        const auto reply
            = m_connection.call(call, QDBus::Block, static_cast<int>(m_deadline.remainingTime()));
        if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != signature)
            return std::nullopt;
        return reply.arguments().constFirst();
    }

    QString m_name = QUuid::createUuid().toString();
    QDBusConnection m_connection;
    QDeadlineTimer m_deadline;
};

} // namespace

DriveKind DriveKinds::of(const Mount &mount) const
{
    if (std::ranges::find(networkTypes, mount.type) != networkTypes.end())
        return { .isRemovable = false, .isInternal = false };
    if (!mount.source.starts_with("/dev/"))
        return { .isRemovable = false };
    if (const auto told = toldByService(mount.source))
        return *told;
    return toldByKernel(mount.source);
}

std::string DriveKinds::numberOfDevice(const std::string &path)
{
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISBLK(status.st_mode))
        return {};
    return std::to_string(major(status.st_rdev)) + ':' + std::to_string(minor(status.st_rdev));
}

std::optional<DriveKind> DriveKinds::toldByService(const std::string &device) const
{
    const DiskService service(m_options.busAddress, m_options.patience);
    auto block = service.blockOf(device);
    if (block.isEmpty())
        return std::nullopt;
    const auto isInternal = service.property(block, u"Block"_s, u"HintSystem"_s);
    const auto backing
        = service.property(block, u"Block"_s, u"CryptoBackingDevice"_s).value<QDBusObjectPath>().path();
    if (backing.size() > 1)
        block = backing;
    const auto drive = service.property(block, u"Block"_s, u"Drive"_s).value<QDBusObjectPath>().path();
    if (!isInternal.isValid() || drive.size() <= 1)
        return std::nullopt;
    const auto bus = service.property(drive, u"Drive"_s, u"ConnectionBus"_s).toString();
    return DriveKind{ .isRemovable = service.property(drive, u"Drive"_s, u"Removable"_s).toBool()
            || service.property(drive, u"Drive"_s, u"MediaRemovable"_s).toBool()
            || QStringList{ u"usb"_s, u"sdio"_s, u"ieee1394"_s }.contains(bus),
        .isInternal = isInternal.toBool() };
}

// A hard disk at a USB port says of itself that it is not removable; the way to it says more.
DriveKind DriveKinds::toldByKernel(const std::string &device) const
{
    const auto number = m_options.deviceNumber(device);
    std::error_code error;
    const auto found
        = std::filesystem::canonical(std::filesystem::path(m_options.devices) / "dev/block" / number, error);
    if (number.empty() || error)
        return { .isRemovable = false };
    const auto disk = diskOf(found);
    const auto way = disk.string();
    const bool isOutside = std::ranges::any_of(std::array{ "/usb", "/fw", "/thunderbolt" },
        [&](const char *bus) { return way.find(bus) != std::string::npos; });
    const bool isCard = contentOf(disk / "device/type") == "SD";
    const bool isRemovable = isOutside || isCard || contentOf(disk / "removable") == "1";
    return { .isRemovable = isRemovable, .isInternal = !isRemovable };
}

} // namespace Quillbrook

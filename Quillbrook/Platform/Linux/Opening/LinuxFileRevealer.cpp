#include "Platform/Linux/Opening/LinuxFileRevealer.h"

#include "Platform/Linux/Bus/BusCall.h"
#include "Platform/Linux/Files/FileDescriptor.h"
#include "StandardisedPath.h"

#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QDesktopServices>
#include <QStringList>
#include <QUrl>
#include <QVariantMap>

#include <fcntl.h>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

QDBusMessage showItems(const std::string &path)
{
    auto message = QDBusMessage::createMethodCall(u"org.freedesktop.FileManager1"_s,
        u"/org/freedesktop/FileManager1"_s, u"org.freedesktop.FileManager1"_s, u"ShowItems"_s);
    message << QStringList{ fileUri(path) } << QString();
    return message;
}

QDBusMessage openDirectory(int file)
{
    auto message = QDBusMessage::createMethodCall(u"org.freedesktop.portal.Desktop"_s,
        u"/org/freedesktop/portal/desktop"_s, u"org.freedesktop.portal.OpenURI"_s, u"OpenDirectory"_s);
    message << QString() << QVariant::fromValue(QDBusUnixFileDescriptor(file)) << QVariantMap();
    return message;
}

} // namespace

LinuxFileRevealer::LinuxFileRevealer(const QDBusConnection &sessionBus, std::chrono::milliseconds timeout)
    : m_bus(sessionBus)
    , m_timeout(timeout)
{
}

void LinuxFileRevealer::reveal(const std::string &path)
{
    BusCall::ask(m_bus, showItems(path), m_timeout, this, [this, path](const QDBusMessage &reply) {
        if (reply.type() != QDBusMessage::ReplyMessage)
            askPortal(path);
    });
}

void LinuxFileRevealer::askPortal(const std::string &path)
{
    // The portal is told by a handle that can't read, and opens the folder that holds what the handle names.
    const FileDescriptor file(::open(path.c_str(), O_PATH | O_CLOEXEC));
    if (!file.isOpen()) {
        openFolder(path);
        return;
    }
    BusCall::ask(
        m_bus, openDirectory(file.number()), m_timeout, this, [this, path](const QDBusMessage &reply) {
            if (reply.type() != QDBusMessage::ReplyMessage)
                openFolder(path);
        });
}

void LinuxFileRevealer::openFolder(const std::string &path)
{
    QDesktopServices::openUrl(QUrl(fileUri(parentOf(path)), QUrl::StrictMode));
}

QString fileUri(const std::string &path)
{
    return u"file://"_s
        + QString::fromLatin1(
            QByteArray::fromRawData(path.data(), static_cast<qsizetype>(path.size())).toPercentEncoding("/"));
}

} // namespace Quillbrook

#include "Platform/Linux/Opening/LinuxFileRevealer.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>
#include <QDesktopServices>
#include <QStringList>
#include <QUrl>
#include <QVariantMap>

#include <fcntl.h>
#include <unistd.h>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

std::string parentFolder(const std::string &path)
{
    const auto slash = path.find_last_of('/');
    return slash == 0 || slash == std::string::npos ? "/" : path.substr(0, slash);
}

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
    , m_timeout(static_cast<int>(timeout.count()))
{
}

void LinuxFileRevealer::reveal(const std::string &path)
{
    // Without a bus a call would never come to an end.
    if (!m_bus.isConnected()) {
        openFolder(path);
        return;
    }
    auto *call = new QDBusPendingCallWatcher(m_bus.asyncCall(showItems(path), m_timeout), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, call, path] {
        call->deleteLater();
        if (call->isError())
            askPortal(path);
    });
}

void LinuxFileRevealer::askPortal(const std::string &path)
{
    // The portal is told by a handle that can't read, and opens the folder that holds what the handle names.
    const auto file = ::open(path.c_str(), O_PATH | O_CLOEXEC);
    if (file < 0) {
        openFolder(path);
        return;
    }
    auto *call = new QDBusPendingCallWatcher(m_bus.asyncCall(openDirectory(file), m_timeout), this);
    ::close(file);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, call, path] {
        call->deleteLater();
        if (call->isError())
            openFolder(path);
    });
}

void LinuxFileRevealer::openFolder(const std::string &path)
{
    QDesktopServices::openUrl(QUrl(fileUri(parentFolder(path)), QUrl::StrictMode));
}

QString fileUri(const std::string &path)
{
    return u"file://"_s
        + QString::fromLatin1(
            QByteArray::fromRawData(path.data(), static_cast<qsizetype>(path.size())).toPercentEncoding("/"));
}

} // namespace Quillbrook

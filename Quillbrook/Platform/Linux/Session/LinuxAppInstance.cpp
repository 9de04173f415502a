#include "Platform/Linux/Session/LinuxAppInstance.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDebug>
#include <QDir>
#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

// The one that runs may end just while it is asked; the name is then free. More often is no accident.
constexpr int attempts = 5;

constexpr auto tokenKey = "activation-token";
constexpr auto startupIdKey = "desktop-startup-id";

bool isFolderOfThisUser(const QByteArray &path)
{
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::getuid()
        && (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

QByteArray tokenOf(const QVariantMap &platformData)
{
    const auto token = platformData.value(QLatin1String(tokenKey)).toString();
    return (token.isEmpty() ? platformData.value(QLatin1String(startupIdKey)).toString() : token).toUtf8();
}

} // namespace

LinuxAppInstance::StartTokens LinuxAppInstance::StartTokens::ofEnvironment()
{
    return { .activationToken = qgetenv("XDG_ACTIVATION_TOKEN"), .startupId = qgetenv("DESKTOP_STARTUP_ID") };
}

QString LinuxAppInstance::usersRuntimeFolder()
{
    const auto told = qgetenv("XDG_RUNTIME_DIR");
    if (told.startsWith('/') && isFolderOfThisUser(told))
        return QFile::decodeName(told);
    const auto own = u"%1/%2-%3"_s.arg(QDir::tempPath(), name()).arg(::getuid());
    const auto path = QFile::encodeName(own);
    // Anyone may have put something in its place, which is then not used.
    ::mkdir(path.constData(), S_IRWXU);
    return isFolderOfThisUser(path) ? own : QString();
}

LinuxAppInstance::LinuxAppInstance(const Options &options)
    : m_options(options)
{
}

LinuxAppInstance::~LinuxAppInstance()
{
    if (!m_options.bus.isConnected())
        return;
    if (m_ownsName)
        m_options.bus.unregisterService(name());
    m_options.bus.unregisterObject(objectPath());
}

bool LinuxAppInstance::claim()
{
    return m_options.bus.isConnected() ? claimName() : claimLock();
}

bool LinuxAppInstance::claimName()
{
    // Before the name, so that whoever finds the name also finds the object.
    m_options.bus.registerObject(objectPath(), this, QDBusConnection::ExportScriptableSlots);
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply
            = m_options.bus.interface()->registerService(name(), QDBusConnectionInterface::DontQueueService,
                QDBusConnectionInterface::DontAllowReplacement);
        m_ownsName = reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered;
        if (m_ownsName)
            return true;
        if (!reply.isValid()) {
            // A sandbox may keep the name back, and a bus may go down.
            qWarning("Quillbrook: could not take the name %ls — %ls", qUtf16Printable(name()),
                qUtf16Printable(reply.error().message()));
            return claimLock();
        }
        switch (activateOwner()) {
        case Answer::done:
            return false;
        case Answer::silent:
            qWarning("Quillbrook: is running already, but does not answer");
            return false;
        case Answer::gone:
            break;
        }
    }
    qWarning("Quillbrook: is running already, but can't be reached");
    return false;
}

LinuxAppInstance::Answer LinuxAppInstance::activateOwner() const
{
    QVariantMap platformData;
    if (!m_options.tokens.activationToken.isEmpty())
        platformData.insert(QLatin1String(tokenKey), QString::fromUtf8(m_options.tokens.activationToken));
    if (!m_options.tokens.startupId.isEmpty())
        platformData.insert(QLatin1String(startupIdKey), QString::fromUtf8(m_options.tokens.startupId));
    auto message = QDBusMessage::createMethodCall(
        name(), objectPath(), u"org.freedesktop.Application"_s, u"Activate"_s);
    message.setAutoStartService(false);
    message << platformData;
    const auto reply
        = m_options.bus.call(message, QDBus::Block, static_cast<int>(m_options.patience.count()));
    if (reply.type() == QDBusMessage::ReplyMessage)
        return Answer::done;
    // An owner that ends before it has answered is told as no reply too: whether it is still there decides.
    const auto stillThere = m_options.bus.interface()->isServiceRegistered(name());
    return stillThere.isValid() && !stillThere.value() ? Answer::gone : Answer::silent;
}

bool LinuxAppInstance::claimLock()
{
    if (m_options.runtimeFolder.isEmpty()) {
        qWarning("Quillbrook: no folder for a lock; make sure that it runs once only");
        return true;
    }
    const auto path = QFile::encodeName(m_options.runtimeFolder + u'/' + name() + u".lock"_s);
    FileDescriptor file(
        ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR));
    // The lock goes with the process, however that ends; the file may stay.
    if (file.isOpen() && ::flock(file.number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        qWarning("Quillbrook: is running already; without a session bus its window can't be brought forward");
        return false;
    }
    if (!file.isOpen())
        qWarning("Quillbrook: could not lock %s — %ls", path.constData(), qUtf16Printable(qt_error_string()));
    m_lock = std::move(file);
    return true;
}

void LinuxAppInstance::Activate(const QVariantMap &platformData)
{
    Q_EMIT activated(tokenOf(platformData));
}

void LinuxAppInstance::Open(const QStringList &uris, const QVariantMap &platformData)
{
    Q_UNUSED(uris)
    Q_EMIT activated(tokenOf(platformData));
}

void LinuxAppInstance::ActivateAction(
    const QString &action, const QVariantList &parameters, const QVariantMap &platformData)
{
    Q_UNUSED(parameters)
    if (action == u"open"_s)
        Q_EMIT activated(tokenOf(platformData));
}

} // namespace Quillbrook

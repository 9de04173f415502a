#include "Platform/Linux/Session/LinuxAppInstance.h"

#include "Platform/Linux/Session/ActivationToken.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDebug>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

// The one that runs may end just while it is asked; the name is then free. More often is no accident.
constexpr int attempts = 5;

constexpr auto tokenKey = "activation-token";
constexpr auto startupIdKey = "desktop-startup-id";

// One that ends gives up its name and its lock in one go, but not at one moment; a kill leaves it to the
// system.
constexpr int lockAttempts = 10;
constexpr auto lockPause = std::chrono::milliseconds(50);

void makeFolders(const std::string &path)
{
    for (auto slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1))
        ::mkdir(path.substr(0, slash).c_str(), S_IRWXU);
    ::mkdir(path.c_str(), S_IRWXU);
}

bool isLocked(int file)
{
    for (int attempt = 0; attempt < lockAttempts; ++attempt) {
        if (attempt > 0)
            std::this_thread::sleep_for(lockPause);
        if (::flock(file, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK)
            return false;
    }
    return true;
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

LinuxAppInstance::LinuxAppInstance(const Options &options)
    : m_options(options)
{
}

LinuxAppInstance::~LinuxAppInstance()
{
    // Before the name: whoever gets the name wants the lock next.
    m_lock = {};
    giveUpName();
}

// The lock holds in any case: one without a bus, or with another bus, would write the same stores.
bool LinuxAppInstance::claim(Start start)
{
    const auto found = m_options.bus.isConnected() ? claimName(start) : Name::unavailable;
    if (found == Name::ownedByAnother)
        return false;
    if (claimLock())
        return true;
    giveUpName();
    return false;
}

void LinuxAppInstance::useActivationToken(const QByteArray &token)
{
    if (token.isEmpty())
        return;
    ActivationToken::set(token);
    // Programs started later must not get it.
    QMetaObject::invokeMethod(
        this, [] { ActivationToken::set({}); }, Qt::QueuedConnection);
}

void LinuxAppInstance::giveUpName()
{
    if (!m_options.bus.isConnected())
        return;
    if (std::exchange(m_ownsName, false))
        m_options.bus.unregisterService(name());
    m_options.bus.unregisterObject(objectPath());
}

LinuxAppInstance::Name LinuxAppInstance::claimName(Start start)
{
    // Before the name, so that whoever finds the name also finds the object.
    m_options.bus.registerObject(objectPath(), this, QDBusConnection::ExportScriptableSlots);
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply
            = m_options.bus.interface()->registerService(name(), QDBusConnectionInterface::DontQueueService,
                QDBusConnectionInterface::DontAllowReplacement);
        m_ownsName = reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered;
        if (m_ownsName)
            return Name::owned;
        if (!reply.isValid()) {
            // A sandbox may keep the name back, and a bus may go down.
            qWarning("Quillbrook: could not take the name %ls — %ls", qUtf16Printable(name()),
                qUtf16Printable(reply.error().message()));
            return Name::unavailable;
        }
        if (start == Start::inBackground)
            return Name::ownedByAnother;
        switch (activateOwner()) {
        case Answer::done:
            return Name::ownedByAnother;
        case Answer::silent:
            qWarning("Quillbrook: is running already, but does not answer");
            return Name::ownedByAnother;
        case Answer::gone:
            break;
        }
    }
    qWarning("Quillbrook: is running already, but can't be reached");
    return Name::ownedByAnother;
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
    makeFolders(m_options.lockFolder);
    const auto path = m_options.lockFolder + "/lock";
    constexpr int flags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
    FileDescriptor file(::open(path.c_str(), flags, S_IRUSR | S_IWUSR));
    if (!file.isOpen()) {
        qWarning("Quillbrook: could not lock %s — %ls; make sure that it runs once only", path.c_str(),
            qUtf16Printable(qt_error_string()));
        return true;
    }
    // The lock goes with the process, however that ends; the file may stay.
    if (isLocked(file.number())) {
        qWarning("Quillbrook: is running already, where its window can't be brought forward from here");
        return false;
    }
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

#include "Platform/Linux/Sandbox/LinuxFolderPicker.h"

#include "Platform/Linux/Bus/BusCall.h"
#include "Platform/Linux/Sandbox/PortalRequest.h"

#include <QApplication>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusServiceWatcher>
#include <QEventLoop>
#include <QFile>
#include <QFileDialog>
#include <QFutureWatcher>
#include <QScopedValueRollback>
#include <QWindow>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

const auto portalName = u"org.freedesktop.portal.Desktop"_s;
const auto chooser = u"org.freedesktop.portal.FileChooser"_s;

/// The first version of the portal's interface that picks folders.
constexpr uint firstWithFolders = 3;

// The window that the portal's own belongs to. On Wayland it stands alone.
QString parentWindow()
{
    const auto *window = QGuiApplication::focusWindow();
    if (!window || QGuiApplication::platformName() != u"xcb"_s)
        return {};
    return u"x11:"_s + QString::number(window->winId(), 16);
}

// Ends with a zero, as the portal wants it.
QByteArray zeroTerminated(const QString &path)
{
    return QFile::encodeName(path) + '\0';
}

std::optional<std::string> pickByDialog(const FolderPicker::Request &request)
{
    if (!qobject_cast<QApplication *>(QCoreApplication::instance()))
        return std::nullopt;
    QFileDialog dialog(nullptr, request.message, request.directory);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    // Nothing is made, renamed or deleted there.
    dialog.setOption(QFileDialog::ReadOnly);
    dialog.setFilter(QDir::Dirs | QDir::Drives | QDir::NoDotAndDotDot);
    dialog.setLabelText(QFileDialog::Accept, request.prompt);
    // Taken at the press itself: afterwards the dialog goes on loading folders, and forgets.
    QString picked;
    QObject::connect(
        &dialog, &QFileDialog::fileSelected, &dialog, [&picked](const QString &path) { picked = path; });
    const bool isAccepted = dialog.exec() == QDialog::Accepted;
    // The next window first looks into the folder that this one is left at, before it is told where to open,
    // and on this thread. Whether that answers by then is not known of every folder.
    dialog.setDirectory(request.directory);
    if (!isAccepted || picked.isEmpty())
        return std::nullopt;
    return QFile::encodeName(picked).toStdString();
}

} // namespace

LinuxFolderPicker::LinuxFolderPicker(Options options, const QDBusConnection &sessionBus)
    : m_options(options)
    , m_bus(sessionBus)
{
}

std::optional<std::string> LinuxFolderPicker::pick(const Request &request)
{
    if (m_isPicking)
        return std::nullopt;
    const QScopedValueRollback<bool> picking(m_isPicking, true);
    return m_options.isSandboxed && hasPortal() ? pickByPortal(request) : pickByDialog(request);
}

bool LinuxFolderPicker::hasPortal() const
{
    auto question = QDBusMessage::createMethodCall(
        portalName, u"/org/freedesktop/portal/desktop"_s, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    question << chooser << u"version"_s;
    QEventLoop loop;
    std::optional<QDBusMessage> answer;
    BusCall::ask(m_bus, question, m_options.patience, &loop, [&](const QDBusMessage &reply) {
        answer = reply;
        loop.quit();
    });
    if (!answer)
        loop.exec();
    if (!answer)
        return false;
    const QDBusReply<QDBusVariant> version = *answer;
    return version.isValid() && version.value().variant().toUInt() >= firstWithFolders;
}

std::optional<std::string> LinuxFolderPicker::pickByPortal(const Request &request) const
{
    auto question = PortalRequest::method(chooser, u"OpenFile"_s);
    question << parentWindow() << request.message
             << QVariantMap{ { u"directory"_s, true }, { u"modal"_s, true },
                    { u"accept_label"_s, request.prompt },
                    { u"current_folder"_s, zeroTerminated(request.directory) } };

    // What is left open when the loop ends is taken back as this object goes.
    PortalRequest portal(m_bus);
    QEventLoop loop;
    const QDBusServiceWatcher presence(portalName, m_bus, QDBusServiceWatcher::WatchForUnregistration);
    QObject::connect(&presence, &QDBusServiceWatcher::serviceUnregistered, &loop, &QEventLoop::quit);
    QFutureWatcher<std::optional<PortalRequest::Response>> answer;
    QObject::connect(&answer, &QFutureWatcherBase::finished, &loop, &QEventLoop::quit);
    const auto future = portal.call(question, m_options.leisure);
    answer.setFuture(future);
    loop.exec();

    if (!future.isFinished() || future.resultCount() == 0)
        return std::nullopt;
    const auto response = future.result();
    if (!response || response->code != PortalRequest::Response::granted)
        return std::nullopt;
    const auto uris = response->results.value(u"uris"_s).toStringList();
    return uris.isEmpty() ? std::nullopt : pathOfFileUri(uris.constFirst());
}

std::optional<std::string> pathOfFileUri(const QString &uri)
{
    const auto scheme = u"file://"_s;
    if (!uri.startsWith(scheme, Qt::CaseInsensitive))
        return std::nullopt;
    auto rest = uri.sliced(scheme.size());
    const auto localHost = u"localhost/"_s;
    if (rest.startsWith(localHost, Qt::CaseInsensitive))
        rest.remove(0, localHost.size() - 1);
    auto path = QByteArray::fromPercentEncoding(rest.toUtf8());
    if (!path.startsWith('/') || path.contains('\0'))
        return std::nullopt;
    while (path.size() > 1 && path.endsWith('/'))
        path.chop(1);
    return path.toStdString();
}

} // namespace Quillbrook

#include "Platform/Linux/Session/LinuxLoginItem.h"

#include "Platform/FileReading.h"
#include "Platform/FileWriting.h"
#include "Platform/Linux/Files/LinuxErrorText.h"
#include "Platform/Linux/Session/AutostartEntry.h"
#include "Platform/UserDefaults.h"
#include "WhenAnswered.h"

#include <QCoreApplication>
#include <QPromise>

#include <cerrno>
#include <memory>
#include <unistd.h>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

const auto rememberedKey = u"Quillbrook.launchesAtLogin"_s;
const std::string entryName = "/autostart/com.tarnwick.Quillbrook.desktop";
const auto autostartKey = u"autostart"_s;
constexpr qsizetype entryLimit = qsizetype{ 64 } * 1024;

} // namespace

LinuxLoginItem::LinuxLoginItem(
    const Services &services, const QDBusConnection &sessionBus, std::chrono::milliseconds timeout)
    : m_services(services)
    , m_timeout(timeout)
    , m_portal(sessionBus)
{
}

bool LinuxLoginItem::isEnabled() const
{
    if (!m_services.session.sandbox.isNone())
        return m_services.defaults.boolean(rememberedKey).value_or(false);
    auto folders = m_services.session.systemConfigFolders;
    folders.insert(folders.begin(), m_services.session.configFolder);
    return startsFrom(folders);
}

QFuture<LinuxLoginItem::Outcome> LinuxLoginItem::setEnabled(bool enabled)
{
    if (!m_services.session.sandbox.isNone())
        return askPortal(enabled);
    if (enabled)
        return QtFuture::makeReadyFuture(write(false));
    // What the system brings for everyone can only be hidden.
    const bool wouldStartYet = startsFrom(m_services.session.systemConfigFolders);
    return QtFuture::makeReadyFuture(wouldStartYet ? write(true) : remove());
}

QString LinuxLoginItem::programToStart(const QProcessEnvironment &environment, const QString &applicationFile)
{
    // A program that an AppImage has started inherits its variables, but does not lie in its folder.
    const auto image = environment.value(u"APPIMAGE"_s);
    const auto folder = environment.value(u"APPDIR"_s);
    const bool isFromImage = folder.startsWith(u'/') && applicationFile.startsWith(folder + u'/');
    return isFromImage && image.startsWith(u'/') ? image : applicationFile;
}

// Of several entries of the name only the first counts, whatever it says.
bool LinuxLoginItem::startsFrom(const std::vector<std::string> &configFolders) const
{
    for (const auto &folder : configFolders) {
        const auto path = folder + entryName;
        if (::access(path.c_str(), F_OK) != 0)
            continue;
        const auto text = m_services.reading.contents(path, entryLimit);
        const auto entry = text ? AutostartEntry::parse(*text) : std::nullopt;
        return entry && entry->isFor(m_services.session.desktops)
            && (entry->tryExec.isEmpty() || !m_services.session.findProgram(entry->tryExec).isEmpty());
    }
    return false;
}

LinuxLoginItem::Outcome LinuxLoginItem::write(bool isHidden) const
{
    // An entry is text; a name of other bytes would make it start something else.
    if (!m_services.program.startsWith(u'/') || m_services.program.contains(QChar::ReplacementCharacter))
        return std::unexpected(
            QCoreApplication::translate("LoginItem", "The program's own path can't be written down."));
    return m_services.writing.replace(
        m_services.session.configFolder + entryName, autostartFile(m_services.program, isHidden));
}

LinuxLoginItem::Outcome LinuxLoginItem::remove() const
{
    // A link goes as a link.
    if (::unlink((m_services.session.configFolder + entryName).c_str()) == 0 || errno == ENOENT)
        return {};
    return std::unexpected(LinuxErrorText::sentence(errno));
}

QFuture<LinuxLoginItem::Outcome> LinuxLoginItem::askPortal(bool enabled)
{
    auto message = PortalRequest::method(u"org.freedesktop.portal.Background"_s, u"RequestBackground"_s);
    message << QString()
            << QVariantMap{
                   { u"reason"_s,
                       u"Quillbrook watches the disk in the background and tells you before it "
                       "fills up."_s },
                   { autostartKey, enabled },
                   { u"commandline"_s, QStringList{ u"quillbrook"_s, u"--background"_s } },
               };
    const auto promise = std::make_shared<QPromise<Outcome>>();
    promise->start();
    using Response = std::optional<PortalRequest::Response>;
    whenAnswered(m_portal.call(message, m_timeout), this, [this, promise, enabled](const Response &response) {
        promise->addResult(takeAnswer(enabled, response));
        promise->finish();
    });
    return promise->future();
}

LinuxLoginItem::Outcome LinuxLoginItem::takeAnswer(
    bool enabled, const std::optional<PortalRequest::Response> &response)
{
    if (!response)
        return std::unexpected(
            QCoreApplication::translate("LoginItem", "The desktop portal gave no answer."));
    // A refusal tells how it stands as well.
    const auto starts = response->results.value(autostartKey);
    const bool isGranted = response->code == PortalRequest::Response::granted;
    if (starts.metaType() == QMetaType::fromType<bool>())
        m_services.defaults.setBoolean(rememberedKey, starts.toBool());
    else if (isGranted)
        m_services.defaults.setBoolean(rememberedKey, enabled);
    if (!isGranted)
        return std::unexpected(QCoreApplication::translate("LoginItem", "The request was turned down."));
    if (isEnabled() != enabled)
        return std::unexpected(QCoreApplication::translate("LoginItem", "The desktop did not change it."));
    return {};
}

} // namespace Quillbrook

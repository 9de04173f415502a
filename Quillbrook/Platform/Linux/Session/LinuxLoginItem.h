#pragma once

// Starting with the session by an entry in the user's autostart folder, which any settings program of the
// desktop may change; in a sandbox by the desktop portal, which can be asked for it but not how it stands.

#include "Platform/Linux/Sandbox/PortalRequest.h"
#include "Platform/Linux/Session/DesktopSession.h"
#include "Platform/LoginItem.h"

#include <QObject>

namespace Quillbrook {

class FileReading;
class FileWriting;
class UserDefaults;

class LinuxLoginItem final : public QObject, public LoginItem
{
    Q_OBJECT

public:
    /// How long the person has to answer the desktop's question in a sandbox.
    static constexpr std::chrono::milliseconds patience{ 120'000 };

    struct Services
    {
        /// They outlive it.
        FileReading &reading;
        FileWriting &writing;
        UserDefaults &defaults;
        DesktopSession session{};
        /// The absolute path of what is to be started.
        QString program{};
    };

    explicit LinuxLoginItem(const Services &services,
        const QDBusConnection &sessionBus = QDBusConnection::sessionBus(),
        std::chrono::milliseconds timeout = patience);

    [[nodiscard]] bool isEnabled() const override;
    [[nodiscard]] QFuture<std::expected<void, QString>> setEnabled(bool enabled) override;

    /// What starts the program that runs as `applicationFile`: that file, or the AppImage it was unpacked
    /// from.
    [[nodiscard]] static QString programToStart(
        const QProcessEnvironment &environment, const QString &applicationFile);

private:
    using Outcome = std::expected<void, QString>;

    [[nodiscard]] bool startsFrom(const std::vector<std::string> &configFolders) const;
    [[nodiscard]] Outcome write(bool isHidden) const;
    [[nodiscard]] Outcome remove() const;
    [[nodiscard]] QFuture<Outcome> askPortal(bool enabled);
    [[nodiscard]] Outcome takeAnswer(bool enabled, const std::optional<PortalRequest::Response> &response);

    Services m_services;
    std::chrono::milliseconds m_timeout;
    PortalRequest m_portal;
};

} // namespace Quillbrook

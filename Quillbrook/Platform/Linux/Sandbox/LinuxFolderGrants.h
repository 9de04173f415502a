#pragma once

// What is kept of a folder that was picked: its path, and where the document portal handed it over also its
// document id, which outlives the place where the portal shows it.

#include "Platform/FolderGrants.h"

#include <QDBusConnection>

#include <chrono>

namespace Quillbrook {

class LinuxFolderGrants final : public FolderGrants
{
public:
    struct Options
    {
        /// The home by the account database; absolute, in raw bytes.
        std::string realHome{};
        /// Where this login keeps its sockets and mounts; empty when that is not known.
        std::string runtimeFolder{};
        /// How long the document portal, and how long a file system, has to answer.
        std::chrono::milliseconds patience{ 3000 };
    };

    explicit LinuxFolderGrants(
        Options options, const QDBusConnection &sessionBus = QDBusConnection::sessionBus());

    [[nodiscard]] std::expected<QByteArray, QString> bookmark(const std::string &path) override;
    [[nodiscard]] std::optional<Resolved> resolve(const QByteArray &bookmark) override;
    [[nodiscard]] bool startAccessing(const std::string &path) override;
    /// Nothing was held open.
    void stopAccessing(const std::string & /*path*/) override { }
    /// Below the folder that holds the home, where homes usually lie, or handed over by the document portal,
    /// which does not tell where a folder really is.
    [[nodiscard]] bool isOnStartupDisk(const std::string &path) const override;

private:
    [[nodiscard]] std::optional<std::string> askForMountPoint() const;

    Options m_options;
    QDBusConnection m_bus;
};

} // namespace Quillbrook

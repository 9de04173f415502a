#pragma once

// Services for a measured application model that leave no trace: a home folder of our choosing, settings in
// memory, and a file manager that is never asked. Everything else is the machine's own.

#include "Catalogue/Linux/LinuxHostKnowledge.h"
#include "Platform/AppServices.h"
#include "Platform/BackupProbe.h"
#include "Platform/Clock.h"
#include "Platform/FileRevealer.h"
#include "Platform/FolderGrants.h"
#include "Platform/FolderPicker.h"
#include "Platform/HomeFolder.h"
#include "Platform/HttpClient.h"
#include "Platform/LinkOpener.h"
#include "Platform/Linux/Files/LinuxFileFacts.h"
#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Platform/Linux/Files/LinuxFileWriting.h"
#include "Platform/Linux/Files/LinuxSpaceReserve.h"
#include "Platform/Linux/Folders/LinuxDirectoryReading.h"
#include "Platform/Linux/Processes/LinuxProcessRunner.h"
#include "Platform/Linux/Processes/LinuxProcessors.h"
#include "Platform/Linux/Trash/LinuxFileRemoval.h"
#include "Platform/Linux/Trash/LinuxTrash.h"
#include "Platform/LoginItem.h"
#include "Platform/Notifier.h"
#include "Platform/UserDefaults.h"
#include "Platform/UtilityQueue.h"
#include "Platform/Volumes.h"
#include "Removal/HostGuards.h"

#include <QFuture>
#include <QHash>
#include <QVariant>

#include <optional>

namespace Quillbrook::Benchmarks {

class ChosenHome : public HomeFolder
{
public:
    explicit ChosenHome(QString path)
        : m_path(std::move(path))
    {
    }
    [[nodiscard]] QString homeDirectory() const override { return m_path; }
    [[nodiscard]] QString realHomeDirectory() const override { return m_path; }

private:
    QString m_path;
};

class DefaultsInMemory : public UserDefaults
{
public:
    [[nodiscard]] std::optional<qint64> integer(const QString &key) const override
    {
        return value<qint64>(key);
    }
    [[nodiscard]] std::optional<bool> boolean(const QString &key) const override { return value<bool>(key); }
    [[nodiscard]] std::optional<double> real(const QString &key) const override { return value<double>(key); }
    [[nodiscard]] std::optional<QStringList> texts(const QString &key) const override
    {
        return value<QStringList>(key);
    }
    [[nodiscard]] std::optional<QByteArray> data(const QString &key) const override
    {
        return value<QByteArray>(key);
    }
    [[nodiscard]] std::optional<QDateTime> date(const QString &key) const override
    {
        return value<QDateTime>(key);
    }
    void setInteger(const QString &key, qint64 value) override { m_values[key] = value; }
    void setBoolean(const QString &key, bool value) override { m_values[key] = value; }
    void setReal(const QString &key, double value) override { m_values[key] = value; }
    void setTexts(const QString &key, const QStringList &value) override { m_values[key] = value; }
    void setData(const QString &key, const QByteArray &value) override { m_values[key] = value; }
    void setDate(const QString &key, const QDateTime &value) override { m_values[key] = value; }
    void remove(const QString &key) override { m_values.remove(key); }

private:
    template <typename T>
    std::optional<T> value(const QString &key) const
    {
        const auto found = m_values.find(key);
        return found == m_values.end() ? std::nullopt : std::optional(found->value<T>());
    }

    QHash<QString, QVariant> m_values;
};

class UnknownVolumes : public Volumes
{
public:
    [[nodiscard]] std::optional<VolumeCapacity> capacity(const QString & /*path*/) const override
    {
        return std::nullopt;
    }
};

class NoRevealer : public FileRevealer
{
public:
    void reveal(const std::string & /*path*/) override { }
};

class NoBackups : public BackupProbe
{
public:
    [[nodiscard]] Backups look() const override { return {}; }
};

/// No network, no desktop, and a watcher that never looks.
struct NoSurroundings final : HttpClient,
                              UtilityQueue,
                              Notifier,
                              LoginItem,
                              LinkOpener,
                              FolderPicker,
                              FolderGrants
{
    QFuture<std::optional<HttpAnswer>> get(const HttpRequest & /*request*/) override
    {
        return QtFuture::makeReadyFuture(std::optional<HttpAnswer>());
    }
    void async(std::function<void()> /*work*/) override { }
    void startTimer(const Timer & /*timer*/, std::function<void()> /*handler*/) override { }
    void stopTimer() override { }
    void post(const QString & /*title*/, const QString & /*body*/) override { }
    QFuture<void> requestAuthorisation() override { return QtFuture::makeReadyFuture(); }
    QFuture<NotificationState> state() override
    {
        return QtFuture::makeReadyFuture(NotificationState::denied);
    }
    void openSettings() override { }
    [[nodiscard]] bool isEnabled() const override { return false; }
    QFuture<std::expected<void, QString>> setEnabled(bool /*enabled*/) override
    {
        return QtFuture::makeReadyFuture(std::expected<void, QString>());
    }
    void open(const QUrl & /*url*/) override { }
    std::optional<std::string> pick(const Request & /*request*/) override { return std::nullopt; }
    std::expected<QByteArray, QString> bookmark(const std::string & /*path*/) override
    {
        return std::unexpected(QString());
    }
    std::optional<Resolved> resolve(const QByteArray & /*bookmark*/) override { return std::nullopt; }
    bool startAccessing(const std::string & /*path*/) override { return false; }
    void stopAccessing(const std::string & /*path*/) override { }
};

class OfflineServices
{
public:
    explicit OfflineServices(const QString &home)
        : m_home(home)
        , m_dataFolder(home.toStdString() + "/.local/share")
    {
    }

    [[nodiscard]] AppServices services()
    {
        return { .kit = { .directories = m_directories,
                     .processors = m_processors,
                     .volumes = m_volumes,
                     .defaults = m_defaults,
                     .home = m_home,
                     .files = m_files,
                     .reading = m_reading,
                     .processes = m_processes,
                     .clock = m_clock,
                     .host = m_host,
                     .trash = m_trash,
                     .removal = m_removal,
                     .writing = m_writing,
                     .backups = m_backups,
                     .http = m_surroundings,
                     .utility = m_surroundings,
                     .guards = m_guards,
                     .dataFolder = m_dataFolder },
            .revealer = m_revealer,
            .notifier = m_surroundings,
            .loginItem = m_surroundings,
            .links = m_surroundings,
            .folderPicker = m_surroundings,
            .folderGrants = m_surroundings };
    }

private:
    LinuxDirectoryReading m_directories;
    LinuxProcessors m_processors;
    UnknownVolumes m_volumes;
    DefaultsInMemory m_defaults;
    ChosenHome m_home;
    const std::string m_dataFolder;
    LinuxFileFacts m_files;
    LinuxFileReading m_reading;
    LinuxProcessRunner m_processes;
    SystemClock m_clock;
    LinuxHostKnowledge m_host{ m_reading };
    LinuxSpaceReserve m_reserve{ m_dataFolder + "/reserve" };
    LinuxTrash m_trash{ { .homeTrash = m_dataFolder + "/Trash" }, m_reserve, m_clock };
    LinuxFileRemoval m_removal;
    LinuxFileWriting m_writing;
    NoBackups m_backups;
    HostGuards m_guards;
    NoRevealer m_revealer;
    NoSurroundings m_surroundings;
};

} // namespace Quillbrook::Benchmarks

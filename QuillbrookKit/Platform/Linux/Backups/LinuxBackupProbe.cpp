#include "Platform/Linux/Backups/LinuxBackupProbe.h"

#include "Platform/FileFacts.h"
#include "Platform/FileReading.h"
#include "Platform/FolderEntries.h"
#include "Platform/Linux/Backups/BackupSettings.h"
#include "Platform/Linux/Backups/BtrfsSnapshots.h"
#include "Platform/Linux/Backups/SnapperSnapshots.h"
#include "Platform/ProcessRunner.h"

#include <QDeadlineTimer>

#include <algorithm>
#include <array>
#include <filesystem>
#include <vector>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype mostSettingsBytes = qsizetype{ 1024 } * 1024;
// Lists of files that were backed up lie in it too.
constexpr qsizetype mostDatabaseBytes = qsizetype{ 64 } * 1024 * 1024;
// Far more timers or settings files than anybody has.
constexpr std::size_t mostEntries = 1000;

// What is asked for one answer, while its time runs.
class Questions
{
public:
    explicit Questions(const LinuxBackupProbe::Services &services)
        : m_services(services)
        , m_deadline(services.timeLimit)
    {
    }

    [[nodiscard]] bool hasDestination() const
    {
        // Files first: they answer at once.
        static constexpr std::array<bool (Questions::*)() const, 9> programs{ &Questions::hasBackInTime,
            &Questions::hasBorgmatic, &Questions::hasDuply, &Questions::hasKopia, &Questions::hasPika,
            &Questions::hasTimeshift, &Questions::hasVorta, &Questions::hasTimer, &Questions::hasDejaDup };
        return std::ranges::any_of(programs, [this](auto program) { return (this->*program)(); });
    }

    // Several tools may count the same snapshots, and none says which ones it counted. So the largest number
    // is taken, not the sum.
    [[nodiscard]] int localSnapshots() const
    {
        std::error_code unresolved;
        const auto home = std::filesystem::canonical(m_services.home, unresolved).string();
        const auto subvolume = unresolved ? std::string() : BtrfsSnapshots::subvolumeOf(home);
        const auto inBtrfs = subvolume.empty() ? 0 : BtrfsSnapshots::count(subvolume);
        return std::max({ timeshift().homeSnapshots, inBtrfs, snapper(subvolume), zfs(home) });
    }

private:
    [[nodiscard]] std::string inHome(const char *path) const { return m_services.home + '/' + path; }
    [[nodiscard]] std::string inSystem(const char *path) const
    {
        return m_services.systemSettings + '/' + path;
    }
    [[nodiscard]] QByteArray contents(const std::string &path, qsizetype limit = mostSettingsBytes) const
    {
        return m_services.reading.contents(path, limit).value_or(QByteArray());
    }
    [[nodiscard]] bool exists(const std::string &path) const
    {
        return m_services.files.kind(path).has_value();
    }
    [[nodiscard]] std::chrono::milliseconds timeLeft() const
    {
        return std::chrono::milliseconds(m_deadline.remainingTime());
    }

    [[nodiscard]] static std::vector<std::string> namesIn(const std::string &folder)
    {
        std::vector<std::string> names;
        const auto entries = folderEntries(folder);
        if (!entries->open(folder))
            return names;
        for (auto entry = entries->next(); entry && names.size() < mostEntries; entry = entries->next())
            names.emplace_back(entry->name);
        return names;
    }

    // What a program prints; nothing where it is not there, fails, or no time is left.
    [[nodiscard]] QByteArray output(const QString &program, const QStringList &arguments) const
    {
        if (m_deadline.hasExpired() || !exists(program.toStdString()))
            return {};
        const auto result = m_services.processes.run(
            { .program = program, .arguments = arguments, .timeLimit = timeLeft() });
        return result && result->exited && result->exitCode == 0 ? result->output : QByteArray();
    }

    [[nodiscard]] bool hasBackInTime() const
    {
        return BackupSettings::backInTimeHasPlace(contents(inHome(".config/backintime/config")));
    }

    [[nodiscard]] bool hasBorgmatic() const
    {
        const auto isSettings
            = [](const std::string &name) { return name.ends_with(".yaml") || name.ends_with(".yml"); };
        return exists(inHome(".config/borgmatic/config.yaml")) || exists(inSystem("borgmatic/config.yaml"))
            || std::ranges::any_of(namesIn(inHome(".config/borgmatic.d")), isSettings)
            || std::ranges::any_of(namesIn(inSystem("borgmatic.d")), isSettings);
    }

    [[nodiscard]] bool hasDejaDup() const
    {
        const auto *const inFlatpak = ".var/app/org.gnome.DejaDup/config/glib-2.0/settings/keyfile";
        return BackupSettings::dejaDupHasRun(contents(inHome(inFlatpak)))
            || BackupSettings::isTextWithContent(
                output(u"/usr/bin/gsettings"_s, { u"get"_s, u"org.gnome.DejaDup"_s, u"last-backup"_s }));
    }

    [[nodiscard]] bool hasDuply() const
    {
        const auto profiles = inHome(".duply");
        return std::ranges::any_of(namesIn(profiles),
            [&](const std::string &name) { return exists(profiles + '/' + name + "/conf"); });
    }

    [[nodiscard]] bool hasKopia() const { return exists(inHome(".config/kopia/repository.config")); }

    [[nodiscard]] bool hasPika() const
    {
        return BackupSettings::pikaHasBackups(contents(inHome(".config/pika-backup/backup.json")))
            || BackupSettings::pikaHasBackups(
                contents(inHome(".var/app/org.gnome.World.PikaBackup/config/pika-backup/backup.json")));
    }

    [[nodiscard]] BackupSettings::Timeshift timeshift() const
    {
        const auto present = contents(inSystem("timeshift/timeshift.json"));
        return BackupSettings::timeshift(
            present.isEmpty() ? contents(inSystem("timeshift.json")) : present, m_services.home);
    }
    [[nodiscard]] bool hasTimeshift() const { return timeshift().copiesHome; }

    [[nodiscard]] bool hasVorta() const
    {
        return BackupSettings::vortaHasRepositories(
                   contents(inHome(".local/share/Vorta/settings.db"), mostDatabaseBytes))
            || BackupSettings::vortaHasRepositories(
                contents(inHome(".var/app/com.borgbase.Vorta/data/Vorta/settings.db"), mostDatabaseBytes));
    }

    // Timers that are switched on have a link among the wants; what they start lies beside that folder.
    [[nodiscard]] bool hasTimer() const
    {
        return std::ranges::any_of(std::array{ inHome(".config/systemd/user"), inSystem("systemd/user"),
                                       inSystem("systemd/system") },
            [this](const std::string &units) {
                return std::ranges::any_of(namesIn(units + "/timers.target.wants"),
                    [&](const std::string &timer) { return startsBackup(units, timer); });
            });
    }
    [[nodiscard]] bool startsBackup(const std::string &units, const std::string &timer) const
    {
        const auto service = BackupSettings::serviceOf(timer);
        return !service.empty()
            && BackupSettings::startsBackup(contents(units + '/' + service), m_services.home);
    }

    [[nodiscard]] int snapper(const std::string &subvolume) const
    {
        if (subvolume.empty() || m_deadline.hasExpired())
            return 0;
        return SnapperSnapshots::count(QString::fromStdString(subvolume), m_services.systemBus, timeLeft());
    }

    // The tool takes a path for the data set that is mounted there.
    [[nodiscard]] int zfs(const std::string &home) const
    {
        const auto listing = output(u"/usr/sbin/zfs"_s,
            { u"list"_s, u"-H"_s, u"-t"_s, u"snapshot"_s, u"-o"_s, u"name"_s, u"-d"_s, u"1"_s,
                QString::fromStdString(home) });
        return static_cast<int>(std::ranges::count_if(
            listing.split('\n'), [](const QByteArray &line) { return line.contains('@'); }));
    }

    const LinuxBackupProbe::Services &m_services;
    QDeadlineTimer m_deadline;
};

} // namespace

LinuxBackupProbe::LinuxBackupProbe(Services services)
    : m_services(std::move(services))
{
}

Backups LinuxBackupProbe::find() const
{
    const Questions questions(m_services);
    return { .hasDestination = questions.hasDestination(), .localSnapshots = questions.localSnapshots() };
}

} // namespace Quillbrook

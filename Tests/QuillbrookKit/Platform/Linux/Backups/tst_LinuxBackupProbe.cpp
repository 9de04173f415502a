#include "Platform/Linux/Backups/BtrfsSnapshots.h"
#include "Platform/Linux/Backups/LinuxBackupProbe.h"
#include "Platform/Linux/Files/LinuxFileFacts.h"
#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Support/FakeProcessRunner.h"
#include "Support/PrivateBus.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QDBusArgument>
#include <QDBusContext>
#include <QDBusMetaType>
#include <QElapsedTimer>
#include <QTest>
#include <QtConcurrentRun>

#include <sqlite3.h>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

// The machine's files, and on top of them the tools that a test wants to be there, or not.
class Files final : public FileFacts
{
public:
    [[nodiscard]] std::optional<FileKind> kind(const std::string &path) const override
    {
        if (path.starts_with("/usr/"))
            return hasTools ? std::optional(FileKind::other) : std::nullopt;
        return m_files.kind(path);
    }
    [[nodiscard]] std::optional<FileDates> dates(const std::string &path) const override
    {
        return m_files.dates(path);
    }
    [[nodiscard]] std::optional<qint64> length(const std::string &path) const override
    {
        return m_files.length(path);
    }

    bool hasTools = false;

private:
    LinuxFileFacts m_files;
};

// A made-up home folder and /etc, on a machine without a system bus.
struct Machine
{
    Machine()
    {
        tree.folder("home");
        tree.folder("etc");
    }

    [[nodiscard]] Backups find() const
    {
        return LinuxBackupProbe({ .reading = reading,
                                    .files = files,
                                    .processes = processes,
                                    .home = tree.path("home"),
                                    .systemSettings = tree.path("etc"),
                                    .systemBus = bus,
                                    .timeLimit = timeLimit })
            .find();
    }

    TempTree tree;
    LinuxFileReading reading;
    Files files;
    FakeProcessRunner processes;
    QString bus = u"unix:path=/nonexistent/bus"_s;
    std::chrono::milliseconds timeLimit = std::chrono::seconds(5);
};

// As snapper's service tells of them: a name, the subvolume and settings; a number, a kind, and more.
struct SnapperConfiguration
{
    QString name;
    QString subvolume;
    QMap<QString, QString> settings;
};

struct SnapperSnapshot
{
    uint number = 0;
};

} // namespace

Q_DECLARE_METATYPE(SnapperConfiguration)
Q_DECLARE_METATYPE(SnapperSnapshot)

namespace {

QDBusArgument &operator<<(QDBusArgument &argument, const SnapperConfiguration &configuration)
{
    argument.beginStructure();
    argument << configuration.name << configuration.subvolume << configuration.settings;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, SnapperConfiguration &)
{
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const SnapperSnapshot &snapshot)
{
    argument.beginStructure();
    argument << snapshot.number << ushort(0) << 0U << 1'700'000'000LL << 0U << u"timeline"_s << u"timeline"_s
             << QMap<QString, QString>{ { u"important"_s, u"yes"_s } };
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, SnapperSnapshot &)
{
    return argument;
}

class FakeSnapper : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.opensuse.Snapper")

public:
    QList<SnapperConfiguration> configurations;
    // By the configuration; one that is missing may not be told of.
    QMap<QString, QList<SnapperSnapshot>> snapshots;
    bool isSilent = false;
    int calls = 0;

    // False when the bus will not have it.
    [[nodiscard]] bool answerOn(QDBusConnection bus)
    {
        qDBusRegisterMetaType<SnapperConfiguration>();
        qDBusRegisterMetaType<QList<SnapperConfiguration>>();
        qDBusRegisterMetaType<SnapperSnapshot>();
        qDBusRegisterMetaType<QList<SnapperSnapshot>>();
        return bus.registerObject(u"/org/opensuse/Snapper"_s, this, QDBusConnection::ExportAllSlots)
            && bus.registerService(u"org.opensuse.Snapper"_s);
    }

public Q_SLOTS:
    QList<SnapperConfiguration> ListConfigs()
    {
        ++calls;
        setDelayedReply(isSilent);
        return configurations;
    }
    QList<SnapperSnapshot> ListSnapshots(const QString &name)
    {
        ++calls;
        if (!snapshots.contains(name))
            sendErrorReply(u"error.no_permissions"_s, {});
        return snapshots.value(name);
    }
};

} // namespace

class TestLinuxBackupProbe : public QObject
{
    Q_OBJECT

    // Finds on another thread, while this one answers for the services on the bus.
    static Backups findFrom(const Machine &machine)
    {
        const auto probing = QtConcurrent::run([&] { return machine.find(); });
        QElapsedTimer timer;
        timer.start();
        while (!probing.isFinished() && timer.elapsed() < 20'000)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 20);
        return probing.result();
    }

private Q_SLOTS:
    void bareMachineHasNothing()
    {
        Machine machine;
        QCOMPARE(machine.find(), Backups());
        QVERIFY(machine.processes.commands.empty());
    }

    void settingsOfAProgramAreADestination_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("content");
        const QByteArray pika = "[{\"id\":\"a\"}]";
        QTest::newRow("Back In Time")
            << u"home/.config/backintime/config"_s << QByteArray("profile1.snapshots.path=/media/x\n");
        QTest::newRow("borgmatic") << u"home/.config/borgmatic/config.yaml"_s << QByteArray();
        QTest::newRow("borgmatic, one of several") << u"home/.config/borgmatic.d/a.yaml"_s << QByteArray();
        QTest::newRow("borgmatic for all") << u"etc/borgmatic/config.yaml"_s << QByteArray();
        QTest::newRow("borgmatic for all, one of several") << u"etc/borgmatic.d/a.yml"_s << QByteArray();
        QTest::newRow("duply") << u"home/.duply/nas/conf"_s << QByteArray();
        QTest::newRow("Kopia") << u"home/.config/kopia/repository.config"_s << QByteArray();
        QTest::newRow("Pika") << u"home/.config/pika-backup/backup.json"_s << pika;
        QTest::newRow("Pika in a Flatpak")
            << u"home/.var/app/org.gnome.World.PikaBackup/config/pika-backup/backup.json"_s << pika;
        QTest::newRow("D\u00E9j\u00E0 Dup in a Flatpak")
            << u"home/.var/app/org.gnome.DejaDup/config/glib-2.0/settings/keyfile"_s
            << QByteArray("[org/gnome/deja-dup]\nlast-backup='2024'\n");
        QTest::newRow("Timeshift") << u"etc/timeshift/timeshift.json"_s
                                   << QByteArray(
                                          "{\"backup_device_uuid\":\"a\",\"exclude\":[\"+ HOME/**\"]}");
        QTest::newRow("an older Timeshift")
            << u"etc/timeshift.json"_s
            << QByteArray("{\"backup_device_uuid\":\"a\",\"exclude\":[\"+ HOME/**\"]}");
    }
    void settingsOfAProgramAreADestination()
    {
        QFETCH(QString, file);
        QFETCH(QByteArray, content);
        Machine machine;
        content.replace("HOME", QByteArray::fromStdString(machine.tree.path("home")));
        machine.tree.fileWith(file.toStdString(), content.toStdString());
        QCOMPARE(machine.find(), Backups{ .hasDestination = true });
    }

    void repositoriesInADatabaseAreADestination_data()
    {
        QTest::addColumn<QString>("file");
        QTest::newRow("Vorta") << u"home/.local/share/Vorta/settings.db"_s;
        QTest::newRow("Vorta in a Flatpak") << u"home/.var/app/com.borgbase.Vorta/data/Vorta/settings.db"_s;
    }
    void repositoriesInADatabaseAreADestination()
    {
        QFETCH(QString, file);
        Machine machine;
        machine.tree.file(file.toStdString());
        sqlite3 *database = nullptr;
        const auto path = machine.tree.path(file.toStdString());
        QCOMPARE(sqlite3_open(path.c_str(), &database), SQLITE_OK);
        const auto made = sqlite3_exec(database,
            "CREATE TABLE repomodel(id, url); INSERT INTO repomodel VALUES(1,'ssh://x')", nullptr, nullptr,
            nullptr);
        sqlite3_close(database);
        QCOMPARE(made, SQLITE_OK);
        QCOMPARE(machine.find(), Backups{ .hasDestination = true });
    }

    void settingsThatSayNothingAreNone_data()
    {
        QTest::addColumn<QString>("file");
        QTest::newRow("Back In Time") << u"home/.config/backintime/config"_s;
        QTest::newRow("borgmatic's other files") << u"home/.config/borgmatic.d/README"_s;
        QTest::newRow("duply's other files") << u"home/.duply/conf"_s;
        QTest::newRow("Pika") << u"home/.config/pika-backup/backup.json"_s;
        QTest::newRow("Vorta") << u"home/.local/share/Vorta/settings.db"_s;
        QTest::newRow("Timeshift") << u"etc/timeshift/timeshift.json"_s;
        QTest::newRow("a timer of nothing") << u"home/.config/systemd/user/timers.target.wants/a.timer"_s;
    }
    void settingsThatSayNothingAreNone()
    {
        QFETCH(QString, file);
        Machine machine;
        machine.tree.fileWith(file.toStdString(), "\xFF\n");
        QCOMPARE(machine.find(), Backups());
    }

    void oddThingsInThePlaceOfSettingsAreNone()
    {
        Machine machine;
        machine.tree.pipe("home/.config/backintime/config");
        machine.tree.folder("home/.config/pika-backup/backup.json");
        machine.tree.link("home/.config/systemd/user/timers.target.wants", "timers.target.wants");
        machine.tree.fileWith("etc/timeshift/timeshift.json", std::string(2 << 20, '['));
        QCOMPARE(machine.find(), Backups());
    }

    void timersThatAreSwitchedOnCount_data()
    {
        QTest::addColumn<QString>("units");
        QTest::addColumn<QString>("wanted");
        QTest::addColumn<QString>("service");
        QTest::addColumn<bool>("has");
        const auto user = u"home/.config/systemd/user"_s;
        QTest::newRow("the user's") << user << u"nightly.timer"_s << u"nightly.service"_s << true;
        QTest::newRow("an instance") << user << u"restic@home.timer"_s << u"restic@.service"_s << true;
        QTest::newRow("all users'") << u"etc/systemd/user"_s << u"a.timer"_s << u"a.service"_s << true;
        QTest::newRow("the machine's") << u"etc/systemd/system"_s << u"a.timer"_s << u"a.service"_s << true;
        QTest::newRow("of another service") << user << u"a.timer"_s << u"b.service"_s << false;
        QTest::newRow("no timer") << user << u"a.socket"_s << u"a.service"_s << false;
    }
    void timersThatAreSwitchedOnCount()
    {
        QFETCH(QString, units);
        QFETCH(QString, wanted);
        QFETCH(QString, service);
        QFETCH(bool, has);
        Machine machine;
        const auto folder = units.toStdString();
        machine.tree.fileWith(
            folder + '/' + service.toStdString(), "[Service]\nExecStart=/usr/bin/restic backup\n");
        QCOMPARE(machine.find(), Backups());
        machine.tree.link(
            folder + "/timers.target.wants/" + wanted.toStdString(), "../" + wanted.toStdString());
        QCOMPARE(machine.find().hasDestination, has);
    }

    void desktopSettingsAreAskedFor_data()
    {
        QTest::addColumn<QByteArray>("output");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<bool>("has");
        QTest::newRow("has run") << QByteArray("'2024-05-01T08:30:00Z'\n") << 0 << true;
        QTest::newRow("never ran") << QByteArray("''\n") << 0 << false;
        QTest::newRow("fails") << QByteArray("'2024'\n") << 1 << false;
    }
    void desktopSettingsAreAskedFor()
    {
        QFETCH(QByteArray, output);
        QFETCH(int, exitCode);
        Machine machine;
        machine.files.hasTools = true;
        machine.processes.answer = [=](const ProcessRunner::Command &command) {
            return ProcessRunner::Result{ .output
                = command.program.endsWith(u"gsettings"_s) ? output : QByteArray(),
                .exited = true,
                .exitCode = exitCode };
        };
        QTEST(machine.find().hasDestination, "has");
        const auto &command = machine.processes.commands.at(0);
        QCOMPARE(command.program, u"/usr/bin/gsettings"_s);
        QCOMPARE(command.arguments, QStringList({ u"get"_s, u"org.gnome.DejaDup"_s, u"last-backup"_s }));
        QVERIFY(command.timeLimit <= machine.timeLimit);
    }

    void snapshotsOfZfsAreCounted()
    {
        Machine machine;
        machine.files.hasTools = true;
        machine.processes.answer = [](const ProcessRunner::Command &command) {
            return ProcessRunner::Result{ .output
                = command.program.endsWith(u"zfs"_s) ? "pool/home@a\npool/home@b\n" : "",
                .exited = true,
                .exitCode = 0 };
        };
        QCOMPARE(machine.find(), Backups{ .localSnapshots = 2 });
        const auto &command = machine.processes.commands.constLast();
        QCOMPARE(command.program, u"/usr/sbin/zfs"_s);
        QCOMPARE(command.arguments.constLast(), QDir(machine.tree.text("home")).canonicalPath());
    }

    void snapshotsOfTheDiskByTimeshiftAreCounted()
    {
        Machine machine;
        machine.tree.fileWith("etc/timeshift/timeshift.json",
            "{\"backup_device_uuid\":\"a\",\"btrfs_mode\":\"true\",\"include_btrfs_home\":\"true\","
            "\"snapshot_count\":\"4\"}");
        QCOMPARE(machine.find(), Backups{ .localSnapshots = 4 });
    }

    void withoutTimeNobodyIsAsked()
    {
        Machine machine;
        machine.files.hasTools = true;
        machine.timeLimit = {};
        QCOMPARE(machine.find(), Backups());
        QVERIFY(machine.processes.commands.empty());
    }

    void snapshotsOfSnapperAreCountedForTheSubvolumeOfHome()
    {
        Machine machine;
        PrivateBus bus;
        const auto connection = bus.connection();
        if (!connection.isConnected())
            QSKIP("there is no dbus-daemon");
        machine.bus = bus.address();
        FakeSnapper snapper;
        const auto subvolume = QString::fromStdString(BtrfsSnapshots::subvolumeOf(machine.tree.path("home")));
        snapper.configurations = { { u"other"_s, u"/somewhere/else"_s, {} },
            { u"home"_s, subvolume, { { u"TIMELINE_CREATE"_s, u"yes"_s } } },
            { u"secret"_s, subvolume, {} } };
        snapper.snapshots = { { u"other"_s, { { 0 }, { 1 } } }, { u"home"_s, { { 0 }, { 3 }, { 17 } } } };
        QVERIFY(snapper.answerOn(connection));
        QCOMPARE(findFrom(machine), Backups{ .localSnapshots = 2 });
        QCOMPARE(snapper.calls, 3);
    }

    void serviceThatDoesNotAnswerIsNotWaitedForLong()
    {
        Machine machine;
        PrivateBus bus;
        const auto connection = bus.connection();
        if (!connection.isConnected())
            QSKIP("there is no dbus-daemon");
        machine.bus = bus.address();
        machine.timeLimit = std::chrono::milliseconds(300);
        FakeSnapper snapper;
        snapper.isSilent = true;
        QVERIFY(snapper.answerOn(connection));
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(findFrom(machine), Backups());
        QVERIFY(timer.elapsed() < 5000);
        QCOMPARE(snapper.calls, 1);
    }
};

QUILLBROOK_SUITE(TestLinuxBackupProbe, QCoreApplication)
#include "tst_LinuxBackupProbe.moc"

#include "Platform/Linux/Backups/BackupSettings.h"
#include "Support/Suite.h"

#include <QTest>

#include <sqlite3.h>

using namespace Quillbrook;

namespace {

// A database file in which the statements have run.
QByteArray databaseAfter(const char *statements)
{
    sqlite3 *database = nullptr;
    sqlite3_open(":memory:", &database);
    sqlite3_exec(database, statements, nullptr, nullptr, nullptr);
    sqlite3_int64 size = 0;
    auto *bytes = sqlite3_serialize(database, "main", &size, 0);
    const QByteArray file(reinterpret_cast<const char *>(bytes), static_cast<qsizetype>(size));
    sqlite3_free(bytes);
    sqlite3_close(database);
    return file;
}

constexpr const char *repositories = "CREATE TABLE repomodel(id INTEGER PRIMARY KEY, url TEXT);";

} // namespace

class TestBackupSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textWithContent_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<bool>("has");
        QTest::newRow("a moment") << QByteArray("'2024-05-01T08:30:00Z'\n") << true;
        QTest::newRow("double quotes, for a text with a quote") << QByteArray("\"it's\"\n") << true;
        QTest::newRow("empty") << QByteArray("''\n") << false;
        QTest::newRow("nothing") << QByteArray() << false;
        QTest::newRow("a quote alone") << QByteArray("'") << false;
        QTest::newRow("an error") << QByteArray("No such schema \"org.gnome.DejaDup\"\n") << false;
    }
    void textWithContent()
    {
        QFETCH(QByteArray, value);
        QTEST(BackupSettings::isTextWithContent(value), "has");
    }

    void dejaDupInAFlatpak_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("has");
        const QByteArray group = "[org/gnome/deja-dup]\n";
        QTest::newRow("has run") << group + "periodic=true\nlast-backup='2024-05-01'\n" << true;
        QTest::newRow("blanks around") << " " + group + " last-backup = '2024-05-01' \r\n" << true;
        QTest::newRow("never ran") << group + "last-backup=''\n" << false;
        QTest::newRow("says nothing") << group + "periodic=true\n" << false;
        QTest::newRow("in another group") << group + "[org/gnome/deja-dup/local]\nlast-backup='2024-05-01'\n"
                                          << false;
        QTest::newRow("in no group") << QByteArray("last-backup='2024-05-01'\n") << false;
        QTest::newRow("empty") << QByteArray() << false;
    }
    void dejaDupInAFlatpak()
    {
        QFETCH(QByteArray, text);
        QTEST(BackupSettings::dejaDupHasRun(text), "has");
    }

    void pika_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<bool>("has");
        QTest::newRow("a list") << QByteArray("[{\"id\":\"a\",\"repo\":{}}]") << true;
        QTest::newRow("an object") << QByteArray("{\"a\":{\"repo\":{}}}") << true;
        QTest::newRow("an empty list") << QByteArray("[]") << false;
        QTest::newRow("an empty object") << QByteArray("{}") << false;
        QTest::newRow("null") << QByteArray("null") << false;
        QTest::newRow("a number") << QByteArray("1") << false;
        QTest::newRow("cut off") << QByteArray("[{") << false;
        QTest::newRow("nothing") << QByteArray() << false;
    }
    void pika()
    {
        QFETCH(QByteArray, json);
        QTEST(BackupSettings::pikaHasBackups(json), "has");
    }

    void vorta_data()
    {
        QTest::addColumn<QByteArray>("database");
        QTest::addColumn<bool>("has");
        const QByteArray empty = databaseAfter(repositories);
        const auto filled
            = databaseAfter((QByteArray(repositories) + "INSERT INTO repomodel VALUES(1,'ssh://x');"));
        auto logged = filled;
        logged[18] = 2;
        logged[19] = 2;
        QTest::newRow("a repository") << filled << true;
        QTest::newRow("a database that keeps a log") << logged << true;
        QTest::newRow("no repository") << empty << false;
        QTest::newRow("no such table") << databaseAfter("CREATE TABLE x(y);") << false;
        QTest::newRow("a table without end")
            << databaseAfter("CREATE VIEW repomodel AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL "
                             "SELECT i+1 FROM n) SELECT i FROM n WHERE i<0;")
            << false;
        QTest::newRow("cut off") << filled.first(filled.size() / 2) << false;
        QTest::newRow("a header alone") << filled.first(100) << false;
        QTest::newRow("less than a header") << filled.first(99) << false;
        QTest::newRow("no database") << QByteArray(8192, 'x') << false;
        QTest::newRow("nothing") << QByteArray() << false;
    }
    void vorta()
    {
        QFETCH(QByteArray, database);
        QTEST(BackupSettings::vortaHasRepositories(database), "has");
    }

    void backInTime_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("has");
        QTest::newRow("a place") << QByteArray(
            "config.version=6\nprofile1.snapshots.path=/media/disk\nprofile1.name=a\n")
                                 << true;
        QTest::newRow("of another profile") << QByteArray("profile12.snapshots.path = /x") << true;
        QTest::newRow("another machine") << QByteArray("profile1.snapshots.ssh.host=nas\n") << true;
        QTest::newRow("an empty place") << QByteArray("profile1.snapshots.path=\n") << false;
        QTest::newRow("a longer key")
            << QByteArray("profile1.snapshots.path.host=x\nprofile1.snapshots.path.user=y\n") << false;
        QTest::newRow("no profile") << QByteArray("snapshots.path=/x\n=\n") << false;
        QTest::newRow("nothing") << QByteArray() << false;
    }
    void backInTime()
    {
        QFETCH(QByteArray, text);
        QTEST(BackupSettings::backInTimeHasPlace(text), "has");
    }

    void timeshift_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<bool>("copiesHome");
        QTest::addColumn<int>("snapshots");
        const QByteArray device = "\"backup_device_uuid\":\"a1b2\"";
        const auto btrfs = device + ",\"btrfs_mode\":\"true\",\"snapshot_count\":\"4\"";
        QTest::newRow("takes this home in")
            << "{" + device + ",\"btrfs_mode\":\"false\",\"exclude\":[\"/root/**\",\"+ /home/me/**\"]}"
            << true << 0;
        QTest::newRow("as it comes, without any home")
            << "{" + device + ",\"btrfs_mode\":\"false\",\"exclude\":[\"/home/me/**\",\"/root/**\"]}" << false
            << 0;
        QTest::newRow("hidden files alone")
            << "{" + device + ",\"btrfs_mode\":\"false\",\"exclude\":[\"+ /home/me/.**\"]}" << false << 0;
        QTest::newRow("takes another home in")
            << "{" + device + ",\"exclude\":[\"+ /home/me2/**\",\"+ /home/**\"]}" << false << 0;
        QTest::newRow("not set up") << QByteArray(
            "{\"backup_device_uuid\":\"\",\"exclude\":[\"+ /home/me/**\"]}")
                                    << false << 0;
        QTest::newRow("snapshots of the disk with home")
            << "{" + btrfs + ",\"include_btrfs_home_for_backup\":\"true\"}" << false << 4;
        QTest::newRow("the same by its old name")
            << "{" + btrfs + ",\"include_btrfs_home\":\"true\"}" << false << 4;
        QTest::newRow("snapshots of the disk without home")
            << "{" + btrfs + ",\"include_btrfs_home\":\"false\",\"exclude\":[\"+ /home/me/**\"]}" << false
            << 0;
        QTest::newRow("a count that is none") << "{" + device
                + ",\"btrfs_mode\":\"true\",\"include_btrfs_home\":\"true\",\"snapshot_count\":\"-3\"}"
                                              << false << 0;
        QTest::newRow("other types") << QByteArray(
            "{\"backup_device_uuid\":7,\"btrfs_mode\":true,\"exclude\":{\"a\":1}}")
                                     << false << 0;
        QTest::newRow("odd rules") << "{" + device + ",\"exclude\":[7,null,[\"+ /home/me/**\"]]}" << false
                                   << 0;
        QTest::newRow("a list") << QByteArray("[1]") << false << 0;
        QTest::newRow("nothing") << QByteArray() << false << 0;
    }
    void timeshift()
    {
        QFETCH(QByteArray, json);
        const auto found = BackupSettings::timeshift(json, "/home/me");
        QTEST(found.copiesHome, "copiesHome");
        QTEST(found.homeSnapshots, "snapshots");
    }

    void services_data()
    {
        QTest::addColumn<QByteArray>("unit");
        QTest::addColumn<bool>("starts");
        const auto start = [](const QByteArray &command) { return "[Service]\nExecStart=" + command + "\n"; };
        QTest::newRow("by its path") << start("/usr/bin/restic backup /home/me") << true;
        QTest::newRow("by its name") << start("borg create ::now") << true;
        QTest::newRow("with a sign before") << start("-/usr/bin/duplicity /home/me file:///mnt") << true;
        QTest::newRow("in a script") << start("/bin/sh -c 'cd ~ && rsync -a . nas:me; exit 0'") << true;
        QTest::newRow("the second command") << start("/bin/true") + "ExecStart = kopia snapshot\n" << true;
        QTest::newRow("all homes") << start("/usr/bin/nice rsync -a /home/ nas:homes") << true;
        QTest::newRow("the whole disk") << start("restic backup --exclude=/proc /") << true;
        QTest::newRow("a copy of something else") << start("/usr/bin/rsync -a /srv/www/ mirror:www") << false;
        QTest::newRow("a copy of nothing that is told") << start("rsync -a . nas:me") << false;
        QTest::newRow("something else") << start("/usr/bin/restic backup /srv") << false;
        QTest::newRow("another's home") << start("/usr/bin/restic backup /home/meg") << false;
        QTest::newRow("a script of its own") << start("/home/me/bin/backup.sh") << false;
        QTest::newRow("a longer name") << start("/usr/bin/restic-exporter") << false;
        QTest::newRow("a folder of that name") << start("/opt/borg/bin/x") << false;
        QTest::newRow("in another line") << QByteArray("[Service]\nDescription=restic\n") << false;
        QTest::newRow("switched off") << QByteArray("[Service]\n#ExecStart=/usr/bin/restic\n") << false;
        QTest::newRow("nothing") << QByteArray() << false;
    }
    void services()
    {
        QFETCH(QByteArray, unit);
        QTEST(BackupSettings::startsBackup(unit, "/home/me"), "starts");
    }

    void serviceOfATimer_data()
    {
        QTest::addColumn<QByteArray>("timer");
        QTest::addColumn<QByteArray>("service");
        QTest::newRow("plain") << QByteArray("backup.timer") << QByteArray("backup.service");
        QTest::newRow("an instance") << QByteArray("restic@home.timer") << QByteArray("restic@.service");
        QTest::newRow("no timer") << QByteArray("backup.socket") << QByteArray();
        QTest::newRow("no name") << QByteArray(".timer") << QByteArray();
        QTest::newRow("nothing") << QByteArray() << QByteArray();
    }
    void serviceOfATimer()
    {
        QFETCH(QByteArray, timer);
        QFETCH(QByteArray, service);
        QCOMPARE(BackupSettings::serviceOf(timer.toStdString()), service.toStdString());
    }
};

QUILLBROOK_SUITE(TestBackupSettings, QCoreApplication)
#include "tst_BackupSettings.moc"

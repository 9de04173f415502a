#include "Core/FolderAccess.h"
#include "Support/FakeServices.h"
#include "Support/Suite.h"

#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using Paths = std::vector<std::string>;

namespace {

const auto key = u"Quillbrook.homeBookmark"_s;

struct Sandbox : FakeServices
{
    Sandbox() { home.home = u"/home/someone/.var/app/com.tarnwick.Quillbrook"_s; }

    void keep(const char *path) { defaults.values.insert(key, QByteArray(path)); }
    [[nodiscard]] QByteArray kept() const { return defaults.values.value(key).toByteArray(); }

    FakeFolderGrants &grants = desktop.folderGrants;
    FakeFolderPicker &picker = desktop.folderPicker;
};

} // namespace

class TestFolderAccess : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void outsideASandboxNothingIsAsked()
    {
        FakeServices machine;
        machine.defaults.values.insert(key, QByteArray("/kept/from/elsewhere"));
        FolderAccess access(machine.services);
        QVERIFY(!access.isSandboxed());
        QVERIFY(!access.isGated());
        QVERIFY(!access.granted());
        QCOMPARE(access.scanRoot(), std::string("/home/someone"));
        QVERIFY(!access.beginAccess());
        QVERIFY(!access.grantedIsWrongVolume());
        QCOMPARE(access.grantedName(), u"not chosen"_s);

        const auto &grants = machine.desktop.folderGrants;
        QVERIFY(grants.bookmarked.empty() && grants.started.empty() && grants.stopped.empty());
        QVERIFY(machine.desktop.folderPicker.requests.isEmpty());
        QCOMPARE(machine.defaults.values.value(key).toByteArray(), QByteArray("/kept/from/elsewhere"));
    }

    void gateStandsInASandboxWithoutAGrant()
    {
        Sandbox machine;
        FolderAccess access(machine.services);
        QVERIFY(access.isSandboxed());
        QVERIFY(access.isGated());
        QCOMPARE(access.scanRoot(), std::string());
        QCOMPARE(access.grantedName(), u"not chosen"_s);
        QVERIFY(!access.grantedIsWrongVolume());
        QVERIFY(!access.beginAccess());
        QVERIFY(machine.picker.requests.isEmpty());
        QVERIFY(!machine.defaults.values.contains(key));
    }

    void keptGrantIsTakenUp()
    {
        Sandbox machine;
        machine.keep("/home/someone");
        FolderAccess access(machine.services);
        QVERIFY(!access.isGated());
        QVERIFY(access.granted() == "/home/someone");
        QCOMPARE(access.scanRoot(), std::string("/home/someone"));
        QCOMPARE(access.grantedName(), u"/home/someone"_s);
        QVERIFY(machine.grants.started == Paths{ "/home/someone" });
        QVERIFY(machine.grants.bookmarked.empty());
    }

    void unresolvableGrantStaysStored()
    {
        Sandbox machine;
        machine.keep("/home/someone");
        machine.grants.canResolve = false;
        FolderAccess access(machine.services);
        QVERIFY(access.isGated());
        QVERIFY(machine.grants.started.empty());
        QCOMPARE(machine.kept(), QByteArray("/home/someone"));
    }

    void staleGrantIsWrittenAfresh()
    {
        Sandbox machine;
        machine.keep("/home/someone");
        machine.grants.isStale = true;
        FolderAccess access(machine.services);
        QVERIFY(access.granted() == "/home/someone");
        QVERIFY(machine.grants.bookmarked == Paths{ "/home/someone" });
        QVERIFY(machine.grants.started == Paths{ "/home/someone" });
        QCOMPARE(machine.kept(), QByteArray("/home/someone"));
    }

    void staleGrantThatCannotBeWrittenHoldsForThisRun()
    {
        Sandbox machine;
        machine.keep("/home/someone");
        machine.grants.isStale = true;
        machine.grants.canBookmark = false;
        QTest::ignoreMessage(QtWarningMsg, "Quillbrook: could not bookmark no room for it");
        FolderAccess access(machine.services);
        QVERIFY(!access.isGated());
        QCOMPARE(machine.kept(), QByteArray("/home/someone"));
    }

    void requestAsksForTheHomeFolder_data()
    {
        QTest::addColumn<QString>("home");
        QTest::addColumn<QString>("directory");
        QTest::addColumn<QString>("name");
        QTest::newRow("usual") << "/home/someone"
                               << "/home"
                               << "someone";
        QTest::newRow("below the root") << "/root"
                                        << "/"
                                        << "root";
        QTest::newRow("the root itself") << "/"
                                         << "/"
                                         << "/";
        QTest::newRow("a name like a placeholder") << "/home/%1"
                                                   << "/home"
                                                   << "%1";
    }

    void requestAsksForTheHomeFolder()
    {
        QFETCH(QString, home);
        QFETCH(QString, name);
        Sandbox machine;
        machine.home.realHome = home;
        FolderAccess access(machine.services);
        access.request();
        QCOMPARE(machine.picker.requests.size(), 1);
        const auto &request = machine.picker.requests.constFirst();
        QTEST(request.directory, "directory");
        QCOMPARE(request.message,
            u"Select the folder named “"_s + name
                + u"” — that is your home folder, on this Mac's startup disk."_s);
        QCOMPARE(request.prompt, u"Allow"_s);
    }

    void pickedFolderIsKeptAndOpened_data()
    {
        QTest::addColumn<QByteArray>("folder");
        QTest::newRow("text") << QByteArray("/home/someone");
        QTest::newRow("not UTF-8") << QByteArray("/home/caf\xE9");
    }

    void pickedFolderIsKeptAndOpened()
    {
        QFETCH(QByteArray, folder);
        const auto path = folder.toStdString();
        Sandbox machine;
        FolderAccess access(machine.services);
        machine.picker.answer = path;
        access.request();
        QVERIFY(!access.isGated());
        QCOMPARE(access.granted(), path);
        QCOMPARE(machine.kept(), folder);
        QVERIFY(machine.grants.started == Paths{ path });

        FolderAccess next(machine.services);
        QCOMPARE(next.scanRoot(), path);
    }

    void cancellingChangesNothing_data()
    {
        QTest::addColumn<bool>("hadGrant");
        QTest::newRow("without a grant") << false;
        QTest::newRow("with a grant") << true;
    }

    void cancellingChangesNothing()
    {
        QFETCH(bool, hadGrant);
        Sandbox machine;
        if (hadGrant)
            machine.keep("/home/someone");
        const auto before = machine.defaults.values;
        FolderAccess access(machine.services);
        QSignalSpy changes(&access, &FolderAccess::grantedChanged);
        access.request();
        QCOMPARE(machine.picker.requests.size(), 1);
        QCOMPARE(access.granted().has_value(), hadGrant);
        QCOMPARE(changes.count(), 0);
        QCOMPARE(machine.defaults.values, before);
        QVERIFY(machine.grants.stopped.empty());
    }

    void folderThatCannotBeKeptHoldsForThisRun()
    {
        Sandbox machine;
        FolderAccess access(machine.services);
        machine.picker.answer = "/home/someone";
        machine.grants.canBookmark = false;
        QTest::ignoreMessage(QtWarningMsg, "Quillbrook: could not bookmark no room for it");
        access.request();
        QVERIFY(!access.isGated());
        QVERIFY(machine.grants.started == Paths{ "/home/someone" });
        QVERIFY(!machine.defaults.values.contains(key));

        FolderAccess next(machine.services);
        QVERIFY(next.isGated());
    }

    void refusedFolderIsGrantedAllTheSame()
    {
        Sandbox machine;
        FolderAccess access(machine.services);
        machine.picker.answer = "/home/someone";
        machine.grants.grants = false;
        access.request();
        QVERIFY(!access.isGated());
        QCOMPARE(access.scanRoot(), std::string("/home/someone"));
        QVERIFY(!access.beginAccess());
        QCOMPARE(machine.grants.started.size(), 2U);

        machine.grants.grants = true;
        QVERIFY(access.beginAccess());
    }

    void openAccessIsNotOpenedAgain()
    {
        Sandbox machine;
        machine.keep("/home/someone");
        FolderAccess access(machine.services);
        QVERIFY(access.beginAccess());
        QVERIFY(access.beginAccess());
        QVERIFY(machine.grants.started == Paths{ "/home/someone" });
        QVERIFY(machine.grants.stopped.empty());
    }

    void accessMovesFromOneFolderToTheNext()
    {
        Sandbox machine;
        machine.keep("/home/someone");
        FolderAccess access(machine.services);
        machine.picker.answer = "/home/another";
        access.request();
        QVERIFY((machine.grants.started == Paths{ "/home/someone", "/home/another" }));
        QVERIFY(machine.grants.stopped == Paths{ "/home/someone" });
        QCOMPARE(machine.kept(), QByteArray("/home/another"));
    }

    void refusalAfterAnotherFolderLeavesNothingOpen()
    {
        Sandbox machine;
        machine.keep("/home/someone");
        FolderAccess access(machine.services);
        machine.picker.answer = "/home/another";
        machine.grants.grants = false;
        access.request();
        QVERIFY(machine.grants.stopped == Paths{ "/home/someone" });
        access.revoke();
        QVERIFY(machine.grants.stopped == Paths{ "/home/someone" });
    }

    void revokingForgetsAll()
    {
        Sandbox machine;
        machine.keep("/home/someone");
        FolderAccess access(machine.services);
        access.revoke();
        QVERIFY(access.isGated());
        QCOMPARE(access.scanRoot(), std::string());
        QVERIFY(!machine.defaults.values.contains(key));
        QVERIFY(machine.grants.stopped == Paths{ "/home/someone" });
        QVERIFY(!access.beginAccess());
    }

    void revokingClosesOnlyWhatIsOpen()
    {
        Sandbox machine;
        machine.keep("/home/someone");
        machine.grants.grants = false;
        FolderAccess access(machine.services);
        access.revoke();
        QVERIFY(access.isGated());
        QVERIFY(machine.grants.stopped.empty());
    }

    void folderOnAnotherVolumeIsAcceptedAndWarnedOf()
    {
        Sandbox machine;
        FolderAccess access(machine.services);
        machine.picker.answer = "/Volumes/Backup/someone";
        access.request();
        QVERIFY(!access.isGated());
        QCOMPARE(access.scanRoot(), std::string("/Volumes/Backup/someone"));
        QVERIFY(access.grantedIsWrongVolume());
        QCOMPARE(machine.kept(), QByteArray("/Volumes/Backup/someone"));
    }

    void wrongVolumeIsToldByThePathAlone_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<bool>("isWrong");
        QTest::newRow("users") << QByteArray("/Users/someone") << false;
        QTest::newRow("users of the data volume")
            << QByteArray("/System/Volumes/Data/Users/someone") << false;
        QTest::newRow("the folder of all users") << QByteArray("/Users") << true;
        QTest::newRow("a like name") << QByteArray("/Users2/someone") << true;
        QTest::newRow("other letters") << QByteArray("/users/someone") << true;
        QTest::newRow("further down") << QByteArray("/Volumes/Backup/Users/someone") << true;
        QTest::newRow("data volume") << QByteArray("/System/Volumes/Data/someone") << true;
        QTest::newRow("not UTF-8") << QByteArray("/Users/some\xff") << false;
    }

    void wrongVolumeIsToldByThePathAlone()
    {
        QFETCH(QByteArray, path);
        Sandbox machine;
        machine.keep(path.constData());
        FolderAccess access(machine.services);
        QCOMPARE(access.scanRoot(), path.toStdString());
        QTEST(access.grantedIsWrongVolume(), "isWrong");
    }

    void desktopAddsItsOwnPlaces()
    {
        Sandbox machine;
        machine.grants.startupDiskPrefix = "/var/home/";
        machine.picker.answer = "/var/home/someone";
        FolderAccess access(machine.services);
        access.request();
        QVERIFY(!access.grantedIsWrongVolume());
        for (const auto *path : { "/Users/someone", "/System/Volumes/Data/Users/someone" }) {
            machine.picker.answer = path;
            access.request();
            QVERIFY(!access.grantedIsWrongVolume());
        }
        machine.picker.answer = "/media/backup";
        access.request();
        QVERIFY(access.grantedIsWrongVolume());
    }

    void changesAreToldOnce()
    {
        Sandbox machine;
        FolderAccess access(machine.services);
        QSignalSpy changes(&access, &FolderAccess::grantedChanged);
        machine.picker.answer = "/home/someone";
        access.request();
        QCOMPARE(changes.count(), 1);
        access.request();
        QCOMPARE(changes.count(), 1);
        access.revoke();
        QCOMPARE(changes.count(), 2);
        access.revoke();
        QCOMPARE(changes.count(), 2);
    }
};

QUILLBROOK_SUITE(TestFolderAccess, QCoreApplication)
#include "tst_FolderAccess.moc"

#include "Screens/Window/GrantedFolderState.h"
#include "Support/FakeServices.h"
#include "Support/FolderHold.h"
#include "Support/Suite.h"
#include "Support/WindowContent.h"

#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

const auto key = u"Quillbrook.homeBookmark"_s;

/// The row with all it is made from, in a sandbox that was handed a folder before.
struct Row
{
    explicit Row(FakeServices &machine, const char *kept = "/home/someone")
        : model(inSandbox(machine, kept).services)
        , folder(access, content)
    {
    }

    static FakeServices &inSandbox(FakeServices &machine, const char *kept)
    {
        machine.home.home = u"/home/someone/.var/app/com.tarnwick.Quillbrook"_s;
        machine.defaults.values.insert(key, QByteArray(kept));
        return machine;
    }

    AppModel model;
    WindowContent window{ model };
    FolderAccess &access = window.access;
    ContentState &content = window.content;
    GrantedFolderState folder;
};

} // namespace

class TestGrantedFolderState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void standsOnlyInASandbox()
    {
        FakeServices machine;
        Row row(machine);
        QVERIFY(row.folder.isShown());

        machine.home.home = machine.home.realHome;
        QVERIFY(!row.folder.isShown());
    }

    void tellsTheFolder()
    {
        FakeServices machine;
        machine.desktop.folderGrants.startupDiskPrefix = "/home/";
        Row row(machine);
        QCOMPARE(row.folder.name(), u"/home/someone"_s);
        QVERIFY(!row.folder.isWrongVolume());

        QSignalSpy changes(&row.folder, &GrantedFolderState::changed);
        row.access.revoke();
        QCOMPARE(changes.count(), 1);
        QCOMPARE(row.folder.name(), u"not chosen"_s);
        QVERIFY(!row.folder.isWrongVolume());
    }

    void warnsOfTheWrongVolume()
    {
        FakeServices machine;
        Row row(machine, "/Volumes/Backup/someone");
        QVERIFY(row.folder.isWrongVolume());
        QCOMPARE(row.folder.name(), u"/Volumes/Backup/someone"_s);
    }

    void nameStaysOnOneLine()
    {
        FakeServices machine;
        Row row(machine, "/home/some\none");
        QCOMPARE(row.folder.name(), u"/home/some one"_s);
    }

    void changingForgetsAsksAndMeasures()
    {
        FakeServices machine;
        Row row(machine);
        machine.desktop.folderPicker.answer = "/home/another";
        QStringList steps;
        connect(&row.access, &FolderAccess::grantedChanged, this, [&] {
            steps.append(row.access.granted() ? u"granted"_s : u"revoked"_s);
            steps.append(QString::number(machine.desktop.folderPicker.requests.size()));
        });
        connect(&row.model.scans(), &ScanDriver::scanRootChanged, this,
            [&] { steps.append(row.model.scans().scanRoot()); });
        row.folder.change();
        QTRY_COMPARE(steps, QStringList({ u"revoked"_s, u"0"_s, u"granted"_s, u"1"_s, u"/home/another"_s }));
        QVERIFY(row.model.scans().phase().kind == Phase::Kind::scanning);
        QCOMPARE(machine.defaults.values.value(key).toByteArray(), QByteArray("/home/another"));
        QTRY_VERIFY(row.model.scans().phase().kind == Phase::Kind::ready);
        QCOMPARE(machine.directories.sessionsMade(), 1);
    }

    void changingReturnsBeforeAnyoneIsAsked()
    {
        FakeServices machine;
        Row row(machine);
        row.folder.change();
        QVERIFY(machine.desktop.folderPicker.requests.isEmpty());
        QVERIFY(row.access.granted());
        QTRY_COMPARE(machine.desktop.folderPicker.requests.size(), 1);
    }

    void cancellingTheChangeBringsTheGate()
    {
        FakeServices machine;
        Row row(machine);
        row.folder.change();
        QTRY_VERIFY(row.access.isGated());
        QTRY_COMPARE(machine.desktop.folderPicker.requests.size(), 1);
        QVERIFY(row.content.isGated());
        QVERIFY(row.model.scans().phase().kind == Phase::Kind::idle);
        QCOMPARE(machine.directories.sessionsMade(), 0);
        QVERIFY(!machine.defaults.values.contains(key));
    }

    void changingDuringAScanGivesThatScanUp()
    {
        FakeServices machine;
        machine.directories.folder("/home/someone", {});
        machine.directories.folder("/home/another", { FakeDirectories::aFile("a", 4096) });
        FolderHold hold(machine.directories, "/home/someone");
        Row row(machine);
        row.model.scans().setScanRoot("/home/someone");
        row.model.scans().scan({ .scope = Scope::complete });
        QTRY_VERIFY(hold.isHolding());

        machine.desktop.folderPicker.answer = "/home/another";
        row.folder.change();
        QTRY_COMPARE(row.model.scans().scanRoot(), u"/home/another"_s);
        hold.release();
        QTRY_VERIFY(row.model.scans().phase().kind == Phase::Kind::ready);
        QCOMPARE(row.model.scans().tree()->snapshot(row.model.scans().rootNode())->path, u"/home/another"_s);
        QVERIFY(row.model.scans().scope() == Scope::complete);
    }
};

QUILLBROOK_SUITE(TestGrantedFolderState, QCoreApplication)
#include "tst_GrantedFolderState.moc"

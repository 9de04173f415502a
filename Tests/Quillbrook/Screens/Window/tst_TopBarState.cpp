#include "Core/AppModel.h"
#include "Screens/Window/TopBarState.h"
#include "Support/FakeServices.h"
#include "Support/FolderHold.h"
#include "Support/Suite.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QTest>
#include <QThreadPool>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestTopBarState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void summaryNamesCountAndSeconds_data()
    {
        QTest::addColumn<qsizetype>("count");
        QTest::addColumn<double>("seconds");
        QTest::addColumn<QString>("expected");
        QTest::newRow("before a scan") << qsizetype(0) << 0.0 << "";
        QTest::newRow("usual") << qsizetype(1042083) << 1.1 << "scanned 1,042,083 files in 1.1s";
        QTest::newRow("hardly any time") << qsizetype(3) << 0.0004 << "scanned 3 files in 0.0s";
        QTest::newRow("rounded to one decimal") << qsizetype(12) << 12.36 << "scanned 12 files in 12.4s";
        QTest::newRow("just between two figures") << qsizetype(4) << 0.25 << "scanned 4 files in 0.2s";
        QTest::newRow("minutes stay seconds") << qsizetype(5) << 125.0 << "scanned 5 files in 125.0s";
    }

    void summaryNamesCountAndSeconds()
    {
        QFETCH(qsizetype, count);
        QFETCH(double, seconds);
        QFETCH(QString, expected);
        QCOMPARE(TopBarState::summaryOf(count, seconds), expected);
    }

    void shortfallNamesWhatIsNotMeasured_data()
    {
        QTest::addColumn<qsizetype>("files");
        QTest::addColumn<qsizetype>("folders");
        QTest::addColumn<QString>("expected");
        QTest::newRow("none") << qsizetype(0) << qsizetype(0) << "";
        QTest::newRow("a file") << qsizetype(1) << qsizetype(0) << "1 file could not be measured";
        QTest::newRow("a folder") << qsizetype(0) << qsizetype(1) << "1 folder could not be opened";
        QTest::newRow("many") << qsizetype(1234) << qsizetype(5678)
                              << "5,678 folders could not be opened · 1,234 files could not be measured";
    }

    void shortfallNamesWhatIsNotMeasured()
    {
        QFETCH(qsizetype, files);
        QFETCH(qsizetype, folders);
        QTEST(TopBarState::shortfallOf({ .files = files, .folders = folders }), "expected");
    }

    void buttonStopsAScanAndStartsOne()
    {
        FakeServices machine;
        machine.directories.folder("/home/someone", {});
        FolderHold hold(machine.directories, "/home/someone");
        AppModel model(machine.services);
        TopBarState bar(model);
        QSignalSpy changes(&bar, &TopBarState::actionTextChanged);
        QCOMPARE(bar.actionText(), u"Rescan"_s);

        bar.act();
        QVERIFY(model.scans().phase().kind == Phase::Kind::scanning);
        QCOMPARE(bar.actionText(), u"Stop"_s);
        QTRY_VERIFY(hold.isHolding());

        bar.act();
        QVERIFY(model.scans().phase().kind == Phase::Kind::idle);
        QCOMPARE(bar.actionText(), u"Rescan"_s);
        QCOMPARE(changes.count(), 2);
        hold.release();
    }

    void rescanKeepsTheScope()
    {
        FakeServices machine;
        AppModel model(machine.services);
        TopBarState bar(model);
        model.scans().scan({ .scope = Scope::complete });
        QTRY_VERIFY(model.scans().phase().kind == Phase::Kind::ready);
        bar.act();
        QVERIFY(model.scans().scope() == Scope::complete);
        QTRY_VERIFY(model.scans().phase().kind == Phase::Kind::ready);
        QCOMPARE(machine.directories.sessionsMade(), 2);
    }

    void aRemovalKeepsScansWaitingAndACopyDoesNot()
    {
        FakeServices machine;
        AppModel model(machine.services);
        TopBarState bar(model);
        QThreadPool copies;
        QSemaphore removal;
        QSemaphore copy;
        model.removals().enqueue({ .work = [&](const auto & /*watch*/) { removal.acquire(); } });
        model.removals().enqueue(
            { .copying = &copies, .work = [&](const auto & /*watch*/) { copy.acquire(); } });
        QVERIFY(!bar.canAct());
        bar.act();
        QVERIFY(model.scans().phase().kind != Phase::Kind::scanning);
        removal.release();
        QTRY_VERIFY(model.scans().phase().kind == Phase::Kind::ready);
        QVERIFY(model.removals().isCopying());
        QVERIFY(bar.canAct());
        copy.release();
        QTRY_VERIFY(!model.removals().isBusy());
    }

    void summaryFollowsTheScan()
    {
        FakeServices machine;
        machine.directories.folder(
            "/home/someone", { FakeDirectories::aFile("a", 1), FakeDirectories::aFile("b", 1) });
        AppModel model(machine.services);
        TopBarState bar(model);
        QSignalSpy changes(&bar, &TopBarState::summaryChanged);
        QCOMPARE(bar.summary(), QString());
        QCOMPARE(bar.shortfall(), QString());
        bar.act();
        QTRY_VERIFY(model.scans().phase().kind == Phase::Kind::ready);
        QVERIFY(changes.count() > 0);
        QCOMPARE(bar.summary(), TopBarState::summaryOf(2, model.scans().lastScanDuration()));
        QVERIFY(bar.summary().startsWith(u"scanned 2 files in "_s));
        QCOMPARE(bar.shortfall(), QString());

        auto lost = FakeDirectories::aFile("b");
        lost.isMeasured = false;
        machine.directories.folder(
            "/home/someone", { FakeDirectories::aFile("a", 1), lost, FakeDirectories::aFolder("Library") });
        QSignalSpy shortfalls(&bar, &TopBarState::shortfallChanged);
        bar.act();
        QTRY_VERIFY(model.scans().phase().kind == Phase::Kind::ready);
        QVERIFY(shortfalls.count() > 0);
        QCOMPARE(bar.shortfall(), u"1 folder could not be opened · 1 file could not be measured"_s);
    }
};

QUILLBROOK_SUITE(TestTopBarState, QCoreApplication)
#include "tst_TopBarState.moc"

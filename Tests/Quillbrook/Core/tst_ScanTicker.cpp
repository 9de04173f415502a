// What a running scan tells once a second: how much it has seen, and how far it is.

#include "Support/FolderHold.h"
#include "Support/SmallHome.h"
#include "Support/Suite.h"

#include <QTest>
#include <QTimer>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

using Fixture = SmallHome;
using Kind = Phase::Kind;

const auto lastFileCountKey = u"Quillbrook.lastFileCount"_s;

// A home folder of `count` files whose scan is held before it opens the one folder in it. One of the
// catalogue's places is there, so that the quick stage takes the bar to where the tree stage begins.
struct HeldFixture : FakeServices
{
    explicit HeldFixture(size_t count)
    {
        files.entries["/home/someone/.gradle/daemon"] = {};
        directories.folder("/home/someone/.gradle/daemon", { FakeDirectories::aFile("log", 4096) });
        std::vector<DirectoryRecord> records(count, FakeDirectories::aFile("file", 4096));
        records.push_back(FakeDirectories::aFolder("project"));
        directories.folder("/home/someone", std::move(records));
        directories.folder("/home/someone/project", {});
    }

    // Starts a scan and meets it where it is held.
    void scanUntilHeld(AppModel &model)
    {
        model.scans().scan({ .scope = Scope::complete });
        QTRY_VERIFY(hold.isHolding());
    }

    FolderHold hold{ directories, "/home/someone/project" };
};

// One step of the ticker, without waiting for its second.
void tick(AppModel &model)
{
    auto *ticker = model.findChild<QTimer *>(u"ticker"_s);
    QVERIFY(ticker != nullptr);
    QMetaObject::invokeMethod(ticker, "timeout");
}

} // namespace

class TestScanTicker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tickerTellsTheCounts()
    {
        HeldFixture fixture(1234);
        AppModel model(fixture.services);
        fixture.scanUntilHeld(model);
        tick(model);
        QCOMPARE(model.scans().scanProgress().counts(), u"1,234 files · 4.8 MB"_s);
        QCOMPARE(model.scans().scanProgress().detail(), u"measuring the rest of the disk"_s);
        fixture.hold.release();
        QTRY_VERIFY(isAt(model, Kind::ready));
    }

    void tickerDoesNothingWithoutAScan()
    {
        Fixture fixture;
        AppModel model(fixture.services);
        tick(model);
        QCOMPARE(model.scans().scanProgress().counts(), QString());
        QCOMPARE(model.scans().scanProgress().fraction(), 0.0);
    }

    void tickerRunsOnlyDuringAScan()
    {
        Fixture fixture;
        AppModel model(fixture.services);
        const auto *ticker = model.findChild<QTimer *>(u"ticker"_s);
        QCOMPARE(ticker->interval(), 1000);
        model.scans().scan({});
        QVERIFY(ticker->isActive());
        QTRY_VERIFY(isAt(model, Kind::ready));
        QVERIFY(!ticker->isActive());
        model.scans().scan({});
        QVERIFY(ticker->isActive());
        model.scans().cancelScan();
        QVERIFY(!ticker->isActive());
    }

    void barStallsWhereTheQuickStageFoundLittle()
    {
        HeldFixture fixture(900);
        fixture.defaults.setInteger(lastFileCountKey, 1001);
        fixture.files.entries["/home/someone/.gradle/caches"] = {};
        AppModel model(fixture.services);
        fixture.scanUntilHeld(model);
        tick(model);
        QCOMPARE(model.scans().scanProgress().fraction(), 0.2);
        fixture.hold.release();
        QTRY_VERIFY(isAt(model, Kind::ready));
    }

    void barNeverMovesBackwards()
    {
        HeldFixture fixture(900);
        fixture.defaults.setInteger(lastFileCountKey, 1001);
        AppModel model(fixture.services);
        fixture.scanUntilHeld(model);
        tick(model);
        const auto reached = 900.0 / 1001 * 0.59 + 0.4;
        QCOMPARE(model.scans().scanProgress().fraction(), reached);
        fixture.defaults.setInteger(lastFileCountKey, 1'000'000);
        tick(model);
        QCOMPARE(model.scans().scanProgress().fraction(), reached);
        fixture.hold.release();
        QTRY_VERIFY(isAt(model, Kind::ready));
    }

    void damagedFileCountIsNone()
    {
        HeldFixture fixture(900);
        fixture.defaults.setTexts(lastFileCountKey, { u"many"_s });
        AppModel model(fixture.services);
        fixture.scanUntilHeld(model);
        tick(model);
        QVERIFY(model.scans().scanProgress().fraction() >= 0.4);
        QVERIFY(model.scans().scanProgress().fraction() < 0.7);
        fixture.hold.release();
        QTRY_VERIFY(isAt(model, Kind::ready));
    }
};

QUILLBROOK_SUITE(TestScanTicker, QCoreApplication)
#include "tst_ScanTicker.moc"

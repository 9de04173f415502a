#include "Core/AppModel.h"
#include "Support/FakeServices.h"

#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

constexpr VolumeCapacity someCapacity{ .available = 1024, .availableForImportantUsage = 2048, .total = 4096 };

} // namespace

class TestAppModelVolume : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refreshTakesOverTheFigures();
    void refreshAsksForTheHomeOfTheProcess();
    void figureThatIsNotToldCountsAsNone();
    void failedReadChangesNothing();
    void refreshTellsOnlyChanges();
    void menuBarShowsTheFreeSpace();
    void menuBarShowsNothingFreeWhenNothingIsKnown();
    void clockRefreshesEvery60Seconds();
    void startingTheClockAgainReplacesIt();
};

void TestAppModelVolume::refreshTakesOverTheFigures()
{
    FakeServices fake;
    AppModel model(fake.services);
    fake.volumes.answer = someCapacity;
    model.refreshVolume();
    QCOMPARE(model.liveFree(), qint64(1024));
    QCOMPARE(model.liveOptimistic(), qint64(2048));
    QCOMPARE(model.liveTotal(), qint64(4096));
    QCOMPARE(model.volumeFree(), qint64(1024));
    QCOMPARE(model.volumeTotal(), qint64(4096));
}

void TestAppModelVolume::refreshAsksForTheHomeOfTheProcess()
{
    FakeServices fake;
    fake.home.home = u"/home/someone/.var/app/sandbox"_s;
    AppModel model(fake.services);
    model.refreshVolume();
    QCOMPARE(fake.volumes.askedPaths, QStringList{ u"/home/someone/.var/app/sandbox"_s });
}

void TestAppModelVolume::figureThatIsNotToldCountsAsNone()
{
    FakeServices fake;
    AppModel model(fake.services);
    fake.volumes.answer = someCapacity;
    model.refreshVolume();
    fake.volumes.answer = VolumeCapacity{ .total = 4096 };
    model.refreshVolume();
    QCOMPARE(model.liveFree(), qint64(0));
    QCOMPARE(model.liveOptimistic(), qint64(0));
    QCOMPARE(model.liveTotal(), qint64(4096));
}

void TestAppModelVolume::failedReadChangesNothing()
{
    FakeServices fake;
    AppModel model(fake.services);
    fake.volumes.answer = someCapacity;
    model.refreshVolume();
    fake.volumes.answer.reset();
    model.refreshVolume();
    QCOMPARE(model.liveFree(), qint64(1024));
    QCOMPARE(model.liveTotal(), qint64(4096));
    QCOMPARE(model.menuBarTitle(), u"1.0 KB"_s);
}

void TestAppModelVolume::refreshTellsOnlyChanges()
{
    FakeServices fake;
    AppModel model(fake.services);
    const QSignalSpy volumes(&model, &AppModel::volumeChanged);
    const QSignalSpy titles(&model, &AppModel::menuBarTitleChanged);
    model.refreshVolume();
    QCOMPARE(volumes.count(), 0);
    fake.volumes.answer = someCapacity;
    model.refreshVolume();
    model.refreshVolume();
    QCOMPARE(volumes.count(), 1);
    QCOMPARE(titles.count(), 1);
    fake.volumes.answer->total = 8192;
    model.refreshVolume();
    QCOMPARE(volumes.count(), 2);
    QCOMPARE(titles.count(), 1);
}

void TestAppModelVolume::menuBarShowsTheFreeSpace()
{
    FakeServices fake;
    AppModel model(fake.services);
    QCOMPARE(model.menuBarTitle(), u"—"_s);
    fake.volumes.answer = VolumeCapacity{ .available = qint64(100) << 30, .total = qint64(500) << 30 };
    model.refreshVolume();
    QCOMPARE(model.menuBarTitle(), u"100 GB"_s);
}

void TestAppModelVolume::menuBarShowsNothingFreeWhenNothingIsKnown()
{
    FakeServices fake;
    AppModel model(fake.services);
    model.refreshMenuBarTitle();
    QCOMPARE(model.menuBarTitle(), u"0 B"_s);
}

void TestAppModelVolume::clockRefreshesEvery60Seconds()
{
    FakeServices fake;
    AppModel model(fake.services);
    auto *clock = model.findChild<QTimer *>(u"volumeClock"_s);
    QVERIFY(clock != nullptr);
    QVERIFY(!clock->isActive());
    model.startRuleClock();
    QVERIFY(clock->isActive());
    QVERIFY(!clock->isSingleShot());
    QCOMPARE(clock->interval(), 60'000);
    fake.volumes.answer = someCapacity;
    QMetaObject::invokeMethod(clock, "timeout");
    QCOMPARE(model.liveFree(), qint64(1024));
}

void TestAppModelVolume::startingTheClockAgainReplacesIt()
{
    FakeServices fake;
    AppModel model(fake.services);
    model.startRuleClock();
    const auto timers = model.findChildren<QTimer *>().size();
    model.startRuleClock();
    QCOMPARE(model.findChildren<QTimer *>().size(), timers);
    auto *clock = model.findChild<QTimer *>(u"volumeClock"_s);
    QVERIFY(clock->isActive());
    QMetaObject::invokeMethod(clock, "timeout");
    QCOMPARE(fake.volumes.askedPaths.size(), 1);
}

QTEST_GUILESS_MAIN(TestAppModelVolume)
#include "tst_AppModelVolume.moc"

#include "Support/ScannedHome.h"
#include "Support/Suite.h"

#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

constexpr VolumeCapacity someCapacity{ .available = 1024, .availableForImportantUsage = 2048, .total = 4096 };

} // namespace

class TestVolumeFigures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refreshTakesOverTheFigures()
    {
        FakeServices fake;
        AppModel model(fake.services);
        fake.volumes.answer = someCapacity;
        model.volume().refreshVolume();
        QCOMPARE(model.volume().liveFree(), qint64(1024));
        QCOMPARE(model.volume().liveOptimistic(), qint64(2048));
        QCOMPARE(model.volume().liveTotal(), qint64(4096));
        QCOMPARE(model.volume().volumeFree(), qint64(1024));
        QCOMPARE(model.volume().volumeTotal(), qint64(4096));
    }

    void refreshAsksForTheHomeOfTheProcess()
    {
        FakeServices fake;
        fake.home.home = u"/home/someone/.var/app/sandbox"_s;
        AppModel model(fake.services);
        model.volume().refreshVolume();
        fake.home.raw = "/home/jos\xE9";
        model.volume().refreshVolume();
        QCOMPARE(fake.volumes.askedPaths,
            (QList<std::string>{ "/home/someone/.var/app/sandbox", "/home/jos\xE9" }));
    }

    void figureThatIsNotToldCountsAsNone()
    {
        FakeServices fake;
        AppModel model(fake.services);
        fake.volumes.answer = someCapacity;
        model.volume().refreshVolume();
        fake.volumes.answer = VolumeCapacity{ .total = 4096 };
        model.volume().refreshVolume();
        QCOMPARE(model.volume().liveFree(), qint64(0));
        QCOMPARE(model.volume().liveOptimistic(), qint64(0));
        QCOMPARE(model.volume().liveTotal(), qint64(4096));
    }

    void failedReadChangesNothing()
    {
        FakeServices fake;
        AppModel model(fake.services);
        fake.volumes.answer = someCapacity;
        model.volume().refreshVolume();
        fake.volumes.answer.reset();
        model.volume().refreshVolume();
        QCOMPARE(model.volume().liveFree(), qint64(1024));
        QCOMPARE(model.volume().liveTotal(), qint64(4096));
        QCOMPARE(model.volume().menuBarTitle(), u"1.0 KB"_s);
    }

    void refreshTellsOnlyChanges()
    {
        FakeServices fake;
        AppModel model(fake.services);
        const QSignalSpy volumes(&model.volume(), &VolumeFigures::volumeChanged);
        const QSignalSpy titles(&model.volume(), &VolumeFigures::menuBarTitleChanged);
        model.volume().refreshVolume();
        QCOMPARE(volumes.count(), 0);
        fake.volumes.answer = someCapacity;
        model.volume().refreshVolume();
        model.volume().refreshVolume();
        QCOMPARE(volumes.count(), 1);
        QCOMPARE(titles.count(), 1);
        fake.volumes.answer->total = 8192;
        model.volume().refreshVolume();
        QCOMPARE(volumes.count(), 2);
        QCOMPARE(titles.count(), 1);
    }

    void menuBarShowsTheFreeSpace()
    {
        FakeServices fake;
        AppModel model(fake.services);
        QCOMPARE(model.volume().menuBarTitle(), u"—"_s);
        fake.volumes.answer = VolumeCapacity{ .available = qint64(100) << 30, .total = qint64(500) << 30 };
        model.volume().refreshVolume();
        QCOMPARE(model.volume().menuBarTitle(), u"100 GB"_s);
    }

    void reportsVolumeFiguresGoFirst()
    {
        ScannedHome home;
        home.volumes.answer = { .available = 100, .availableForImportantUsage = 200, .total = 1000 };
        home.scan();
        QCOMPARE(home.model.volume().volumeFree(), home.model.scans().report()->volumeFreeBytes);
        QCOMPARE(home.model.volume().volumeTotal(), qint64(1000));
        home.volumes.answer = { .available = 50, .availableForImportantUsage = 60, .total = 2000 };
        home.model.volume().refreshVolume();
        QCOMPARE(home.model.volume().liveFree(), qint64(50));
        QCOMPARE(home.model.volume().volumeFree(), home.model.scans().report()->volumeFreeBytes);
        QCOMPARE(home.model.volume().volumeTotal(), qint64(1000));
    }

    void menuBarShowsTheReportsFigureWithoutALiveOne()
    {
        ScannedHome home;
        home.model.volume().refreshMenuBarTitle();
        QCOMPARE(home.model.volume().menuBarTitle(), u"0 B"_s);
        home.volumes.answer = { .available = 2048, .availableForImportantUsage = 2048, .total = 4096 };
        home.scan();
        home.volumes.answer = { .total = 4096 };
        home.model.volume().refreshVolume();
        QCOMPARE(home.model.volume().liveFree(), qint64(0));
        QCOMPARE(home.model.volume().menuBarTitle(), u"2.0 KB"_s);
    }

    void clockRefreshesEvery60Seconds()
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
        QCOMPARE(model.volume().liveFree(), qint64(1024));
    }

    void startingTheClockAgainReplacesIt()
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
};

QUILLBROOK_SUITE(TestVolumeFigures, QCoreApplication)
#include "tst_VolumeFigures.moc"

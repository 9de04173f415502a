#include "Offload/Profiling.h"
#include "Support/FakeKit.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

struct Fixture : FakeKit
{
    Fixture() { files.entries = { { "/media/disk/.", {} } }; }

    [[nodiscard]] std::expected<DestinationProfile, OffloadError> profile(
        const std::string &folder = "/media/disk", const std::stop_token &stop = {})
    {
        return Offload::profile(
            OffloadServices::of(kitServices), { .destination = folder, .sampleMB = 24, .stop = stop });
    }
};

} // namespace

class TestProfiling : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsNoFolderIsNoDestination()
    {
        Fixture f;
        const auto result = f.profile("/media/file");
        QVERIFY(!result);
        QCOMPARE(result.error().kind, OffloadError::Kind::destinationUnusable);
        QCOMPARE(result.error().description(), u"/media/file is not a folder."_s);
        QVERIFY(f.speeds.samples.empty());
    }

    void aFailedWriteSaysWhy()
    {
        Fixture f;
        f.speeds.answer = std::unexpected(u"The disk can only be read."_s);
        const auto result = f.profile();
        QVERIFY(!result);
        QCOMPARE(result.error().description(), u"Cannot write there: The disk can only be read."_s);
    }

    void aFolderThatMayNotBeEnteredIsOneToo()
    {
        Fixture f;
        f.files.entries = { { "/media/closed", {} } };
        f.speeds.answer = std::unexpected(u"You do not have permission."_s);
        QCOMPARE(f.profile("/media/closed").error().description(),
            u"Cannot write there: You do not have permission."_s);
    }

    void ratesAreTheSampleByItsSeconds()
    {
        Fixture f;
        f.speeds.answer
            = MeasuredSpeed{ .writeSeconds = 0.16, .readSeconds = 0.0001, .keepsAttributes = false };
        f.drives.answer = { .available = 5'000, .availableForImportantUsage = 7'000 };
        const auto profile = f.profile();
        QVERIFY(profile);
        QCOMPARE(f.speeds.samples.at(0).bytes, 24 * 1'048'576);
        QCOMPARE(profile->writeMBPerSecond, 150.0);
        QVERIFY(!profile->isSlowBus());
        QCOMPARE(profile->readMBPerSecond, 240'000.0);
        QCOMPARE(profile->freeBytes, 7'000);
        QVERIFY(!profile->keepsAttributes);
        QCOMPARE(profile->summary(), u"150 MB/s write · 240000 MB/s read · 6.8 KB free"_s);
    }

    void slowIsBelowThe150th()
    {
        QVERIFY(DestinationProfile{ .writeMBPerSecond = 149.999 }.isSlowBus());
        QVERIFY(!DestinationProfile{ .writeMBPerSecond = 150.0 }.isSlowBus());
    }

    void kindAndRoomAreWhatTheVolumeTells_data()
    {
        using Told = std::optional<bool>;
        QTest::addColumn<DriveFacts>("facts");
        QTest::addColumn<bool>("isRemovable");
        QTest::addColumn<bool>("isNetwork");
        QTest::addColumn<bool>("isLocal");
        QTest::newRow("nothing told") << DriveFacts{} << false << false << false;
        QTest::newRow("internal") << DriveFacts{ .isRemovable = false, .isInternal = true } << false << false
                                  << true;
        QTest::newRow("neither") << DriveFacts{ .isRemovable = false, .isInternal = false } << false << true
                                 << false;
        QTest::newRow("not internal, and no more")
            << DriveFacts{ .isInternal = false } << false << true << false;
        QTest::newRow("removable") << DriveFacts{ .isRemovable = true, .isInternal = false } << true << false
                                   << true;
        QTest::newRow("not removable, and no more")
            << DriveFacts{ .isRemovable = Told(false) } << false << false << false;
        QTest::newRow("less than nothing free")
            << DriveFacts{ .available = -4, .availableForImportantUsage = -9 } << false << false << false;
    }

    void kindAndRoomAreWhatTheVolumeTells()
    {
        QFETCH(DriveFacts, facts);
        Fixture f;
        f.drives.answer = facts;
        const auto profile = f.profile();
        QVERIFY(profile);
        QTEST(profile->isRemovable, "isRemovable");
        QTEST(profile->isNetwork, "isNetwork");
        QTEST(profile->isLocal, "isLocal");
        QCOMPARE(profile->freeBytes, 0);
    }

    void aStopYieldsNoProfile()
    {
        Fixture f;
        std::stop_source stop;
        f.speeds.onMeasure = [&](const SpeedProbe::Sample &) { stop.request_stop(); };
        const auto result = f.profile("/media/disk", stop.get_token());
        QVERIFY(!result);
        QCOMPARE(result.error().kind, OffloadError::Kind::stopped);
    }
};

QUILLBROOK_SUITE(TestProfiling, QCoreApplication)
#include "tst_Profiling.moc"

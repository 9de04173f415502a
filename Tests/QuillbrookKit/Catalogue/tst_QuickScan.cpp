#include "Catalogue/StorageCatalogue.h"
#include "RawText.h"
#include "Support/FakeDirectories.h"
#include "Support/FolderHold.h"
#include "Support/MadeUpHome.h"
#include "Support/Suite.h"

#include <QTest>

#include <future>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 block = 4096;

QStringList idsOf(const ReclaimReport &report)
{
    QStringList ids;
    for (const auto &finding : report.findings)
        ids.append(finding.rule.id);
    return ids;
}

// Requests the stop when a location has been begun and nothing of it was read.
struct StoppingDirectories final : DirectoryReading
{
    std::unique_ptr<DirectorySession> session(const std::string &rootPath) override
    {
        stop.request_stop();
        return disk.session(rootPath);
    }

    FakeDirectories disk;
    std::stop_source stop;
};

} // namespace

class TestQuickScan : public QObject
{
    Q_OBJECT

private:
    static ReclaimReport scan(MadeUpHome &home, const QSet<QString> &skipping = {})
    {
        return StorageCatalogue::quickScan(
            home.services(), { .places = { .homeDirectory = home.path(), .skipping = skipping } });
    }
    static qsizetype steps(MadeUpHome &home, const QSet<QString> &skipping = {})
    {
        return StorageCatalogue::quickScanStepCount(
            home.services(), { .homeDirectory = home.path(), .skipping = skipping });
    }

private Q_SLOTS:
    void emptyHomeGivesAnEmptyReport()
    {
        MadeUpHome home;
        QCOMPARE(scan(home), ReclaimReport());
        QCOMPARE(steps(home), 0);
    }

    void findingTellsAllOfItsLocation()
    {
        MadeUpHome home;
        home.fill(".npm/_cacache", 5000);
        home.touch(".npm/_cacache", QDateTime(QDate(2024, 6, 1), QTime(8, 30, 15, 750), Qt::UTC));
        const auto report = scan(home);
        QCOMPARE(report.findings.size(), 1);
        const auto &finding = report.findings.first();
        const auto path = home.path(".npm/_cacache");
        QCOMPARE(finding.id, u"npm.cacache:"_s + path);
        QCOMPARE(finding.rule, StorageCatalogue::rules()[5]);
        QCOMPARE(finding.path, path);
        QCOMPARE(finding.rawPath, path.toStdString());
        QCOMPARE(finding.bytes, home.tree.allocated(".npm/_cacache/content"));
        QCOMPARE(finding.lastModified, QDateTime(QDate(2024, 6, 1), QTime(8, 30, 15), Qt::UTC));
        QCOMPARE(finding.created, LinuxFileFacts().dates(path.toStdString())->created);
        QVERIFY(!finding.redirectedOffVolume);
        QVERIFY(finding.meetsStalenessForDeletion);
        QVERIFY(!finding.locationLabel);
    }

    void everyPathOfARuleIsAFindingOfItsOwn()
    {
        MadeUpHome home;
        home.fill("Library/Caches/pip", 9000);
        home.fill("Library/Caches/ms-playwright", 100);
        const auto report = scan(home);
        QCOMPARE(idsOf(report), QStringList({ u"caches.devtools"_s, u"caches.devtools"_s }));
        QCOMPARE(report.findings[0].displayTitle(), u"Programming tool downloads \u00B7 pip"_s);
        QCOMPARE(report.findings[1].displayTitle(), u"Programming tool downloads \u00B7 ms-playwright"_s);
    }

    void largestComesFirst()
    {
        MadeUpHome home;
        home.fill(".gradle/daemon", 4096);
        home.fill(".npm/_cacache", 3 * block);
        home.fill(".pub-cache", 2 * block);
        QCOMPARE(idsOf(scan(home)), QStringList({ u"npm.cacache"_s, u"pub.cache"_s, u"gradle.daemon"_s }));
    }

    // More of them than a sort takes as a small list, which stays in order whatever the sort.
    void equalSizesKeepTheOrderOfTheTable()
    {
        MadeUpHome home;
        QStringList expected;
        for (const auto &rule : StorageCatalogue::rules())
            for (const auto &path : rule.paths)
                if (rule.safety != Safety::reportOnly && rule.id != u"browser.serviceworkers")
                    expected.append(home.path(path.toStdString()));
        for (const auto &path : expected)
            home.fill(path.sliced(home.path().size() + 1).toStdString(), 4096);
        QStringList paths;
        for (const auto &finding : scan(home).findings)
            paths.append(finding.path);
        QVERIFY(paths.size() > 40);
        QCOMPARE(paths, expected);
    }

    void callbackGetsEachFindingInWalkOrderBeforeTheNext()
    {
        MadeUpHome home;
        home.fill(".gradle/daemon", 4096);
        home.fill(".npm/_cacache", 3 * block);
        QList<Finding> seen;
        const auto thread = QThread::currentThread();
        const auto report = StorageCatalogue::quickScan(home.services(),
            { .places = { .homeDirectory = home.path() }, .onFinding = [&](const Finding &finding) {
                 QCOMPARE(QThread::currentThread(), thread);
                 // Grown after the first finding was made: it counts only for what is measured later.
                 if (seen.isEmpty())
                     home.fill(".npm/_cacache/later", 8 * block);
                 seen.append(finding);
             } });
        QCOMPARE(seen.size(), 2);
        QCOMPARE(seen[0].rule.id, u"gradle.daemon"_s);
        QCOMPARE(seen[1].bytes, 11 * block);
        QCOMPARE(report.findings, QList({ seen[1], seen[0] }));
    }

    void emptySkipSetSkipsNothing()
    {
        MadeUpHome home;
        home.fill("Library/Caches/pip", 10);
        QCOMPARE(scan(home).findings.size(), 1);
        QCOMPARE(steps(home), 1);
    }

    void skipTest_data()
    {
        QTest::addColumn<QString>("entry");
        QTest::addColumn<bool>("skipped");
        QTest::newRow("home skips every relative location") << u""_s << true;
        QTest::newRow("the location itself") << u"/Library/Caches/pip"_s << true;
        QTest::newRow("a folder above it") << u"/Library"_s << true;
        QTest::newRow("a sibling that shares the beginning of a name") << u"/Library/Cache"_s << false;
        QTest::newRow("the beginning of its own name") << u"/Library/Caches/pi"_s << false;
        QTest::newRow("something below it") << u"/Library/Caches/pip/content"_s << false;
        QTest::newRow("its text with a slash behind") << u"/Library/Caches/pip/"_s << false;
        QTest::newRow("another letter case") << u"/library"_s << false;
    }
    void skipTest()
    {
        QFETCH(QString, entry);
        QFETCH(bool, skipped);
        MadeUpHome home;
        home.fill("Library/Caches/pip", 10);
        QCOMPARE(scan(home, { home.path() + entry }).findings.isEmpty(), skipped);
        QCOMPARE(steps(home, { home.path() + entry }), skipped ? 0 : 1);
    }

    void skippingIsByTextWithoutResolvingLinks()
    {
        MadeUpHome home;
        home.fill("Library/Caches/pip", 10);
        home.tree.link("way", "Library");
        QCOMPARE(scan(home, { home.path("way") }).findings.size(), 1);
    }

    void skippingComparesByCanonicalEquivalence()
    {
        MadeUpHome home;
        home.tree.folder("Jos\u00e9");
        home.fill("Jos\u00e9/.npm/_cacache", 10);
        const auto report = StorageCatalogue::quickScan(home.services(),
            { .places = { .homeDirectory = home.path("Jos\u00e9"),
                  .skipping = { home.path() + u"/Jose\u0301"_s } } });
        QVERIFY(report.findings.isEmpty());
    }

    // What lies behind a link is on another disk, or counted where it really is.
    void linkGivesNoFindingAndIsCountedAsAStep()
    {
        MadeUpHome home;
        home.fill("elsewhere", 10);
        home.fill("disk/caches", 10);
        home.tree.link(".npm/_cacache", home.tree.path("elsewhere"));
        home.tree.link(".pub-cache", "/does/not/exist");
        home.tree.link(".gradle", "disk");
        QVERIFY(scan(home).findings.isEmpty());
        QCOMPARE(steps(home), 3);
    }

    void homeWhoseNameIsNotTextIsMeasured()
    {
        MadeUpHome home;
        const auto raw = home.tree.path("jos\xE9");
        home.fill("jos\xE9/.npm/_cacache", 5000);
        home.touch("jos\xE9/.npm/_cacache", home.clock.moment);
        home.fill("elsewhere/caches", 10);
        home.tree.link("jos\xE9/.gradle", home.tree.path("elsewhere"));
        const StorageCatalogue::Places places{ .homeDirectory = repairedText(raw), .rawHome = raw };
        const auto report = StorageCatalogue::quickScan(home.services(), { .places = places });
        QCOMPARE(idsOf(report), QStringList{ u"npm.cacache"_s });
        const auto &finding = report.findings.first();
        QCOMPARE(finding.path, home.path() + u"/jos\ufffd/.npm/_cacache"_s);
        QCOMPARE(finding.rawPath, raw + "/.npm/_cacache");
        QCOMPARE(finding.lastModified, home.clock.moment);
        QCOMPARE(StorageCatalogue::quickScanStepCount(home.services(), places), 2);
        QCOMPARE(home.volumes.askedPaths, QList<std::string>{ raw });
    }

    void emptyLocationGivesNoFindingAndIsCountedAsAStep()
    {
        MadeUpHome home;
        home.tree.folder(".npm/_cacache/tmp");
        home.tree.file(".pub-cache/nothing", 0);
        QVERIFY(scan(home).findings.isEmpty());
        QCOMPARE(steps(home), 2);
    }

    void locationThatIsAFileGivesNoFinding()
    {
        MadeUpHome home;
        home.tree.file(".npm/_cacache", 5000);
        QVERIFY(scan(home).findings.isEmpty());
        QCOMPARE(steps(home), 1);
    }

    void locationThatCannotBeReadGivesNoFinding()
    {
        MadeUpHome home;
        home.fill(".npm/_cacache", 5000);
        home.fill(".pub-cache", 5000);
        FakeDirectories directories;
        directories.closed = { home.tree.path(".npm/_cacache") };
        directories.folder(home.tree.path(".pub-cache"), { FakeDirectories::aFile("file", 4096) });
        const auto report = StorageCatalogue::quickScan(
            home.services(directories), { .places = { .homeDirectory = home.path() } });
        QCOMPARE(idsOf(report), QStringList(u"pub.cache"_s));
        QCOMPARE(steps(home), 2);
    }

    void ruleWithoutStaleDaysIsAlwaysStaleEnough()
    {
        MadeUpHome home;
        home.fill(".npm/_cacache", 10);
        home.touch(".npm/_cacache", home.clock.moment);
        QVERIFY(scan(home).findings.first().meetsStalenessForDeletion);
    }

    // "android.avd" wants 60 days. Told in UTC; the clock stands at noon of 15 June 2024.
    void staleness_data()
    {
        QTest::addColumn<QDateTime>("modified");
        QTest::addColumn<bool>("stale");
        const QDateTime now = FakeClock().moment;
        QTest::newRow("just now") << now << false;
        QTest::newRow("59 days ago") << now.addDays(-59) << false;
        QTest::newRow("a second short of 60 days") << now.addDays(-60).addSecs(1) << false;
        QTest::newRow("exactly 60 days ago") << now.addDays(-60) << true;
        QTest::newRow("a year ago") << now.addDays(-366) << true;
        QTest::newRow("tomorrow") << now.addDays(1) << false;
    }
    void staleness()
    {
        QFETCH(QDateTime, modified);
        MadeUpHome home;
        home.fill(".android/avd", 10);
        home.touch(".android/avd", modified);
        QTEST(scan(home).findings.first().meetsStalenessForDeletion, "stale");
    }

    void stalenessLooksAtTheLocationAndNotAtTheNewestFileBelow()
    {
        MadeUpHome home;
        home.fill(".android/avd", 10);
        home.touch(".android/avd/content", home.clock.moment);
        home.touch(".android/avd", home.clock.moment.addDays(-100));
        QVERIFY(scan(home).findings.first().meetsStalenessForDeletion);
    }

    void volumeFiguresAreThoseOfTheHomeFolder()
    {
        MadeUpHome home;
        home.volumes.answer
            = VolumeCapacity{ .available = 70, .availableForImportantUsage = 90, .total = 500 };
        const auto report = scan(home);
        QCOMPARE(report.volumeFreeBytes, 70);
        QCOMPARE(report.volumeTotalBytes, 500);
        QCOMPARE(home.volumes.askedPaths, QList<std::string>{ home.tree.path() });
    }

    void figureThatTheVolumeDoesNotTellIsZero()
    {
        MadeUpHome home;
        home.volumes.answer = VolumeCapacity{ .total = 500 };
        QCOMPARE(scan(home).volumeFreeBytes, 0);
        QCOMPARE(scan(home).volumeTotalBytes, 500);
    }

    void failingVolumeQueryLeavesTheFindings()
    {
        MadeUpHome home;
        home.fill(".npm/_cacache", 10);
        home.volumes.answer = std::nullopt;
        const auto report = scan(home);
        QCOMPARE(report.findings.size(), 1);
        QCOMPARE(report.volumeFreeBytes, 0);
        QCOMPARE(report.volumeTotalBytes, 0);
    }

    void absolutePathOfAHostIsTakenAsItStands()
    {
        MadeUpHome home;
        home.fill("apart", 10);
        const HostCatalogue host{ .rules
            = { { .rule = { .id = u"host.apart"_s, .title = u"Apart"_s, .paths = { home.path("apart") } },
                .locations = { { home.path("apart"), u"Apart"_s } } } } };
        const auto report = StorageCatalogue::quickScan(
            home.services(), { .places = { .homeDirectory = u"/no/such/home"_s, .host = &host } });
        QCOMPARE(report.findings.size(), 1);
        QCOMPARE(report.findings.first().path, home.path("apart"));
    }

    void stopEndsTheWalkBetweenLocations()
    {
        MadeUpHome home;
        home.fill(".gradle/daemon", 10);
        home.fill(".npm/_cacache", 10);
        std::stop_source stop;
        const auto report = StorageCatalogue::quickScan(home.services(),
            { .places = { .homeDirectory = home.path() },
                .onFinding = [&stop](const Finding &) { stop.request_stop(); },
                .stop = stop.get_token() });
        QCOMPARE(idsOf(report), QStringList(u"gradle.daemon"_s));
    }

    void stopEndsThePresentLocationAndNoOtherIsBegun()
    {
        MadeUpHome home;
        home.tree.folder(".gradle/daemon");
        home.tree.folder(".npm/_cacache");
        FakeDirectories directories;
        for (const auto *folder : { ".gradle/daemon", ".npm/_cacache" })
            directories.folder(home.tree.path(folder), { FakeDirectories::aFile("file", 4096) });
        FolderHold hold(directories, home.tree.path(".gradle/daemon"));
        std::stop_source stop;
        auto running = std::async(std::launch::async, [&home, &directories, &stop] {
            return StorageCatalogue::quickScan(home.services(directories),
                { .places = { .homeDirectory = home.path() }, .stop = stop.get_token() });
        });
        QTRY_VERIFY_WITH_TIMEOUT(hold.isHolding(), 20'000);
        stop.request_stop();
        hold.release();
        QVERIFY(running.wait_for(std::chrono::seconds(20)) == std::future_status::ready);
        QVERIFY(running.get().findings.isEmpty());
        QCOMPARE(directories.sessionsMade(), 1);
    }

    void locationsAreMeasuredOneAfterTheOther()
    {
        MadeUpHome home;
        home.tree.folder(".gradle/daemon");
        home.tree.folder(".npm/_cacache");
        FakeDirectories directories;
        for (const auto *folder : { ".gradle/daemon", ".npm/_cacache" })
            directories.folder(home.tree.path(folder), { FakeDirectories::aFile("file", 4096) });
        int measured = 0;
        const auto report = StorageCatalogue::quickScan(home.services(directories),
            { .places = { .homeDirectory = home.path() },
                .onFinding = [&](const Finding &) { QCOMPARE(directories.sessionsMade(), ++measured); } });
        QCOMPARE(report.findings.size(), 2);
    }

    void stopBetweenTwoLocationsReadsNothingMore()
    {
        MadeUpHome home;
        home.tree.folder(".gradle/daemon");
        StoppingDirectories directories;
        directories.disk.folder(home.tree.path(".gradle/daemon"), { FakeDirectories::aFile("file", 4096) });
        const auto report = StorageCatalogue::quickScan(home.services(directories),
            { .places = { .homeDirectory = home.path() }, .stop = directories.stop.get_token() });
        QVERIFY(report.findings.isEmpty());
        QCOMPARE(directories.disk.opened(), std::vector<std::string>());
    }

    void stopBeforehandMeasuresNothing()
    {
        MadeUpHome home;
        home.fill(".gradle/daemon", 10);
        std::stop_source stop;
        stop.request_stop();
        const auto report = StorageCatalogue::quickScan(
            home.services(), { .places = { .homeDirectory = home.path() }, .stop = stop.get_token() });
        QVERIFY(report.findings.isEmpty());
    }
};

QUILLBROOK_SUITE(TestQuickScan, QCoreApplication)
#include "tst_QuickScan.moc"

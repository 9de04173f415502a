#include "Automation/Watcher.h"
#include "Platform/Linux/Files/LinuxFileFacts.h"
#include "Platform/Linux/Folders/LinuxDirectoryReading.h"
#include "Platform/Linux/Processes/LinuxUtilityQueue.h"
#include "RawText.h"
#include "Support/FakeDirectories.h"
#include "Support/FakeKit.h"
#include "Support/FolderHold.h"
#include "Support/HookedDirectories.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QTest>
#include <QThread>

#include <algorithm>
#include <mutex>
#include <set>
#include <thread>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 mebibyte = 1'048'576;
constexpr qint64 packageBytes = 5 * mebibyte;

// A real home folder with two things that are safe to clear.
struct Home
{
    Home()
    {
        tree.file("home/.npm/_cacache/content", packageBytes);
        tree.file("home/.gradle/daemon/log", mebibyte);
        tree.file("home/Documents/letter", 1024);
        kit.home.home = tree.text("home");
        kit.home.realHome = kit.home.home;
        kit.volumes.answer = VolumeCapacity{ .available = 1024, .total = qint64(1) << 40 };
        directories.beforeOpen = [this](const std::string &path) {
            const std::lock_guard guard(lock);
            opened.insert(path);
        };
    }

    [[nodiscard]] bool hasOpened(const std::string &name) const
    {
        const std::lock_guard guard(lock);
        return opened.contains(tree.path("home/" + name));
    }
    /// With the volume nearly full, what there is on this disk is worth a notice.
    static Watcher::Settings settings() { return { .minimumWorthMentioning = packageBytes }; }

    TempTree tree;
    LinuxDirectoryReading real;
    HookedDirectories directories{ real };
    LinuxFileFacts files;
    FakeKit kit{ { .directories = &directories, .files = &files } };
    mutable std::mutex lock;
    std::set<std::string> opened;
};

// A made-up home folder whose scan can be held.
struct SlowHome
{
    SlowHome()
    {
        using Disk = FakeDirectories;
        directories.folder("/home/someone", { Disk::aFolder(".npm") });
        directories.folder("/home/someone/.npm", { Disk::aFolder("_cacache") });
        directories.folder("/home/someone/.npm/_cacache", { Disk::aFile("content", packageBytes) });
    }

    FakeKit kit;
    FakeDirectories &directories = kit.directories;
};

// What a watcher tells, and on which thread.
struct Told
{
    explicit Told(Watcher &watcher)
    {
        watcher.setOnObservation([this](const Watcher::Observation &observation) {
            observations.append(observation);
            threads.append(QThread::currentThread());
        });
    }

    QList<Watcher::Observation> observations;
    QList<QThread *> threads;
};

} // namespace

class TestWatcherChecks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void checksTheHomeFolder()
    {
        Home home;
        Watcher watcher(home.kit.kitServices, Home::settings());
        watcher.check(false);
        const auto observation = watcher.lastObservation();
        QVERIFY(observation);
        QCOMPARE(observation->freeBytes, qint64(1024));
        QCOMPARE(observation->reclaimableBytes,
            home.tree.allocated("home/.npm/_cacache/content")
                + home.tree.allocated("home/.gradle/daemon/log"));
        QVERIFY(observation->biggestGroup == u"Downloaded code packages"_s);
        QCOMPARE(observation->checkedAt, home.kit.clock.moment);
        QVERIFY(observation->shouldNotify);
        QCOMPARE(observation->headline, u"1.0 KB free · 6.0 MB can be reclaimed"_s);
        QVERIFY(watcher.lastNotifiedAt() == home.kit.clock.moment);
        QCOMPARE(home.kit.volumes.askedPaths, QList<std::string>{ home.tree.path("home") });
    }

    void checksTheHomeOfTheProcess_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("text") << QByteArray("sandbox");
        QTest::newRow("not UTF-8") << QByteArray("caf\xE9");
    }

    void checksTheHomeOfTheProcess()
    {
        QFETCH(QByteArray, name);
        Home home;
        const auto content = name.toStdString() + "/.npm/_cacache/content";
        home.tree.file(content, mebibyte);
        home.kit.home.raw = home.tree.path(name.toStdString());
        home.kit.home.home = repairedText(*home.kit.home.raw);
        Watcher watcher(home.kit.kitServices);
        watcher.check(false);
        QCOMPARE(watcher.lastObservation()->reclaimableBytes, home.tree.allocated(content));
        QVERIFY(!home.hasOpened(".npm"));
    }

    void staysOutOfWhatIsAPersonsOwn()
    {
        Home home;
        home.tree.file("home/Library/Containers/x/y", 1024);
        home.tree.file("home/Library/Caches/pip/y", 1024);
        home.tree.file("home/projects/x", 1024);
        Watcher watcher(home.kit.kitServices);
        watcher.check(true);
        QVERIFY(home.hasOpened(".npm/_cacache"));
        QVERIFY(home.hasOpened("Library/Caches/pip"));
        QVERIFY(!home.hasOpened("Documents"));
        QVERIFY(!home.hasOpened("Library/Containers"));
        QVERIFY(!home.hasOpened("projects"));
    }

    void goesWhereTheHostSays()
    {
        Home home;
        home.tree.file("home/scratch/large", 3 * packageBytes);
        home.tree.file("home/letters/own", 1024);
        const auto path = home.tree.text("home");
        home.kit.host.facts = { .quietAllowlist = { { path, { u"scratch"_s, u"letters"_s } } },
            .protectedPaths = { path + u"/letters"_s, path + u"/.gradle"_s } };
        home.kit.host.facts.catalogue.rules = { { .rule = { .id = u"scratch"_s,
                                                      .title = u"Scratch"_s,
                                                      .safety = Safety::safe,
                                                      .paths = { u"scratch"_s } },
            .locations = { { .path = u"scratch"_s } } } };
        Watcher watcher(home.kit.kitServices);
        watcher.check(false);
        QVERIFY(home.hasOpened("scratch"));
        QVERIFY(!home.hasOpened("letters"));
        QVERIFY(!home.hasOpened(".gradle"));
        QVERIFY(watcher.lastObservation()->biggestGroup == u"Scratch"_s);
        QCOMPARE(watcher.lastObservation()->reclaimableBytes,
            home.tree.allocated("home/.npm/_cacache/content") + home.tree.allocated("home/scratch/large"));
    }

    void homeThatIsNotThereIsASmallerTree()
    {
        Home home;
        home.kit.home.home = home.tree.text("nowhere");
        Watcher watcher(home.kit.kitServices);
        watcher.check(false);
        const Watcher::Observation expected{ .freeBytes = 1024,
            .checkedAt = home.kit.clock.moment,
            .headline = u"1.0 KB free · nothing safe left to reclaim"_s };
        QVERIFY(watcher.lastObservation() == expected);
    }

    void unreadableFolderIsASmallerTree()
    {
        SlowHome home;
        home.directories.closed = { "/home/someone/.npm/_cacache" };
        Watcher watcher(home.kit.kitServices);
        watcher.check(false);
        QVERIFY(watcher.lastObservation());
        QCOMPARE(watcher.lastObservation()->reclaimableBytes, qint64(0));
        QVERIFY(!watcher.lastObservation()->biggestGroup);
    }

    void tellsOnTheMainThread()
    {
        Home home;
        Watcher watcher(home.kit.kitServices, Home::settings());
        Told told(watcher);
        std::thread([&watcher] { watcher.check(false); }).join();
        QVERIFY(told.observations.isEmpty());
        QTRY_COMPARE(told.observations.size(), 1);
        QCOMPARE(told.threads, QList{ QThread::currentThread() });
        QVERIFY(told.observations.first() == watcher.lastObservation());
    }

    void toldBeforeAnyoneListenedIsKept()
    {
        Home home;
        Watcher watcher(home.kit.kitServices);
        watcher.check(false);
        Told told(watcher);
        QCoreApplication::processEvents();
        QVERIFY(told.observations.isEmpty());
        QVERIFY(watcher.lastObservation());
    }

    void observerThatLeftIsNotTold()
    {
        Home home;
        Watcher watcher(home.kit.kitServices);
        Told told(watcher);
        watcher.check(false);
        watcher.setOnObservation({});
        QCoreApplication::processEvents();
        QVERIFY(told.observations.isEmpty());
    }

    void secondCheckInTheQuietPeriodIsQuiet()
    {
        Home home;
        Watcher watcher(home.kit.kitServices, Home::settings());
        const auto first = home.kit.clock.moment;
        watcher.check(false);
        home.kit.clock.moment = first.addSecs(1800);
        watcher.check(false);
        QVERIFY(!watcher.lastObservation()->shouldNotify);
        QCOMPARE(watcher.lastObservation()->checkedAt, first.addSecs(1800));
        QVERIFY(watcher.lastNotifiedAt() == first);
        home.kit.clock.moment = first.addSecs(21600);
        watcher.check(false);
        QVERIFY(watcher.lastObservation()->shouldNotify);
        QVERIFY(watcher.lastNotifiedAt() == first.addSecs(21600));
    }

    void forcedCheckSpeaksAgain()
    {
        Home home;
        home.kit.volumes.answer->available = qint64(1) << 39;
        Watcher watcher(home.kit.kitServices, Home::settings());
        watcher.check(false);
        QVERIFY(!watcher.lastObservation()->shouldNotify);
        QVERIFY(!watcher.lastNotifiedAt());
        watcher.check(true);
        QVERIFY(watcher.lastObservation()->shouldNotify);
        QCOMPARE(watcher.lastObservation()->headline, u"512 GB free"_s);
        QVERIFY(watcher.lastNotifiedAt() == home.kit.clock.moment);
        watcher.check(true);
        QVERIFY(watcher.lastObservation()->shouldNotify);
    }

    void checksMayOverlap()
    {
        SlowHome home;
        FolderHold hold(home.directories, "/home/someone/.npm/_cacache");
        Watcher watcher(home.kit.kitServices);
        Told told(watcher);
        std::thread first([&watcher] { watcher.check(false); });
        std::thread second([&watcher] { watcher.check(false); });
        const bool both = home.directories.waitForReaders(2);
        hold.release();
        first.join();
        second.join();
        QVERIFY(both);
        QCOMPARE(home.directories.sessionsMade(), 2);
        QTRY_COMPARE(told.observations.size(), 2);
    }

    void timerChecks()
    {
        Home home;
        Watcher watcher(home.kit.kitServices, Home::settings());
        watcher.update({ .minimumWorthMentioning = packageBytes, .enabled = true });
        Told told(watcher);
        home.kit.queue.fire();
        QTRY_COMPARE(told.observations.size(), 1);
        QVERIFY(told.observations.first().shouldNotify);
        home.kit.queue.fire();
        QTRY_COMPARE(told.observations.size(), 2);
        QVERIFY(!told.observations.last().shouldNotify);
    }

    void soonIsOnTheQueue()
    {
        Home home;
        Watcher watcher(home.kit.kitServices);
        Told told(watcher);
        watcher.checkSoon();
        QCoreApplication::processEvents();
        QVERIFY(!watcher.lastObservation());
        home.kit.queue.run();
        QTRY_COMPARE(told.observations.size(), 1);
        QVERIFY(!told.observations.first().shouldNotify);
    }

    void nothingIsToldOnceTheWatcherIsGone()
    {
        Home home;
        auto watcher = std::make_unique<Watcher>(home.kit.kitServices);
        Told told(*watcher);
        watcher->check(false);
        watcher.reset();
        QCoreApplication::processEvents();
        QVERIFY(told.observations.isEmpty());
    }

    void waitingCheckOfAGoneWatcherDoesNothing()
    {
        Home home;
        auto watcher = std::make_unique<Watcher>(home.kit.kitServices);
        Told told(*watcher);
        watcher->checkSoon();
        watcher.reset();
        home.kit.queue.run();
        QCoreApplication::processEvents();
        QVERIFY(told.observations.isEmpty());
        QVERIFY(home.opened.empty());
    }

    void endOfTheWatcherEndsACheck()
    {
        SlowHome home;
        FolderHold hold(home.directories, "/home/someone/.npm");
        auto watcher = std::make_unique<Watcher>(home.kit.kitServices);
        Told told(*watcher);
        watcher->checkSoon();
        std::thread queue([&home] { home.kit.queue.run(); });
        const bool isHeld = QTest::qWaitFor([&hold] { return hold.isHolding(); }, 20'000);
        watcher.reset();
        hold.release();
        queue.join();
        QVERIFY(isHeld);
        const auto opened = home.directories.opened();
        QVERIFY(std::ranges::count(opened, "/home/someone/.npm/_cacache") == 0);
        QCoreApplication::processEvents();
        QVERIFY(told.observations.isEmpty());
        QVERIFY(home.kit.volumes.askedPaths.isEmpty());
    }

    void switchingOffLetsACheckEnd()
    {
        SlowHome home;
        FolderHold hold(home.directories, "/home/someone/.npm");
        Watcher watcher(home.kit.kitServices);
        Told told(watcher);
        watcher.update({ .enabled = true });
        watcher.checkSoon();
        std::thread queue([&home] { home.kit.queue.run(); });
        const bool isHeld = QTest::qWaitFor([&hold] { return hold.isHolding(); }, 20'000);
        watcher.update({ .enabled = false });
        hold.release();
        queue.join();
        QVERIFY(isHeld);
        QVERIFY(!home.kit.queue.timer);
        QTRY_COMPARE(told.observations.size(), 1);
        QCOMPARE(told.observations.first().reclaimableBytes, packageBytes);
    }

    void observerMayEndTheWatcher()
    {
        Home home;
        auto watcher = std::make_unique<Watcher>(home.kit.kitServices);
        int calls = 0;
        watcher->setOnObservation([&](const Watcher::Observation &) {
            ++calls;
            watcher.reset();
        });
        watcher->check(false);
        watcher->check(false);
        QTRY_COMPARE(calls, 1);
        QVERIFY(!watcher);
        QCoreApplication::processEvents();
        QCOMPARE(calls, 1);
    }

    void checksOnTheRealQueue()
    {
        LinuxUtilityQueue queue;
        FakeKit kit({ .utility = &queue });
        kit.directories.folder("/home/someone", {});
        Watcher watcher(kit.kitServices);
        Told told(watcher);
        constexpr int checks = 50;
        for (int check = 0; check < checks; ++check)
            watcher.checkSoon();
        // Meanwhile the main thread checks as well, and asks for and changes what the checks go by.
        for (int round = 0; told.observations.size() < checks && round < 1000; ++round) {
            watcher.update({ .lowSpaceBytes = round, .enabled = true });
            static_cast<void>(watcher.lastObservation());
            static_cast<void>(watcher.lastNotifiedAt());
            QTest::qWait(1);
        }
        QTRY_COMPARE_WITH_TIMEOUT(told.observations.size(), checks, 20'000);
        for (const auto *thread : told.threads)
            QCOMPARE(thread, QThread::currentThread());
    }

    void watcherAndQueueMayEndInTheMidstOfChecks()
    {
        for (int round = 0; round < 20; ++round) {
            auto queue = std::make_unique<LinuxUtilityQueue>();
            FakeKit kit({ .utility = queue.get() });
            kit.directories.folder("/home/someone", {});
            auto watcher = std::make_unique<Watcher>(kit.kitServices);
            int told = 0;
            watcher->setOnObservation([&told](const Watcher::Observation &) { ++told; });
            for (int check = 0; check < 5; ++check)
                watcher->checkSoon();
            QTest::qWait(round % 4);
            watcher.reset();
            const auto toldByThen = told;
            queue.reset();
            QCoreApplication::processEvents();
            QCOMPARE(told, toldByThen);
        }
    }
};

QUILLBROOK_SUITE(TestWatcherChecks, QCoreApplication)
#include "tst_WatcherChecks.moc"

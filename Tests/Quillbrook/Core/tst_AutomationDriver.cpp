// What makes rules happen, over a made-up home folder, with a hand that removes as a test tells it to.

#include "Core/Background.h"
#include "Support/ScannedHome.h"
#include "Support/Suite.h"

#include <QSignalSpy>

#include <memory>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 mebibyte = 1'048'576;
constexpr qint64 gibibyte = 1024 * mebibyte;
constexpr auto packages = ".npm/_cacache";
constexpr auto logs = ".gradle/daemon";

// A disk that is 90 % full, with two things on it that may be cleared, and a driver of its own beside the
// model's, whose store stays empty.
struct Fixture : ScannedHome
{
    explicit Fixture(qint64 packageMebibytes = 3000, qint64 logMebibytes = 1100)
    {
        addPlace(packages, packageMebibytes);
        addPlace(logs, logMebibytes);
        volumes.answer = { .available = 50 * gibibyte, .total = 500 * gibibyte };
        start();
        scan();
    }

    void start()
    {
        driver = std::make_unique<AutomationDriver>(services,
            AutomationDriver::Others{ .scans = model.scans(),
                .navigation = model.navigation(),
                .volume = model.volume(),
                .removals = removals() });
    }

    [[nodiscard]] Finding finding(const std::string &name) const
    {
        for (const auto &found : model.scans().report()->findings)
            if (found.path.toStdString() == path(name))
                return found;
        qFatal("no finding at %s", name.c_str());
    }
    AutomationRule rule(
        const std::string &name, double trigger = 90, Cadence cadence = Cadence::everyTime) const
    {
        return driver->add(finding(name), trigger, cadence).value();
    }
    [[nodiscard]] const AutomationRule &stored(qsizetype index) const
    {
        return driver->store().rules().at(index);
    }

    /// What a rule moved, at this moment.
    void moved(const QString &label, qint64 bytes)
    {
        const auto path = trash.folder + "/files/" + label.toStdString();
        trash.things.insert(path);
        ledger.record({ TrashedItem::moved(
            { .label = label, .trashPath = path, .bytes = bytes, .movedAt = clock.moment })
                            .markedByRule() });
    }
    void used(qint64 gibibytesFree)
    {
        volumes.answer->available = gibibytesFree * gibibyte;
        scan();
    }

    QStringList cleared;
    QStringList failing;
    /// The answer waits for the test to give it.
    bool waits = false;
    std::function<void()> answer;
    TrashLedger ledger{ { .reading = memory(), .writing = memory(), .files = trash, .trash = trash },
        "/ledger" };
    std::unique_ptr<AutomationDriver> driver;

private:
    [[nodiscard]] RuleRemovals removals()
    {
        return {
            .clear = [this](const QList<Finding> &findings,
                         const RuleRemovals::Cleared &done) { clear(findings, done); },
            .due = [this](const QDateTime &now, qint64 free,
                       const RuleRemovals::Due &done) { done(ledger.ruleItemsDue(now, free)); },
            .purge = [this](const std::vector<TrashedItem> &items,
                         const RuleRemovals::Purged &done) { done(ledger.purge(items)); },
        };
    }
    MemoryFiles &memory() { return ScannedHome::stored; }

    void clear(const QList<Finding> &findings, const RuleRemovals::Cleared &done)
    {
        std::vector<Reclaimer::Outcome> outcomes;
        for (const auto &finding : findings) {
            cleared.append(finding.path);
            Reclaimer::Outcome outcome{ .finding = finding };
            if (failing.contains(finding.path)) {
                outcome.error = u"It is stuck."_s;
            } else {
                outcome.bytesMoved = finding.bytes;
                moved(finding.rule.id, finding.bytes);
            }
            outcomes.push_back(outcome);
        }
        answer = [done, outcomes] { done(outcomes); };
        if (!waits)
            answer();
    }
};

QString text(const Fixture &fixture, const char *name)
{
    return QString::fromStdString(fixture.path(name));
}

} // namespace

class TestAutomationDriver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsDueIsClearedInOrderAndTold()
    {
        Fixture fixture;
        fixture.rule(logs);
        fixture.rule(packages, 85, Cadence::once);
        const QSignalSpy scans(fixture.driver.get(), &AutomationDriver::diskChanged);
        fixture.driver->run();
        QCOMPARE(fixture.cleared, QStringList({ text(fixture, logs), text(fixture, packages) }));
        QCOMPARE(fixture.driver->log(),
            QStringList({ u"1.1 GB · Android build logs · disk was 90% full"_s,
                u"2.9 GB · Downloaded code packages · disk was 90% full"_s }));
        const QList<std::pair<QString, QString>> told{ { u"4.0 GB cleared automatically"_s,
            u"Your disk was 90% full. It stays in the Trash for a day in case you want anything back, then "
            u"it's "
            "removed for good."_s } };
        QCOMPARE(fixture.desktop.notifier.posted, told);
        QCOMPARE(scans.count(), 1);
        QCOMPARE(fixture.stored(0).timesFired, 1);
        QCOMPARE(fixture.stored(0).lastFiredAt, std::optional(fixture.clock.moment));
        QVERIFY(!fixture.stored(1).enabled);
        QCOMPARE(fixture.ledger.items().size(), size_t(2));
    }

    void nothingFiresForLittle_data()
    {
        QTest::addColumn<qint64>("mebibytes");
        QTest::addColumn<qint64>("gibibytesFree");
        QTest::addColumn<qint64>("timesFired");
        QTest::newRow("just large enough, on a disk just full enough")
            << qint64{ 200 } << qint64{ 50 } << qint64{ 1 };
        QTest::newRow("too small") << qint64{ 199 } << qint64{ 50 } << qint64{ 0 };
        QTest::newRow("not full enough") << qint64{ 200 } << qint64{ 51 } << qint64{ 0 };
    }
    void nothingFiresForLittle()
    {
        QFETCH(qint64, mebibytes);
        QFETCH(qint64, gibibytesFree);
        Fixture fixture(mebibytes);
        fixture.used(gibibytesFree);
        fixture.rule(packages);
        fixture.driver->run();
        QTEST(fixture.stored(0).timesFired, "timesFired");
        QCOMPARE(fixture.desktop.notifier.posted.size(), fixture.stored(0).timesFired);
        QCOMPARE(AutomationStore::worthClearing, qint64{ 209'715'200 });
    }

    void nothingHappensBeforeAReport()
    {
        FakeServices fake;
        AppModel model(fake.services);
        model.automation().run();
        QVERIFY(model.automation().log().isEmpty());
        QCOMPARE(model.automation().usedPercent(), 0.0);
    }

    void ruleThatFailsLetsTheNextFire()
    {
        Fixture fixture;
        fixture.rule(packages);
        fixture.rule(logs);
        fixture.failing = { text(fixture, packages) };
        fixture.driver->run();
        QCOMPARE(fixture.stored(0).timesFired, 0);
        QCOMPARE(fixture.stored(1).timesFired, 1);
        QCOMPARE(fixture.driver->log(), QStringList{ u"1.1 GB · Android build logs · disk was 90% full"_s });
        QCOMPARE(fixture.desktop.notifier.posted.first().first, u"1.1 GB cleared automatically"_s);
    }

    void whereAllFailNobodyIsTold()
    {
        Fixture fixture;
        fixture.rule(packages);
        fixture.failing = { text(fixture, packages) };
        const QSignalSpy scans(fixture.driver.get(), &AutomationDriver::diskChanged);
        fixture.volumes.askedPaths.clear();
        fixture.driver->run();
        QCOMPARE(fixture.cleared.size(), 1);
        QCOMPARE(scans.count(), 0);
        QVERIFY(fixture.driver->log().isEmpty());
        QVERIFY(fixture.desktop.notifier.posted.isEmpty());
        // The volume is asked for the first purge, and for no second one.
        QCOMPARE(fixture.volumes.askedPaths.size(), 1);
        QVERIFY(fixture.stored(0).enabled);
        // It is due again at the next chance.
        fixture.failing.clear();
        fixture.driver->run();
        QCOMPARE(fixture.stored(0).timesFired, 1);
    }

    void onANearlyFullDiskItGoesAtOnce()
    {
        Fixture fixture;
        fixture.used(4);
        fixture.rule(packages);
        fixture.rule(logs);
        fixture.driver->run();
        QCOMPARE(fixture.driver->log().last(), u"4.0 GB removed for good · 2 items a rule had moved"_s);
        QCOMPARE(fixture.desktop.notifier.posted.first().second,
            u"Your disk was nearly full, so it was removed right away. Everything a rule clears rebuilds itself."_s);
        QVERIFY(fixture.ledger.items().empty());
        QVERIFY(fixture.trash.things.empty());
    }

    void presetReachesWhatHasAppeared()
    {
        Fixture fixture;
        QVERIFY(fixture.driver->setPreset(AutomationPreset::builtIn().at(1), true));
        QCOMPARE(fixture.driver->store().rules().size(), 2);
        fixture.driver->remove(fixture.stored(0).id);
        const QSignalSpy changes(fixture.driver.get(), &AutomationDriver::rulesChanged);
        fixture.used(300);
        fixture.driver->run();
        QCOMPARE(changes.count(), 1);
        QCOMPARE(fixture.driver->store().rules().size(), 2);
        QVERIFY(fixture.cleared.isEmpty());
        // It removes none.
        fixture.model.scans().setScanRoot("/nowhere");
        fixture.scan();
        fixture.driver->run();
        QCOMPARE(fixture.driver->store().rules().size(), 2);
        QVERIFY(fixture.driver->setPreset(AutomationPreset::builtIn().at(1), false));
        QVERIFY(fixture.driver->store().rules().isEmpty());
    }

    void whatARuleMovedGoesAfterADay()
    {
        Fixture fixture;
        fixture.rule(packages, 99);
        fixture.moved(u"one"_s, 3 * mebibyte);
        fixture.clock.moment = fixture.clock.moment.addSecs(86'399);
        fixture.driver->tick();
        QVERIFY(fixture.driver->log().isEmpty());
        fixture.clock.moment = fixture.clock.moment.addSecs(1);
        fixture.driver->tick();
        QCOMPARE(
            fixture.driver->log(), QStringList{ u"3.0 MB removed for good · 1 item a rule had moved"_s });
        QVERIFY(fixture.trash.things.empty());
    }

    void whatCantGoForGoodIsNotToldOf()
    {
        Fixture fixture;
        fixture.rule(packages, 99);
        fixture.moved(u"one"_s, mebibyte);
        fixture.trash.stuck[fixture.trash.folder + "/files/one"] = u"It is stuck."_s;
        fixture.clock.moment = fixture.clock.moment.addDays(1);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"could not purge"_s));
        fixture.driver->tick();
        QVERIFY(fixture.driver->log().isEmpty());
    }

    void tickScansWhereTheDiskIsFullEnough_data()
    {
        QTest::addColumn<qint64>("gibibytesFree");
        QTest::addColumn<bool>("isOn");
        QTest::addColumn<bool>("scans");
        QTest::addColumn<bool>("purges");
        QTest::newRow("at the trigger") << qint64{ 50 } << true << true << true;
        QTest::newRow("just below it") << qint64{ 51 } << true << false << true;
        QTest::newRow("nothing is on") << qint64{ 50 } << false << false << false;
    }
    void tickScansWhereTheDiskIsFullEnough()
    {
        QFETCH(qint64, gibibytesFree);
        QFETCH(bool, isOn);
        QFETCH(bool, scans);
        Fixture fixture;
        fixture.rule(packages, 95);
        const auto rule = fixture.rule(logs, 90);
        fixture.driver->setEnabled(fixture.stored(0).id, isOn);
        fixture.driver->setEnabled(rule.id, isOn);
        fixture.moved(u"one"_s, mebibyte);
        fixture.clock.moment = fixture.clock.moment.addDays(2);
        const QSignalSpy asked(fixture.driver.get(), &AutomationDriver::diskChanged);
        fixture.volumes.answer->available = gibibytesFree * gibibyte;
        fixture.driver->tick();
        QCOMPARE(asked.count() == 1, scans);
        QTEST(fixture.trash.things.empty(), "purges");
        // It fires nothing itself.
        QVERIFY(fixture.cleared.isEmpty());
    }

    void tickStartsNoSecondScan()
    {
        Fixture fixture;
        fixture.rule(packages);
        const QSignalSpy asked(fixture.driver.get(), &AutomationDriver::diskChanged);
        fixture.model.scans().scan({});
        fixture.driver->tick();
        QCOMPARE(asked.count(), 0);
        QTRY_COMPARE(fixture.model.scans().phase().kind, Phase::Kind::ready);
    }

    void tickWithoutFiguresOfTheVolumeScansNothing()
    {
        FakeServices fake;
        fake.stored.files["/home/someone/.local/share/Quillbrook/automation-presets.json"]
            = R"(["preset.xcode"])";
        AppModel model(fake.services);
        model.automation().tick();
        QCOMPARE(model.scans().phase().kind, Phase::Kind::idle);
        // A preset of the host's counts before the first scan too.
        fake.volumes.answer = { .available = 5, .total = 100 };
        fake.stored.files["/home/someone/.local/share/Quillbrook/automation-presets.json"]
            = R"(["preset.own"])";
        fake.host.facts.catalogue.ownPresets = { { .id = u"preset.own"_s, .triggerUsedPercent = 95 } };
        AppModel again(fake.services);
        again.automation().tick();
        QTRY_COMPARE(again.scans().phase().kind, Phase::Kind::ready);
    }

    void clockTicksEveryHalfHour()
    {
        FakeServices fake;
        AppModel model(fake.services);
        const auto *clock = model.automation().findChild<QTimer *>(u"ruleClock"_s);
        QVERIFY(clock && !clock->isActive());
        model.startRuleClock();
        model.startRuleClock();
        QVERIFY(clock->isActive() && !clock->isSingleShot());
        QCOMPARE(clock->interval(), 1'800'000);
        QVERIFY(model.volume().findChild<QTimer *>(u"volumeClock"_s)->isActive());
    }

    void whatIsAskedMeanwhileWaits()
    {
        Fixture fixture;
        fixture.rule(packages);
        fixture.waits = true;
        fixture.driver->run();
        QCOMPARE(fixture.cleared.size(), 1);
        fixture.driver->run();
        fixture.driver->tick();
        QCOMPARE(fixture.cleared.size(), 1);
        // What the person does with the rule meanwhile holds.
        fixture.driver->remove(fixture.stored(0).id);
        fixture.answer();
        QVERIFY(fixture.driver->store().rules().isEmpty());
        QCOMPARE(fixture.driver->log().size(), 1);
        QCOMPARE(fixture.desktop.notifier.posted.size(), 1);
    }

    void answerAfterTheEndReachesNobody()
    {
        Fixture fixture;
        fixture.rule(packages);
        fixture.waits = true;
        fixture.driver->run();
        fixture.driver.reset();
        fixture.answer();
        QVERIFY(fixture.desktop.notifier.posted.isEmpty());
    }

    void largestOfWhatWasClearedIsOffered_data()
    {
        QTest::addColumn<qint64>("packageBytes");
        QTest::addColumn<qint64>("logBytes");
        QTest::addColumn<Safety>("safety");
        QTest::addColumn<QString>("offered");
        const auto first = u"npm.cacache"_s;
        QTest::newRow("the larger") << 2 * gibibyte << 3 * gibibyte << Safety::safe << u"gradle.daemon"_s;
        QTest::newRow("the first of two") << 2 * gibibyte << 2 * gibibyte << Safety::safe << first;
        QTest::newRow("just large enough") << gibibyte << gibibyte - 1 << Safety::safe << first;
        QTest::newRow("both too small") << gibibyte - 1 << gibibyte - 1 << Safety::safe << QString();
        QTest::newRow("one that does not rebuild itself")
            << 2 * gibibyte << 3 * gibibyte << Safety::careful << first;
    }
    void largestOfWhatWasClearedIsOffered()
    {
        QFETCH(qint64, packageBytes);
        QFETCH(qint64, logBytes);
        QFETCH(Safety, safety);
        Fixture fixture;
        auto one = fixture.finding(packages);
        auto other = fixture.finding(logs);
        one.bytes = packageBytes;
        other.bytes = logBytes;
        other.rule.safety = safety;
        fixture.driver->offerAfter({ one, other });
        QTEST(fixture.driver->offer() ? fixture.driver->offer()->rule.id : QString(), "offered");
    }

    void acceptedOfferIsARule()
    {
        Fixture fixture;
        fixture.driver->acceptOffer();
        fixture.driver->offerAfter({ fixture.finding(packages) });
        // A second clearance leaves the offer as it is.
        fixture.driver->offerAfter({ fixture.finding(logs) });
        QCOMPARE(fixture.driver->offer()->rule.id, u"npm.cacache"_s);
        fixture.driver->acceptOffer();
        QVERIFY(!fixture.driver->offer());
        QCOMPARE(fixture.stored(0).path, text(fixture, packages));
        QCOMPARE(fixture.stored(0).triggerUsedPercent, 90.0);
        QCOMPARE(fixture.stored(0).cadence, Cadence::everyTime);
        QCOMPARE(fixture.driver->log(),
            QStringList{ u"rule added · Downloaded code packages · when the disk is 90% full"_s });
        QCOMPARE(fixture.model.navigation().requestedPane(), std::optional(Pane::rules));
        // A rule is there from now on, switched on or not.
        fixture.driver->setEnabled(fixture.stored(0).id, false);
        fixture.driver->offerAfter({ fixture.finding(packages) });
        QVERIFY(!fixture.driver->offer());
    }

    void declinedOfferIsNotMadeAgain()
    {
        Fixture fixture;
        fixture.driver->declineOffer();
        fixture.driver->offerAfter({ fixture.finding(packages) });
        fixture.driver->declineOffer();
        QVERIFY(!fixture.driver->offer());
        QVERIFY(fixture.driver->store().rules().isEmpty());
        QCOMPARE(fixture.defaults.texts(u"Quillbrook.declinedAutomationOffers"_s),
            std::optional(QStringList{ u"npm.cacache"_s }));
        auto elsewhere = fixture.finding(packages);
        elsewhere.path = u"/home/someone/elsewhere"_s;
        fixture.driver->offerAfter({ elsewhere });
        QVERIFY(!fixture.driver->offer());
        fixture.start();
        fixture.driver->offerAfter({ elsewhere });
        QVERIFY(!fixture.driver->offer());
        fixture.driver->offerAfter({ fixture.finding(logs) });
        QVERIFY(fixture.driver->offer());
    }

    void looksOfTheWatcherAreCounted()
    {
        Fixture fixture;
        QCOMPARE(fixture.driver->looksAt(90), AutomationDriver::Looks());
        for (const qint64 free : { 10, 50, 51, 400 })
            fixture.driver->takeLook({ .freeBytes = free * gibibyte });
        QCOMPARE(fixture.driver->looksAt(90), (AutomationDriver::Looks{ .full = 2, .all = 4 }));
        QCOMPARE(fixture.driver->looksAt(99), (AutomationDriver::Looks{ .full = 0, .all = 4 }));
    }

    void modelCountsItsWatchersLooks()
    {
        Fixture fixture;
        Background background(fixture.services);
        fixture.model.watch().configureWatcher(background);
        fixture.model.watch().watcher().check(false);
        QTRY_COMPARE(
            fixture.model.automation().looksAt(90), (AutomationDriver::Looks{ .full = 1, .all = 1 }));
    }
};

QUILLBROOK_SUITE(TestAutomationDriver, QCoreApplication)
#include "tst_AutomationDriver.moc"

#include "Automation/AutomationStore.h"
#include "Support/FakeKit.h"
#include "Support/Suite.h"

#include <QTest>

#include <limits>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

const std::string folder = "/home/someone/.local/share/Quillbrook/";

Finding finding(const QString &ruleId, const QString &path, qint64 bytes, Safety safety = Safety::safe)
{
    return { .rule = { .id = ruleId, .title = u"Title of "_s + ruleId, .safety = safety },
        .path = path,
        .bytes = bytes };
}

const auto packages = finding(u"npm.cacache"_s, u"/home/someone/.npm/_cacache"_s, 3000);
const auto logs = finding(u"gradle.daemon"_s, u"/home/someone/.gradle/daemon"_s, 2000);
const auto pages = finding(u"browser.caches"_s, u"/home/someone/.cache/mozilla"_s, 1000);

const AutomationPreset &tools()
{
    return AutomationPreset::builtIn().at(1);
}

struct Fixture
{
    [[nodiscard]] AutomationStore open() const
    {
        return { kit.kitServices, AutomationStore::standardStore("/home/someone/.local/share") };
    }
    [[nodiscard]] QByteArray file(const std::string &name) const
    {
        const auto found = kit.stored.files.find(folder + name);
        return found == kit.stored.files.end() ? QByteArray() : found->second;
    }

    FakeKit kit;
    AutomationStore store = open();
    ReclaimReport report{ .findings = { packages, logs, pages } };
};

QStringList paths(const QList<AutomationStore::Due> &due)
{
    QStringList paths;
    for (const auto &[rule, finding] : due)
        paths.append(finding.path);
    return paths;
}

QStringList paths(const QList<Finding> &findings)
{
    QStringList paths;
    for (const auto &finding : findings)
        paths.append(finding.path);
    return paths;
}

} // namespace

class TestAutomationStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aRuleIsMadeAndComesBack()
    {
        Fixture fixture;
        const auto made = fixture.store.add(packages, 96, Cadence::once);
        QVERIFY(made);
        QCOMPARE(made->ruleId, u"npm.cacache"_s);
        QCOMPARE(made->path, packages.path);
        QVERIFY(made->enabled && !made->lastFiredAt && made->timesFired == 0);
        QCOMPARE(fixture.open().rules(), QList{ *made });
        QCOMPARE(fixture.file("automation-presets.json"), "[]");
        // Whoever asks for a second one gets it.
        QVERIFY(fixture.store.add(packages, 96, Cadence::once));
        QCOMPARE(fixture.store.rules().size(), 2);
        fixture.store.remove(made->id);
        QCOMPARE(fixture.open().rules().size(), 1);
    }

    void whatDoesNotRebuildItselfIsRefused_data()
    {
        QTest::addColumn<Safety>("safety");
        QTest::newRow("careful") << Safety::careful;
        QTest::newRow("only shown") << Safety::reportOnly;
    }
    void whatDoesNotRebuildItselfIsRefused()
    {
        QFETCH(Safety, safety);
        Fixture fixture;
        auto refused = packages;
        refused.rule.safety = safety;
        const auto made = fixture.store.add(refused, 90, Cadence::everyTime);
        QVERIFY(!made);
        QCOMPARE(made.error().description(),
            u"\"Title of npm.cacache\" cannot be automated. Only things that rebuild themselves with no "
            u"action "
            "from you are eligible."_s);
        QCOMPARE(made.error().translated(), made.error().description());
        QVERIFY(fixture.store.rules().isEmpty());
        QCOMPARE(fixture.kit.stored.writes, 0);
    }

    void updateReplacesWhatIsThere()
    {
        Fixture fixture;
        auto rule = *fixture.store.add(packages, 90, Cadence::everyTime);
        rule.enabled = false;
        fixture.store.update(rule);
        QCOMPARE(fixture.open().rules(), QList{ rule });
        const auto writes = fixture.kit.stored.writes;
        rule.id = u"another"_s;
        fixture.store.update(rule);
        QCOMPARE(fixture.store.rules().size(), 1);
        QCOMPARE(fixture.kit.stored.writes, writes);
    }

    void dueGoesByFullnessAndByWhatIsThere_data()
    {
        QTest::addColumn<double>("used");
        QTest::addColumn<Finding>("found");
        QTest::addColumn<bool>("isDue");
        auto other = packages;
        QTest::newRow("at the trigger") << 90.0 << packages << true;
        QTest::newRow("above it") << 99.0 << packages << true;
        QTest::newRow("just below it") << 89.9 << packages << false;
        QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << packages << false;
        other.bytes = 2000;
        QTest::newRow("just large enough") << 90.0 << other << true;
        other.bytes = 1999;
        QTest::newRow("too small") << 90.0 << other << false;
        other = packages;
        other.path += u"/."_s;
        QTest::newRow("at another path") << 90.0 << other << false;
        other = packages;
        other.rule.id = u"other"_s;
        QTest::newRow("of another rule") << 90.0 << other << false;
        other = packages;
        other.rule.safety = Safety::careful;
        QTest::newRow("not safe any more") << 90.0 << other << false;
        other = packages;
        other.redirectedOffVolume = true;
        QTest::newRow("a link by now") << 90.0 << other << false;
    }
    void dueGoesByFullnessAndByWhatIsThere()
    {
        QFETCH(double, used);
        QFETCH(Finding, found);
        QFETCH(bool, isDue);
        Fixture fixture;
        const auto rule = *fixture.store.add(packages, 90, Cadence::everyTime);
        const auto due = fixture.store.due(used, { .findings = { found } }, 2000);
        QCOMPARE(due.size(), isDue ? 1 : 0);
        if (isDue)
            QCOMPARE(due.first(), AutomationStore::Due(rule, found));
    }

    void dueFollowsTheOrderOfTheRules()
    {
        Fixture fixture;
        QVERIFY(fixture.store.add(pages, 90, Cadence::everyTime));
        QVERIFY(fixture.store.add(packages, 95, Cadence::everyTime));
        auto off = *fixture.store.add(logs, 90, Cadence::everyTime);
        QVERIFY(fixture.store.add(logs, 80, Cadence::everyTime));
        off.enabled = false;
        fixture.store.update(off);
        QCOMPARE(paths(fixture.store.due(92, fixture.report, 0)), QStringList({ pages.path, logs.path }));
    }

    void firingJustOnceSpendsARule()
    {
        Fixture fixture;
        const auto once = *fixture.store.add(packages, 90, Cadence::once);
        const auto always = *fixture.store.add(logs, 95, Cadence::everyTime);
        QCOMPARE(fixture.store.lowestTrigger({}), std::optional(90.0));
        const auto writes = fixture.kit.stored.writes;
        fixture.store.markFired({ once, always });
        QCOMPARE(fixture.kit.stored.writes, writes + 2);
        QCOMPARE(fixture.store.rules().first().lastFiredAt, std::optional(fixture.kit.clock.moment));
        QCOMPARE(fixture.store.rules().first().timesFired, 1);
        QVERIFY(!fixture.store.rules().first().enabled);
        QVERIFY(fixture.store.rules().last().enabled);
        QCOMPARE(paths(fixture.store.due(100, fixture.report, 0)), QStringList{ logs.path });
        QCOMPARE(fixture.store.lowestTrigger({}), std::optional(95.0));
        QCOMPARE(fixture.open().rules(), fixture.store.rules());
        // One that has gone meanwhile counts nothing.
        fixture.store.remove(always.id);
        fixture.store.markFired({ always });
        QCOMPARE(fixture.store.rules().size(), 1);
    }

    void countOfFiringsStopsAtItsEnd()
    {
        Fixture fixture;
        auto rule = *fixture.store.add(packages, 90, Cadence::everyTime);
        rule.timesFired = std::numeric_limits<qint64>::max();
        fixture.store.update(rule);
        fixture.store.markFired({ rule });
        QCOMPARE(fixture.store.rules().first().timesFired, std::numeric_limits<qint64>::max());
    }

    void suggestionsAreWhatHasNoRuleYet()
    {
        Fixture fixture;
        auto off = *fixture.store.add(logs, 90, Cadence::everyTime);
        off.enabled = false;
        fixture.store.update(off);
        auto shown = finding(u"ios.backups"_s, u"/home/someone/backups"_s, 9000, Safety::reportOnly);
        auto link = pages;
        link.redirectedOffVolume = true;
        fixture.report.findings += { shown, link };
        QCOMPARE(paths(fixture.store.suggestions(fixture.report, 1001)), QStringList{ packages.path });
        QCOMPARE(paths(fixture.store.suggestions(fixture.report, 1000)),
            QStringList({ packages.path, pages.path }));
    }

    void presetCoversWhatIsSafeAndHere()
    {
        Fixture fixture;
        auto careful = finding(u"npm.cacache"_s, u"/home/someone/other"_s, 70, Safety::careful);
        fixture.report.findings.append(careful);
        QCOMPARE(paths(AutomationStore::findings(tools(), fixture.report)),
            QStringList({ packages.path, logs.path }));
        QCOMPARE(AutomationStore::bytes(tools(), fixture.report), 5000);
        fixture.report.findings.first().redirectedOffVolume = true;
        QCOMPARE(AutomationStore::bytes(tools(), fixture.report), 2000);
    }

    void applyingMakesARuleForEachThingOnce()
    {
        Fixture fixture;
        const auto own = *fixture.store.add(logs, 70, Cadence::once);
        QCOMPARE(fixture.store.apply(tools(), fixture.report).value_or(-1), 1);
        QVERIFY(fixture.store.isOn(tools()));
        QCOMPARE(fixture.store.rules().first(), own);
        QCOMPARE(fixture.store.rules().last().path, packages.path);
        QCOMPARE(fixture.store.rules().last().triggerUsedPercent, 90.0);
        QCOMPARE(fixture.store.rules().last().cadence, Cadence::everyTime);
        const auto writes = fixture.kit.stored.writes;
        QCOMPARE(fixture.store.apply(tools(), fixture.report).value_or(-1), 0);
        QCOMPARE(fixture.kit.stored.writes, writes);
        const auto again = fixture.open();
        QVERIFY(again.isOn(tools()));
        QCOMPARE(again.rules(), fixture.store.rules());
    }

    void presetIsOnAlsoWhereItFindsNothing()
    {
        Fixture fixture;
        QVERIFY(!fixture.store.hasAnythingOn());
        QCOMPARE(fixture.store.apply(tools(), {}).value_or(-1), 0);
        QVERIFY(fixture.store.hasAnythingOn());
        QVERIFY(fixture.store.rules().isEmpty());
        QCOMPARE(fixture.store.lowestTrigger(AutomationPreset::builtIn()), std::optional(90.0));
        QVERIFY(!fixture.store.lowestTrigger({}));
        // What appears later gets its rule; only where the preset is on.
        fixture.store.refreshPresets(AutomationPreset::builtIn(), fixture.report);
        QCOMPARE(fixture.store.rules().size(), 2);
    }

    void revokingTakesThePersonsOwnRulesToo()
    {
        Fixture fixture;
        QVERIFY(fixture.store.add(packages, 99, Cadence::once));
        QVERIFY(fixture.store.add(pages, 99, Cadence::once));
        QVERIFY(fixture.store.apply(tools(), fixture.report));
        fixture.store.revoke(tools());
        QVERIFY(!fixture.open().isOn(tools()));
        QCOMPARE(fixture.open().rules().size(), 1);
        QCOMPARE(fixture.store.rules().first().path, pages.path);
    }

    void wouldClearWhatWouldBeDue()
    {
        Fixture fixture;
        QCOMPARE(fixture.store.wouldClear(tools(), fixture.report, 0), 5000);
        QCOMPARE(fixture.store.wouldClear(tools(), fixture.report, 2001), 3000);
        auto own = *fixture.store.add(packages, 90, Cadence::once);
        QCOMPARE(fixture.store.wouldClear(tools(), fixture.report, 0), 5000);
        own.triggerUsedPercent = 91;
        fixture.store.update(own);
        QCOMPARE(fixture.store.wouldClear(tools(), fixture.report, 0), 2000);
        own.triggerUsedPercent = 90;
        own.enabled = false;
        fixture.store.update(own);
        QCOMPARE(fixture.store.wouldClear(tools(), fixture.report, 0), 2000);
        // The same, by doing it.
        QVERIFY(fixture.store.apply(tools(), fixture.report));
        QCOMPARE(paths(fixture.store.due(90, fixture.report, 0)), QStringList{ logs.path });
        QCOMPARE(AutomationStore::wouldClear(logs, 2000), 2000);
        QCOMPARE(AutomationStore::wouldClear(logs, 2001), 0);
    }

    void oneDamagedFileLeavesTheOther()
    {
        Fixture fixture;
        QVERIFY(fixture.store.apply(tools(), fixture.report));
        auto damaged = fixture.file("automation.json");
        fixture.kit.stored.files[folder + "automation.json"] = damaged.replace("everyTime", "always");
        auto store = fixture.open();
        QVERIFY(store.rules().isEmpty());
        QVERIFY(store.isOn(tools()));
        QCOMPARE(fixture.file("automation.json"), damaged);
        QVERIFY(store.add(pages, 90, Cadence::once));
        QCOMPARE(fixture.open().rules().size(), 1);
        fixture.kit.stored.files[folder + "automation-presets.json"] = "{}";
        QCOMPARE(fixture.open().rules().size(), 1);
        QVERIFY(fixture.open().presetsOn().isEmpty());
    }

    void whatCantBeWrittenHoldsForThisRun()
    {
        Fixture fixture;
        QVERIFY(fixture.store.add(packages, 90, Cadence::once));
        const auto before = fixture.kit.stored.files;
        fixture.kit.stored.isFull = true;
        QVERIFY(fixture.store.add(logs, 90, Cadence::once));
        QCOMPARE(fixture.store.rules().size(), 2);
        QVERIFY(fixture.kit.stored.files == before);
        fixture.kit.stored.isFull = false;
        QVERIFY(fixture.store.apply(tools(), {}));
        QCOMPARE(fixture.open().rules().size(), 2);
    }

    // Whoever wrote the file: what fires is what the report holds and calls safe.
    void tamperedFileClearsAtWorstWhatIsSafe()
    {
        Fixture fixture;
        const QByteArray rule
            = R"({"id":"0B9A2C1E-5D3F-4A6B-8C7D-112233445566","ruleID":"RULE","path":"PATH",)"
              R"("triggerUsedPercent":TRIGGER,"cadence":"everyTime","enabled":true,"timesFired":0})";
        const auto row = [&rule](const char *ruleId, const char *path, const char *trigger) {
            return QByteArray(rule).replace("RULE", ruleId).replace("PATH", path).replace("TRIGGER", trigger);
        };
        QByteArrayList rows{ row("npm.cacache", "/etc", "0"), row("npm.cacache", "/home/someone", "-1e300"),
            row("npm.cacache", "/home/someone/.npm/_cacache/../../Documents", "0"),
            row("npm.cacache", "/home/someone/.npm/_cacache/", "0"), row("npm.cacache", "", "0"),
            row("gradle.caches", "/home/someone/.gradle/caches", "0"),
            row("ios.backups", "/home/someone/.npm/_cacache", "0"),
            row("npm.cacache", "/home/someone/.npm/_cacache", "1e300") };
        while (rows.size() < 10'000)
            rows.append(row("npm.cacache", "/home/someone/.npm/_cacache\\u0000/etc", "0"));
        rows.append(row("npm.cacache", "/home/someone/.npm/_cacache", "-5"));
        fixture.kit.stored.files[folder + "automation.json"] = '[' + rows.join(',') + ']';
        const auto store = fixture.open();
        QCOMPARE(store.rules().size(), 10'001);
        fixture.report.findings.append(
            finding(u"gradle.caches"_s, u"/home/someone/.gradle/caches"_s, 9000, Safety::careful));
        QCOMPARE(paths(store.due(0, fixture.report, 0)), QStringList{ packages.path });
    }

    void fileOfMegabytesIsNone()
    {
        Fixture fixture;
        fixture.kit.stored.files[folder + "automation.json"]
            = QByteArray(qsizetype{ 17 } * 1024 * 1024, ' ') + "[]";
        fixture.kit.stored.files[folder + "automation-presets.json"] = R"(["preset.xcode"])";
        QVERIFY(fixture.open().rules().isEmpty());
        QCOMPARE(fixture.open().presetsOn(), QSet<QString>{ u"preset.xcode"_s });
    }
};

QUILLBROOK_SUITE(TestAutomationStore, QCoreApplication)
#include "tst_AutomationStore.moc"

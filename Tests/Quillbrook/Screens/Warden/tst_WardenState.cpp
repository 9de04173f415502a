// What the screen lists of a scan, and what a person ticks there.

#include "Screens/Warden/WardenRows.h"
#include "Screens/Warden/WardenState.h"
#include "Support/ScannedHome.h"
#include "Support/Suite.h"

#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using Kind = WardenLines::Kind;

namespace {

// A home folder with two findings that come back by themselves, one that costs something, one that is only
// shown.
struct Fixture : ScannedHome
{
    Fixture()
    {
        addPlace(".gradle/daemon", 30);
        addPlace(".npm/_cacache", 50);
        addPlace(".pub-cache", 70);
        addPlace("Downloads", 90);
    }

    /// The list's row of a finding, by its title.
    [[nodiscard]] int row(const QString &title) const
    {
        const auto &rows = warden.rows()->rows();
        for (int row = 0; row < rows.size(); ++row)
            if (rows.at(row).kind == Kind::Finding && rows.at(row).title == title)
                return row;
        return -1;
    }
    [[nodiscard]] const WardenRow &line(const QString &title) const
    {
        return warden.rows()->rows().at(row(title));
    }
    [[nodiscard]] QStringList chosenTitles() const
    {
        QStringList titles;
        for (const auto &finding : warden.chosenFindings())
            titles.append(finding.displayTitle());
        return titles;
    }

    mutable WardenState warden{ model };
    const QString logs = u"Android build logs"_s;
    const QString packages = u"Downloaded code packages"_s;
};

} // namespace

class TestWardenState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutAReportThereIsNothing()
    {
        const Fixture fixture;
        QCOMPARE(fixture.warden.total(), u"0 B selected"_s);
        QCOMPARE(fixture.warden.counts(), u"0 of 0 reclaimable items"_s);
        QVERIFY(fixture.warden.chosenFindings().isEmpty());
        QVERIFY(!fixture.warden.canReclaim());
        for (const auto &row : fixture.warden.rows()->rows())
            QCOMPARE(row.kind, Kind::Banner);
    }

    void newFindingsArriveTicked()
    {
        Fixture fixture;
        fixture.scan();
        QCOMPARE(fixture.chosenTitles(), QStringList({ fixture.packages, fixture.logs }));
        QCOMPARE(fixture.warden.total(), u"80.0 MB selected"_s);
        QCOMPARE(fixture.warden.counts(), u"2 of 3 reclaimable items"_s);
        QVERIFY(fixture.line(fixture.packages).ticked);
    }

    void carefulOnesWaitForTheirTick()
    {
        Fixture fixture;
        fixture.scan();
        int careful = 0;
        for (int row = 0; row < fixture.warden.rows()->rowCount(); ++row) {
            const auto &line = fixture.warden.rows()->rows().at(row);
            if (line.kind != Kind::Finding || line.size != "70.0 MB")
                continue;
            ++careful;
            QVERIFY(line.selectable);
            QVERIFY(!line.ticked);
            fixture.warden.toggle(row);
            QCOMPARE(fixture.warden.total(), u"150 MB selected"_s);
            QCOMPARE(fixture.warden.counts(), u"3 of 3 reclaimable items"_s);
        }
        QCOMPARE(careful, 1);
    }

    void reportOnlyOnesNeverCount()
    {
        Fixture fixture;
        fixture.scan();
        const auto row = static_cast<int>(fixture.warden.rows()->rowCount() - 1);
        QCOMPARE(fixture.warden.rows()->rows().at(row).size, u"90.0 MB"_s);
        QVERIFY(!fixture.warden.rows()->rows().at(row).selectable);
        fixture.warden.toggle(row);
        QCOMPARE(fixture.warden.total(), u"80.0 MB selected"_s);
        QVERIFY(!fixture.warden.touched());
    }

    void tickingChangesTheSum()
    {
        Fixture fixture;
        fixture.scan();
        QSignalSpy changes(&fixture.warden, &WardenState::selectionChanged);
        fixture.warden.toggle(fixture.row(fixture.packages));
        QCOMPARE(changes.count(), 1);
        QVERIFY(fixture.warden.touched());
        QVERIFY(!fixture.line(fixture.packages).ticked);
        QCOMPARE(fixture.warden.total(), u"30.0 MB selected"_s);
        fixture.warden.toggle(fixture.row(fixture.packages));
        QVERIFY(fixture.line(fixture.packages).ticked);
        QCOMPARE(fixture.warden.total(), u"80.0 MB selected"_s);
    }

    void ticksOfThePersonsOwnStandThroughARescan()
    {
        Fixture fixture;
        fixture.scan();
        fixture.warden.toggle(fixture.row(fixture.packages));
        fixture.scan();
        QCOMPARE(fixture.chosenTitles(), QStringList{ fixture.logs });
    }

    void untouchedTicksFollowARescan()
    {
        Fixture fixture;
        fixture.scan();
        fixture.addPlace(".cache/none", 1);
        fixture.addPlace("Library/Caches/pip", 10);
        fixture.scan();
        QCOMPARE(fixture.warden.chosenFindings().size(), 3);
    }

    void appearingTicksTheDefaultsAgain()
    {
        Fixture fixture;
        fixture.scan();
        fixture.warden.toggle(fixture.row(fixture.packages));
        fixture.warden.setShown(false);
        fixture.warden.setShown(true);
        QCOMPARE(fixture.chosenTitles(), QStringList({ fixture.packages, fixture.logs }));
        QVERIFY(fixture.warden.touched());
    }

    void idsOfNothingAreIgnored()
    {
        Fixture fixture;
        fixture.scan();
        fixture.warden.toggle(fixture.row(fixture.packages));
        fixture.warden.toggle(fixture.row(fixture.packages));
        const auto ticked = fixture.warden.chosen();
        // What was ticked is gone from the disk.
        fixture.files.entries.erase(fixture.path(".npm/_cacache"));
        fixture.directories.folder(fixture.path(".npm/_cacache"), {});
        fixture.scan();
        QCOMPARE(fixture.warden.chosen(), ticked);
        QCOMPARE(fixture.chosenTitles(), QStringList{ fixture.logs });
        QCOMPARE(fixture.warden.counts(), u"1 of 2 reclaimable items"_s);
    }

    void placeIsShownOnDemand()
    {
        Fixture fixture;
        fixture.scan();
        const auto row = fixture.row(fixture.logs);
        QVERIFY(!fixture.line(fixture.logs).pathShown);
        QCOMPARE(fixture.line(fixture.logs).path, u"~/.gradle/daemon"_s);
        fixture.warden.togglePath(row);
        QVERIFY(fixture.line(fixture.logs).pathShown);
        QVERIFY(!fixture.warden.touched());
        fixture.warden.togglePath(row);
        QVERIFY(!fixture.line(fixture.logs).pathShown);
    }

    void revealShowsTheFolder()
    {
        Fixture fixture;
        fixture.scan();
        fixture.warden.reveal(fixture.row(fixture.logs));
        fixture.warden.reveal(static_cast<int>(fixture.warden.rows()->rowCount() - 1));
        QCOMPARE(fixture.desktop.revealer.revealed,
            (std::vector<std::string>{ fixture.path(".gradle/daemon"), fixture.path("Downloads") }));
    }

    void revealShowsTheRawPath()
    {
        Fixture fixture;
        fixture.directories.folder("/caf\xE9", { FakeDirectories::aFolder(".npm") });
        fixture.directories.folder("/caf\xE9/.npm", { FakeDirectories::aFolder("_cacache") });
        fixture.directories.folder("/caf\xE9/.npm/_cacache", { FakeDirectories::aFile("f", 8192) });
        fixture.model.scans().setScanRoot("/caf\xE9");
        fixture.scan();
        fixture.warden.reveal(fixture.row(fixture.packages));
        QCOMPARE(fixture.desktop.revealer.revealed, std::vector<std::string>{ "/caf\xE9/.npm/_cacache" });
    }

    void rowsOutsideDoNothing()
    {
        Fixture fixture;
        fixture.scan();
        for (const int row : { -1, 0, fixture.warden.rows()->rowCount() }) {
            fixture.warden.toggle(row);
            fixture.warden.togglePath(row);
            fixture.warden.reveal(row);
        }
        QVERIFY(!fixture.warden.touched());
        QVERIFY(fixture.desktop.revealer.revealed.empty());
    }

    void offerStandsAsLongAsTheScopeIsQuiet()
    {
        Fixture fixture;
        QCOMPARE(fixture.warden.rows()->rows().first().kind, Kind::Banner);
        fixture.scan(Scope::quiet);
        QCOMPARE(fixture.warden.rows()->rows().first().kind, Kind::Banner);
        fixture.scan(Scope::complete);
        QCOMPARE(fixture.warden.rows()->rows().first().kind, Kind::Heading);
    }

    void offerScansEverything()
    {
        Fixture fixture;
        fixture.scan(Scope::quiet);
        fixture.warden.act(0);
        QCOMPARE(fixture.model.scans().phase().kind, Phase::Kind::scanning);
        QCOMPARE(fixture.model.scans().scope(), Scope::complete);
        QTRY_COMPARE(fixture.model.scans().phase().kind, Phase::Kind::ready);
    }

    void emptyDiskSaysSo()
    {
        ScannedHome home;
        const WardenState warden(home.model);
        home.scan();
        QCOMPARE(warden.emptyMessage(), u"Nothing to clear was found."_s);
        home.addPlace(".npm/_cacache", 50);
        home.scan();
        QCOMPARE(warden.emptyMessage(), QString());
    }

    void offerOfARuleIsTakenOrRefused_data()
    {
        QTest::addColumn<int>("button");
        QTest::addColumn<qsizetype>("rules");
        QTest::newRow("taken") << 0 << qsizetype{ 1 };
        QTest::newRow("refused") << 1 << qsizetype{ 0 };
    }
    void offerOfARuleIsTakenOrRefused()
    {
        QFETCH(int, button);
        Fixture fixture;
        fixture.scan();
        auto cleared = fixture.warden.chosenFindings().first();
        cleared.bytes = AutomationStore::worthAutomating;
        fixture.model.automation().offerAfter({ cleared });
        const auto &rows = fixture.warden.rows()->rows();
        const auto row = std::ranges::find(rows, WardenRows::automationOfferBanner, &WardenRow::id);
        QVERIFY(row != rows.end());
        fixture.warden.act(static_cast<int>(row - rows.begin()), button);
        QVERIFY(!fixture.model.automation().offer());
        QVERIFY(std::ranges::find(rows, WardenRows::automationOfferBanner, &WardenRow::id) == rows.end());
        QTEST(fixture.model.automation().store().rules().size(), "rules");
    }
};

QUILLBROOK_SUITE(TestWardenState, QCoreApplication)
#include "tst_WardenState.moc"

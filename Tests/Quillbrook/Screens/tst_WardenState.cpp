#include "Screens/WardenRows.h"
#include "Screens/WardenState.h"
#include "Support/ScannedHome.h"

#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
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
    const QString logs = QStringLiteral("Android build logs");
    const QString packages = QStringLiteral("Downloaded code packages");
};

} // namespace

class WardenStateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutAReportThereIsNothing();
    void newFindingsArriveTicked();
    void carefulOnesWaitForTheirTick();
    void reportOnlyOnesNeverCount();
    void tickingChangesTheSum();
    void ticksOfThePersonsOwnStandThroughARescan();
    void untouchedTicksFollowARescan();
    void appearingTicksTheDefaultsAgain();
    void idsOfNothingAreIgnored();
    void placeIsShownOnDemand();
    void revealShowsTheFolder();
    void rowsOutsideDoNothing();
    void offerStandsAsLongAsTheScopeIsQuiet();
    void offerScansEverything();
    void emptyDiskSaysSo();
    void logIsListed();
};

void WardenStateTest::withoutAReportThereIsNothing()
{
    const Fixture fixture;
    QCOMPARE(fixture.warden.total(), QStringLiteral("0 B selected"));
    QCOMPARE(fixture.warden.counts(), QStringLiteral("0 of 0 reclaimable items"));
    QVERIFY(fixture.warden.chosenFindings().isEmpty());
    for (const auto &row : fixture.warden.rows()->rows())
        QCOMPARE(row.kind, Kind::CompleteScanOffer);
}

void WardenStateTest::newFindingsArriveTicked()
{
    Fixture fixture;
    fixture.scan();
    QCOMPARE(fixture.chosenTitles(), QStringList({ fixture.packages, fixture.logs }));
    QCOMPARE(fixture.warden.total(), QStringLiteral("80.0 MB selected"));
    QCOMPARE(fixture.warden.counts(), QStringLiteral("2 of 3 reclaimable items"));
    QVERIFY(fixture.line(fixture.packages).ticked);
}

void WardenStateTest::carefulOnesWaitForTheirTick()
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
        QCOMPARE(fixture.warden.total(), QStringLiteral("150 MB selected"));
        QCOMPARE(fixture.warden.counts(), QStringLiteral("3 of 3 reclaimable items"));
    }
    QCOMPARE(careful, 1);
}

void WardenStateTest::reportOnlyOnesNeverCount()
{
    Fixture fixture;
    fixture.scan();
    const auto row = static_cast<int>(fixture.warden.rows()->rowCount() - 1);
    QCOMPARE(fixture.warden.rows()->rows().at(row).size, QStringLiteral("90.0 MB"));
    QVERIFY(!fixture.warden.rows()->rows().at(row).selectable);
    fixture.warden.toggle(row);
    QCOMPARE(fixture.warden.total(), QStringLiteral("80.0 MB selected"));
    QVERIFY(!fixture.warden.touched());
}

void WardenStateTest::tickingChangesTheSum()
{
    Fixture fixture;
    fixture.scan();
    QSignalSpy changes(&fixture.warden, &WardenState::selectionChanged);
    fixture.warden.toggle(fixture.row(fixture.packages));
    QCOMPARE(changes.count(), 1);
    QVERIFY(fixture.warden.touched());
    QVERIFY(!fixture.line(fixture.packages).ticked);
    QCOMPARE(fixture.warden.total(), QStringLiteral("30.0 MB selected"));
    fixture.warden.toggle(fixture.row(fixture.packages));
    QVERIFY(fixture.line(fixture.packages).ticked);
    QCOMPARE(fixture.warden.total(), QStringLiteral("80.0 MB selected"));
}

void WardenStateTest::ticksOfThePersonsOwnStandThroughARescan()
{
    Fixture fixture;
    fixture.scan();
    fixture.warden.toggle(fixture.row(fixture.packages));
    fixture.scan();
    QCOMPARE(fixture.chosenTitles(), QStringList{ fixture.logs });
}

void WardenStateTest::untouchedTicksFollowARescan()
{
    Fixture fixture;
    fixture.scan();
    fixture.addPlace(".cache/none", 1);
    fixture.addPlace("Library/Caches/pip", 10);
    fixture.scan();
    QCOMPARE(fixture.warden.chosenFindings().size(), 3);
}

void WardenStateTest::appearingTicksTheDefaultsAgain()
{
    Fixture fixture;
    fixture.scan();
    fixture.warden.toggle(fixture.row(fixture.packages));
    fixture.warden.appear();
    QCOMPARE(fixture.chosenTitles(), QStringList({ fixture.packages, fixture.logs }));
    QVERIFY(fixture.warden.touched());
}

void WardenStateTest::idsOfNothingAreIgnored()
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
    QCOMPARE(fixture.warden.counts(), QStringLiteral("1 of 2 reclaimable items"));
}

void WardenStateTest::placeIsShownOnDemand()
{
    Fixture fixture;
    fixture.scan();
    const auto row = fixture.row(fixture.logs);
    QVERIFY(!fixture.line(fixture.logs).pathShown);
    QCOMPARE(fixture.line(fixture.logs).path, QStringLiteral("~/.gradle/daemon"));
    fixture.warden.togglePath(row);
    QVERIFY(fixture.line(fixture.logs).pathShown);
    QVERIFY(!fixture.warden.touched());
    fixture.warden.togglePath(row);
    QVERIFY(!fixture.line(fixture.logs).pathShown);
}

void WardenStateTest::revealShowsTheFolder()
{
    Fixture fixture;
    fixture.scan();
    fixture.warden.reveal(fixture.row(fixture.logs));
    fixture.warden.reveal(static_cast<int>(fixture.warden.rows()->rowCount() - 1));
    QCOMPARE(fixture.revealer.revealed,
        (std::vector<std::string>{ fixture.path(".gradle/daemon"), fixture.path("Downloads") }));
}

void WardenStateTest::rowsOutsideDoNothing()
{
    Fixture fixture;
    fixture.scan();
    for (const int row : { -1, 0, fixture.warden.rows()->rowCount() }) {
        fixture.warden.toggle(row);
        fixture.warden.togglePath(row);
        fixture.warden.reveal(row);
    }
    QVERIFY(!fixture.warden.touched());
    QVERIFY(fixture.revealer.revealed.empty());
}

void WardenStateTest::offerStandsAsLongAsTheScopeIsQuiet()
{
    Fixture fixture;
    QCOMPARE(fixture.warden.rows()->rows().first().kind, Kind::CompleteScanOffer);
    fixture.scan(Scope::quiet);
    QCOMPARE(fixture.warden.rows()->rows().first().kind, Kind::CompleteScanOffer);
    fixture.scan(Scope::complete);
    QCOMPARE(fixture.warden.rows()->rows().first().kind, Kind::Heading);
}

void WardenStateTest::offerScansEverything()
{
    Fixture fixture;
    fixture.scan(Scope::quiet);
    fixture.warden.scanEverything();
    QCOMPARE(fixture.model.phase().kind, Phase::Kind::scanning);
    QCOMPARE(fixture.model.scope(), Scope::complete);
    QTRY_COMPARE(fixture.model.phase().kind, Phase::Kind::ready);
}

void WardenStateTest::emptyDiskSaysSo()
{
    ScannedHome home;
    const WardenState warden(home.model);
    home.scan();
    QCOMPARE(warden.emptyMessage(), QStringLiteral("Nothing to clear was found."));
    home.addPlace(".npm/_cacache", 50);
    home.scan();
    QCOMPARE(warden.emptyMessage(), QString());
}

void WardenStateTest::logIsListed()
{
    Fixture fixture;
    fixture.scan();
    fixture.model.setReclaimLog({ "✓ done" });
    QCOMPARE(fixture.warden.rows()->rows().last().kind, Kind::LogLine);
    QCOMPARE(fixture.warden.rows()->rows().last().title, QStringLiteral("✓ done"));
}

QTEST_GUILESS_MAIN(WardenStateTest)
#include "tst_WardenState.moc"

#include "Scan/Format.h"
#include "Screens/Theme.h"
#include "Screens/Warden/WardenRows.h"
#include "Support/Suite.h"

#include <QTest>

#include <limits>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using Kind = WardenLines::Kind;

namespace {

const QDateTime now(QDate(2024, 6, 15), QTime(12, 0), Qt::UTC);

Finding finding(const QString &id, Safety safety, qint64 kibibytes)
{
    return { .id = id,
        .rule = { .id = id,
            .title = "Title of " + id,
            .what = "What it is.",
            .regenerates = "How it comes back.",
            .safety = safety },
        .path = "/home/someone/.cache/" + id,
        .bytes = kibibytes * 1024,
        .created = now.addDays(-400),
        .lastModified = now.addDays(-1),
        .meetsStalenessForDeletion = true };
}

HeldItem inTrash(const QString &label, qint64 bytes)
{
    return { .item = { .id = label,
                 .label = label,
                 .originalPath = "/home/someone/x/" + label.toStdString(),
                 .bytes = bytes,
                 .movedAt = now.addDays(-2) } };
}

struct Fixture
{
    [[nodiscard]] QList<WardenRow> rows() const
    {
        return WardenRows::rows({ .report = report,
            .chosen = chosen,
            .pathShown = pathShown,
            .safetyNet = safetyNet,
            .verification = verification,
            .stayedReasons = reasons,
            .automationOffer = offer,
            .held = held,
            .heldRows = heldRows,
            .heldShown = heldShown,
            .heldBack = heldBack,
            .offersCompleteScan = offers,
            .log = log,
            .home = "/home/someone",
            .now = now });
    }
    [[nodiscard]] QList<Kind> kinds() const
    {
        QList<Kind> kinds;
        for (const auto &row : rows())
            kinds.append(row.kind);
        return kinds;
    }

    std::optional<ReclaimReport> report = ReclaimReport{};
    QSet<QString> chosen;
    QSet<QString> pathShown;
    std::optional<SafetyNet> safetyNet;
    std::optional<Verification> verification;
    QStringList reasons;
    std::vector<HeldItem> held;
    mutable HeldRows heldRows;
    bool heldShown = false;
    QSet<QString> heldBack;
    std::optional<Finding> offer;
    bool offers = false;
    QStringList log;
};

} // namespace

class TestWardenRows : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingWithoutAReport()
    {
        Fixture fixture;
        fixture.report.reset();
        QVERIFY(fixture.rows().isEmpty());
        QVERIFY(WardenRows::actionable(fixture.report).isEmpty());
        QVERIFY(WardenRows::defaultSelection(fixture.report).isEmpty());
    }

    void offerStandsFirst()
    {
        Fixture fixture;
        fixture.offers = true;
        fixture.report->findings = { finding("a", Safety::safe, 1) };
        QCOMPARE(fixture.kinds(), QList<Kind>({ Kind::Banner, Kind::Heading, Kind::Finding }));
    }

    void bannersStandInTheirOrder()
    {
        Fixture fixture;
        fixture.safetyNet = SafetyNet{};
        fixture.verification = Verification{};
        fixture.held = { inTrash("a", 1) };
        fixture.offer = Finding();
        fixture.offers = true;
        QStringList ids;
        for (const auto &row : fixture.rows())
            ids.append(row.id);
        QCOMPARE(ids,
            QStringList({ "safetyNet", "verification", "automationOffer", "pendingTrash", "completeScan" }));
    }

    void missingBackupIsToldOnlyWhenKnown()
    {
        Fixture fixture;
        QVERIFY(fixture.rows().isEmpty());
        fixture.safetyNet = SafetyNet{ .localSnapshotCount = 1 };
        QVERIFY(fixture.rows().isEmpty());
        fixture.safetyNet = SafetyNet{ .hasTimeMachineDestination = true };
        QVERIFY(fixture.rows().isEmpty());
        fixture.safetyNet = SafetyNet{};
        const auto row = fixture.rows().value(0);
        QCOMPARE(row.title, u"This Mac has no backup"_s);
        QCOMPARE(row.what,
            u"No Time Machine destination and no local snapshots. Everything Quillbrook removes goes to the "
            "Trash and can be put back from there — but once the Trash is emptied it is gone for good. On "
            "a modern Mac, no recovery tool can bring it back."_s);
        QVERIFY(row.tinted);
        QCOMPARE(row.action, QString());
    }

    void verificationIsGoodFromNineTenths_data()
    {
        QTest::addColumn<qint64>("claimed");
        QTest::addColumn<qint64>("before");
        QTest::addColumn<qint64>("after");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("text");
        const QString barely
            = " Either it is still in the Trash, or something else wrote to the disk at the same time — a "
              "build running in the background will do it. Rescan to see the current picture.";
        QTest::newRow("exactly nine tenths")
            << qint64(1000) << qint64(100) << qint64(1000) << "900 B actually freed"
            << "Free space went 100 B → 1000 B. Measured, not estimated.";
        QTest::newRow("just below") << qint64(1000) << qint64(100) << qint64(999)
                                    << "Removed 1000 B, but free space barely moved"
                                    << "Free space went 100 B → 999 B." + barely;
        QTest::newRow("more than claimed")
            << qint64(1000) << qint64(0) << qint64(2048) << "2.0 KB actually freed"
            << "Free space went 0 B → 2.0 KB. Measured, not estimated.";
        QTest::newRow("less free than before")
            << qint64(10) << qint64(500) << qint64(400) << "Removed 10 B, but free space barely moved"
            << "Free space went 500 B → 400 B." + barely;
        QTest::newRow("nothing claimed")
            << qint64(0) << qint64(100) << qint64(200) << "Removed 0 B, but free space barely moved"
            << "Free space went 100 B → 200 B." + barely;
    }

    void verificationIsGoodFromNineTenths()
    {
        QFETCH(qint64, claimed);
        QFETCH(qint64, before);
        QFETCH(qint64, after);
        QFETCH(QString, title);
        QFETCH(QString, text);
        Fixture fixture;
        fixture.verification
            = Verification{ .claimedBytes = claimed, .freeBefore = before, .freeAfter = after };
        const auto row = fixture.rows().value(0);
        QCOMPARE(row.title, title);
        QCOMPARE(row.what, text);
        QCOMPARE(row.action, u"Dismiss"_s);
        QCOMPARE(row.tone, fixture.verification->isGood() ? Theme::safe() : Theme::careful());
    }

    void offerOfARuleSaysWhatItMeans()
    {
        Fixture fixture;
        fixture.offer = Finding{ .rule = { .title = u"Saved web pages"_s },
            .bytes = 3 * 1'073'741'824LL,
            .locationLabel = u"Chrome"_s };
        const auto row = fixture.rows().first();
        QCOMPARE(row.title, u"Do this again on its own?"_s);
        QCOMPARE(row.what,
            u"Saved web pages · Chrome was 3.0 GB, and it comes back. Quillbrook can clear it whenever the "
            u"disk "
            "reaches 90% full."_s);
        QCOMPARE(
            row.note, u"To the Trash, never permanently · only this one item · off again in one click"_s);
        QCOMPARE(row.symbol, u"wand.and.stars"_s);
        QCOMPARE(row.tone, Theme::accent());
        QCOMPARE(
            QStringList({ row.action, row.otherAction }), QStringList({ u"Turn it on"_s, u"No thanks"_s }));
    }

    void pendingTrashTellsHowMuchOfOurs()
    {
        Fixture fixture;
        fixture.held = { inTrash("a", 3072), inTrash("b", 512) };
        const auto row = fixture.rows().value(0);
        QCOMPARE(row.title, u"3.5 KB is in the Trash, still taking up space"_s);
        QCOMPARE(row.what,
            u"The Trash sits on the same volume, so the space only comes back once it is emptied. Quillbrook "
            "will remove only the 2 items it moved — never anything else you have thrown away."_s);
        QCOMPARE(row.action, u"Put back"_s);
        QCOMPARE(row.otherAction, u"Finish removing"_s);
        // What only failed removals moved can be put back and nothing else.
        for (auto &each : fixture.held)
            each.isOnlyInJournal = true;
        QCOMPARE(fixture.rows().value(0).title, u"3.5 KB went to the Trash by removals that failed"_s);
        QCOMPARE(fixture.rows().value(0).otherAction, QString());
    }

    void whatTakesNoSpaceInTheTrashIsNotTold()
    {
        Fixture fixture;
        fixture.held = { inTrash("empty", 0) };
        QVERIFY(fixture.rows().isEmpty());
        fixture.held.push_back(inTrash("a", 512));
        QCOMPARE(fixture.rows().value(0).title, u"512 B is in the Trash, still taking up space"_s);
    }

    void sizesThatCannotBeTrueAddUpToTheMost_data()
    {
        QTest::addColumn<bool>("isOnlyInJournal");
        QTest::newRow("rows of the ledger") << false;
        QTest::newRow("what removals that failed moved") << true;
    }
    void sizesThatCannotBeTrueAddUpToTheMost()
    {
        QFETCH(bool, isOnlyInJournal);
        constexpr auto most = std::numeric_limits<qint64>::max();
        Fixture fixture;
        fixture.held = { inTrash("a", most), inTrash("b", 1) };
        for (auto &each : fixture.held)
            each.isOnlyInJournal = isOnlyInJournal;
        QVERIFY(fixture.rows().value(0).title.startsWith(Format::bytes(most)));
    }

    void whySpaceStayedIsOneLineMore()
    {
        Fixture fixture;
        fixture.verification = Verification{ .claimedBytes = 10 };
        fixture.reasons = { u"One."_s, u"Two."_s };
        QCOMPARE(fixture.rows().value(0).note, u"One. Two."_s);
    }

    void sectionsGoBySafetyAndHaveOnlyWhatIsThere()
    {
        Fixture fixture;
        fixture.report->findings
            = { finding("kept", Safety::reportOnly, 9), finding("costly", Safety::careful, 5),
                  finding("free", Safety::safe, 2), finding("freer", Safety::safe, 1) };
        QStringList titles;
        for (const auto &row : fixture.rows())
            titles.append(row.title);
        QCOMPARE(titles,
            QStringList({ "Safe to remove", "Title of free", "Title of freer", "Worth a thought",
                "Title of costly", "Never suggested", "Title of kept" }));

        fixture.report->findings = { finding("costly", Safety::careful, 5) };
        QCOMPARE(fixture.kinds(), QList<Kind>({ Kind::Heading, Kind::Finding }));
    }

    void headingTellsClassSumAndColour()
    {
        Fixture fixture;
        fixture.report->findings = { finding("a", Safety::safe, 3), finding("b", Safety::careful, 2),
            finding("c", Safety::safe, 2), finding("d", Safety::reportOnly, 1) };
        const auto rows = fixture.rows();
        QCOMPARE(rows.at(0).size, u"5.0 KB"_s);
        QCOMPARE(rows.at(0).note, QString());
        QCOMPARE(rows.at(0).tone, Theme::safe());
        QCOMPARE(rows.at(3).tone, Theme::careful());
        QCOMPARE(rows.at(5).tone, Theme::label());
    }

    void shownOnlySectionSaysThatNothingIsPicked()
    {
        Fixture fixture;
        fixture.report->findings = { finding("a", Safety::reportOnly, 3) };
        QCOMPARE(fixture.rows().first().note, u"· Quillbrook never picks these"_s);
    }

    void linkDoesNotCountInTheSum()
    {
        Fixture fixture;
        fixture.report->findings = { finding("a", Safety::safe, 3), finding("b", Safety::safe, 2) };
        fixture.report->findings[0].redirectedOffVolume = true;
        QCOMPARE(fixture.rows().first().size, u"2.0 KB"_s);
    }

    void findingTellsAllAboutItself()
    {
        Fixture fixture;
        fixture.report->findings = { finding("a", Safety::safe, 3) };
        fixture.chosen = { "a" };
        fixture.pathShown = { "a" };
        const WardenRow expected{ .kind = Kind::Finding,
            .id = "a",
            .title = "Title of a",
            .size = "3.0 KB",
            .ages = "Created over a year ago · last used yesterday",
            .what = "What it is.",
            .regenerates = "How it comes back.",
            .path = "~/.cache/a",
            .selectable = true,
            .ticked = true,
            .pathShown = true,
            .first = true,
            .last = true };
        QCOMPARE(fixture.rows().at(1), expected);
    }

    void namesStayOnTheirLineAndInTheirDirection()
    {
        Fixture fixture;
        fixture.report->findings = { finding("a", Safety::safe, 3) };
        fixture.report->findings[0].locationLabel = u"two\nlines\u202egpj"_s;
        fixture.report->findings[0].path = u"/home/someone/\u2067b"_s;
        QCOMPARE(fixture.rows().at(1).title, u"Title of a \u00b7 two lines gpj"_s);
        QCOMPARE(fixture.rows().at(1).path, u"~/ b"_s);

        auto held = inTrash("a", 1);
        held.item.label = u"two\nlines\u202egpj"_s;
        held.item.originalPath = "/home/someone/a\nb";
        const auto row = WardenRows::heldRow(held, u"/home/someone"_s, QDateTime::currentDateTime());
        QCOMPARE(row.title, u"two lines gpj"_s);
        QCOMPARE(row.path, u"~/a b"_s);
    }

    void unknownDatesAreSaidToBe()
    {
        Fixture fixture;
        fixture.report->findings = { finding("a", Safety::safe, 3) };
        fixture.report->findings[0].created.reset();
        fixture.report->findings[0].lastModified.reset();
        QCOMPARE(fixture.rows().at(1).ages, u"Created unknown · last used unknown"_s);
    }

    void findingThatIsNotOldEnoughIsNotShown()
    {
        Fixture fixture;
        fixture.report->findings = { finding("a", Safety::careful, 3) };
        fixture.report->findings[0].meetsStalenessForDeletion = false;
        QVERIFY(fixture.rows().isEmpty());
        QVERIFY(WardenRows::actionable(fixture.report).isEmpty());
    }

    void whatCannotBePickedHasNoTick_data()
    {
        QTest::addColumn<int>("safety");
        QTest::addColumn<bool>("isLink");
        QTest::addColumn<bool>("selectable");
        QTest::newRow("safe") << int(Safety::safe) << false << true;
        QTest::newRow("careful") << int(Safety::careful) << false << true;
        QTest::newRow("shown only") << int(Safety::reportOnly) << false << false;
        QTest::newRow("a link") << int(Safety::safe) << true << false;
        QTest::newRow("a link that is shown only") << int(Safety::reportOnly) << true << false;
    }

    void whatCannotBePickedHasNoTick()
    {
        QFETCH(int, safety);
        QFETCH(bool, isLink);
        QFETCH(bool, selectable);
        Fixture fixture;
        fixture.report->findings = { finding("a", Safety(safety), 3) };
        fixture.report->findings[0].redirectedOffVolume = isLink;
        fixture.chosen = { "a" };
        QCOMPARE(fixture.rows().at(1).selectable, selectable);
        QCOMPARE(fixture.rows().at(1).ticked, selectable);
        QCOMPARE(WardenRows::actionable(fixture.report).size(), selectable ? 1 : 0);
    }

    void linkSaysWhereItLives()
    {
        Fixture fixture;
        fixture.report->findings = { finding("a", Safety::safe, 3) };
        QCOMPARE(fixture.rows().at(1).note, QString());
        fixture.report->findings[0].redirectedOffVolume = true;
        QCOMPARE(fixture.rows().at(1).note,
            u"This folder actually lives on another drive, so clearing it frees nothing here."_s);
    }

    void cardsAreRoundAtTheirEnds()
    {
        Fixture fixture;
        fixture.report->findings = { finding("a", Safety::safe, 3), finding("b", Safety::safe, 2),
            finding("c", Safety::safe, 1), finding("d", Safety::careful, 1) };
        QList<std::pair<bool, bool>> ends;
        for (const auto &row : fixture.rows())
            if (row.kind == Kind::Finding)
                ends.append({ row.first, row.last });
        QCOMPARE(ends,
            (QList<std::pair<bool, bool>>{
                { true, false }, { false, false }, { false, true }, { true, true } }));
    }

    void logComesLast()
    {
        Fixture fixture;
        fixture.log = { "✓ first", "✗ second\nline" };
        fixture.report->findings = { finding("a", Safety::safe, 3) };
        QCOMPARE(fixture.kinds(),
            QList<Kind>({ Kind::Heading, Kind::Finding, Kind::LogHeading, Kind::LogLine, Kind::LogLine }));
        QCOMPARE(fixture.rows().at(2).title.toUpper(), u"ACTIVITY"_s);
        QCOMPARE(fixture.rows().at(3).title, u"✓ first"_s);
        QCOMPARE(fixture.rows().at(4).title, u"✗ second line"_s);
    }

    void defaultsAreTheSafeOnesAlone()
    {
        Fixture fixture;
        fixture.report->findings = { finding("a", Safety::safe, 3), finding("b", Safety::careful, 2),
            finding("c", Safety::reportOnly, 1), finding("d", Safety::safe, 1) };
        fixture.report->findings[3].redirectedOffVolume = true;
        QCOMPARE(WardenRows::defaultSelection(fixture.report), QSet<QString>{ "a" });
    }

    void staleIdsAreIgnored()
    {
        Fixture fixture;
        fixture.report->findings = { finding("a", Safety::safe, 3) };
        fixture.chosen = { "gone" };
        fixture.pathShown = { "gone" };
        QVERIFY(!fixture.rows().at(1).ticked);
        QVERIFY(!fixture.rows().at(1).pathShown);
    }

    void linesAreCalledByTheirWords()
    {
        Fixture fixture;
        fixture.report->findings = { finding("a", Safety::safe, 3), finding("b", Safety::reportOnly, 2) };
        fixture.report->findings[0].redirectedOffVolume = true;
        fixture.log = { "✓ done" };
        QStringList spoken;
        for (const auto &row : fixture.rows())
            spoken.append(row.spoken());
        QCOMPARE(spoken,
            QStringList({ "Safe to remove, 0 B", "Title of a, 3.0 KB",
                "Never suggested, 2.0 KB, · Quillbrook never picks these", "Title of b, 2.0 KB", "Activity",
                "✓ done" }));
    }
};

QUILLBROOK_SUITE(TestWardenRows, QCoreApplication)
#include "tst_WardenRows.moc"

#include "Core/Background.h"
#include "Screens/Rules/RulesState.h"
#include "Screens/Theme.h"
#include "Support/ScannedHome.h"
#include "Support/Suite.h"

#include <QSignalSpy>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

using Kind = RulesLines::Kind;

constexpr qint64 gibibyte = 1'073'741'824;

// A disk that is 80 % full: packages that a preset covers, and a cache that none does.
struct Screen : ScannedHome
{
    explicit Screen(bool scans = true)
        : rules(model)
    {
        host.facts.catalogue.rules = { { .rule = { .id = u"media.cache"_s,
                                             .title = u"Film cache"_s,
                                             .what = u"Comes with cutting films."_s,
                                             .safety = Safety::safe,
                                             .paths = { u"Videos/cache"_s } },
            .locations = { { u"Videos/cache"_s, u"Films"_s } } } };
        addPlace(".npm/_cacache", 2048);
        addPlace("Videos/cache", 1024);
        fill(80);
        if (scans)
            scan();
        rules.setShown(true);
    }

    void fill(qint64 percent) { volumes.answer = { .available = 100 - percent, .total = 100 }; }

    /// The words of all rows of a kind, each row's joined.
    [[nodiscard]] QStringList words(Kind kind)
    {
        QStringList words;
        for (const auto &row : rules.rows()->rows())
            if (row.kind == kind) {
                QStringList parts{ row.title, row.caption, row.note, row.size };
                parts.removeAll(QString());
                words.append(parts.join(u" | "_s));
            }
        return words;
    }
    /// The position of the first row of a kind with those words in it; -1 where there is none.
    [[nodiscard]] int row(Kind kind, const QString &title = {})
    {
        const auto &all = rules.rows()->rows();
        for (int position = 0; position < all.size(); ++position)
            if (all.at(position).kind == kind && all.at(position).title.contains(title))
                return position;
        return -1;
    }
    [[nodiscard]] const QList<AutomationRule> &stored() { return model.automation().store().rules(); }

    RulesState rules;
};

const auto tools = u"Keep build tools in check"_s;

} // namespace

class TestRulesState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutAReportItSaysSo()
    {
        Screen screen(false);
        QCOMPARE(screen.words(Kind::Section),
            QStringList({ u"Ready to turn on"_s, u"Your rules"_s, u"Worth automating"_s }));
        QCOMPARE(screen.words(Kind::Sentence),
            QStringList({ u"Scan first and these will fill in."_s,
                u"None yet. Turn on one above, or pick something from the list below."_s,
                u"Nothing here is both large and safe enough to automate right now."_s }));
        QVERIFY(screen.words(Kind::Suggestion).isEmpty());
    }

    void whereNoPresetAppliesItSaysSo()
    {
        Screen screen(false);
        screen.model.scans().setScanRoot("/home/someone/Projects");
        screen.scan();
        QVERIFY(screen.words(Kind::Sentence)
                    .contains(u"None of these apply to this Mac — nothing they cover is here."_s));
    }

    void presetSaysWhatItWouldClear()
    {
        Screen screen;
        QCOMPARE(screen.words(Kind::Preset),
            QStringList{
                tools + u" | 1 item · when the disk is 90% full | Would clear 2.0 GB now. | 2.0 GB"_s });
        screen.model.automation().takeLook({ .freeBytes = 5 });
        screen.model.automation().takeLook({ .freeBytes = 50 });
        QVERIFY(screen.words(Kind::Preset)
                    .first()
                    .contains(u"Would clear 2.0 GB now. The disk stood at 90% or more in 1 of 2 looks."_s));
        QCOMPARE(screen.rules.rows()->at(screen.row(Kind::Preset))->tone, Theme::safe());
    }

    void onAFullDiskItSaysWhatComes_data()
    {
        QTest::addColumn<qint64>("percent");
        QTest::addColumn<QString>("note");
        const auto already
            = u"Your disk is already %1% full, so this runs on the next scan and clears 2.0 GB "
              "straight away."_s;
        QTest::newRow("at its trigger") << qint64{ 90 } << already.arg(90);
        QTest::newRow("above it") << qint64{ 97 } << already.arg(97);
        QTest::newRow("below it") << qint64{ 89 } << u"Would clear 2.0 GB now."_s;
    }
    void onAFullDiskItSaysWhatComes()
    {
        QFETCH(qint64, percent);
        Screen screen;
        screen.fill(percent);
        screen.scan();
        QTEST(screen.rules.rows()->at(screen.row(Kind::Preset))->note, "note");
        screen.rules.setOn(screen.row(Kind::Preset), true);
        QVERIFY(screen.rules.rows()->at(screen.row(Kind::Preset))->note.isEmpty());
    }

    void switchedPresetMakesAndTakesRules()
    {
        Screen screen;
        screen.rules.setOn(screen.row(Kind::Preset), true);
        QVERIFY(screen.rules.rows()->at(screen.row(Kind::Preset))->on);
        QCOMPARE(screen.stored().size(), 1);
        QCOMPARE(screen.words(Kind::Rule), QStringList{ u"Downloaded code packages | Has not fired yet"_s });
        // It shows also where nothing is left.
        screen.model.scans().setScanRoot("/home/someone/Projects");
        screen.scan();
        QCOMPARE(screen.words(Kind::Preset),
            QStringList{ tools + u" | On · nothing to clear right now · when the disk is 90% full"_s });
        screen.rules.act(screen.row(Kind::Preset));
        QVERIFY(screen.stored().isEmpty());
        QVERIFY(screen.words(Kind::Preset).isEmpty());
    }

    void ruleSaysWhatItDid()
    {
        Screen screen;
        screen.rules.setOn(screen.row(Kind::Preset), true);
        auto rule = screen.stored().first();
        screen.fill(95);
        screen.clock.moment = screen.clock.moment.addDays(-3);
        // Its folder is not on this machine: nothing moves, and nothing fails.
        screen.scan();
        QTRY_COMPARE(screen.words(Kind::LogLine).size(), 1);
        screen.clock.moment = screen.clock.moment.addDays(3);
        screen.rules.recheck();
        QCOMPARE(screen.words(Kind::Rule),
            QStringList{ u"Downloaded code packages | Fired 1× · last 3 days ago"_s });
        QCOMPARE(screen.rules.rows()->at(screen.row(Kind::Rule))->text,
            u"When the disk is 90% full, clear it · every time"_s);
        QCOMPARE(screen.words(Kind::Section).at(1), u"What rules have done"_s);
        QCOMPARE(screen.words(Kind::LogLine),
            QStringList{ u"0 B · Downloaded code packages · disk was 95% full"_s });
    }

    void ruleIsSwitchedAndRemoved()
    {
        Screen screen;
        screen.rules.setOn(screen.row(Kind::Preset), true);
        screen.rules.act(screen.row(Kind::Rule));
        QVERIFY(!screen.stored().first().enabled);
        QVERIFY(!screen.rules.rows()->at(screen.row(Kind::Rule))->on);
        screen.rules.setOn(screen.row(Kind::Rule), true);
        QVERIFY(screen.stored().first().enabled);
        screen.rules.remove(screen.row(Kind::Rule));
        QVERIFY(screen.stored().isEmpty());
        // Other rows do nothing.
        screen.rules.remove(0);
        screen.rules.setOn(-1, true);
        screen.rules.act(1000);
        screen.rules.automate(screen.row(Kind::Preset));
        QVERIFY(!screen.rules.editor()->isOpen());
    }

    void ruleOfAnUnknownKindIsNamedByItsId()
    {
        Screen screen(false);
        auto finding = Finding{ .rule = { .id = u"gone.rule"_s, .safety = Safety::safe }, .path = u"/x"_s };
        QVERIFY(screen.model.automation().add(finding, 90, Cadence::once));
        QCOMPARE(screen.words(Kind::Rule), QStringList{ u"gone.rule | Has not fired yet"_s });
    }

    // Presets have theirs covered, on or off.
    void suggestionsAreWhatNoPresetCovers()
    {
        Screen screen;
        QCOMPARE(screen.words(Kind::Suggestion), QStringList{ u"Film cache | 1.0 GB"_s });
    }

    void editorMakesARule()
    {
        Screen screen;
        auto &editor = *screen.rules.editor();
        screen.rules.act(screen.row(Kind::Suggestion));
        QVERIFY(editor.isOpen());
        QCOMPARE(editor.heading(), u"Automate Film cache"_s);
        QCOMPARE(editor.what(), u"Comes with cutting films."_s);
        QCOMPARE(editor.thresholdLabel(), u"Clear it when the disk reaches 96%"_s);
        QCOMPARE(editor.dryRun(), u"Would clear 1.0 GB now."_s);
        QCOMPARE(editor.cadences(), QStringList({ u"Every time"_s, u"Just once"_s }));
        screen.model.automation().takeLook({ .freeBytes = 25 });
        editor.setThreshold(74.6);
        QCOMPARE(
            editor.dryRun(), u"Would clear 1.0 GB now. The disk stood at 75% or more in 1 of 1 looks."_s);
        editor.setCadence(1);
        editor.create();
        QVERIFY(!editor.isOpen());
        QCOMPARE(screen.stored().first().triggerUsedPercent, 75.0);
        QCOMPARE(screen.stored().first().cadence, Cadence::once);
        QVERIFY(screen.words(Kind::Suggestion).isEmpty());
        QCOMPARE(screen.words(Kind::Rule), QStringList{ u"Film cache | Has not fired yet"_s });
    }

    void thresholdStaysInItsBounds_data()
    {
        QTest::addColumn<double>("asked");
        QTest::addColumn<double>("threshold");
        QTest::newRow("least") << 70.0 << 70.0;
        QTest::newRow("below") << 12.0 << 70.0;
        QTest::newRow("most") << 99.0 << 99.0;
        QTest::newRow("above") << 250.0 << 99.0;
        QTest::newRow("no number") << qQNaN() << 96.0;
    }
    void thresholdStaysInItsBounds()
    {
        QFETCH(double, asked);
        Screen screen;
        screen.rules.editor()->setThreshold(asked);
        QTEST(screen.rules.editor()->threshold(), "threshold");
    }

    void editorStaysWhereNoRuleCanBeMade()
    {
        Screen screen;
        auto &editor = *screen.rules.editor();
        editor.open({ .rule = { .title = u"Film cache"_s, .safety = Safety::careful } });
        editor.create();
        QVERIFY(editor.isOpen());
        QCOMPARE(editor.problem(),
            u"\"Film cache\" cannot be automated. Only things that rebuild themselves with no action from "
            u"you are "
            "eligible."_s);
        QVERIFY(screen.stored().isEmpty());
        editor.cancel();
        QVERIFY(!editor.isOpen() && editor.problem().isEmpty());
    }

    void leavingTheScreenClosesTheEditor()
    {
        Screen screen;
        auto &editor = *screen.rules.editor();
        screen.rules.automate(screen.row(Kind::Suggestion));
        editor.setThreshold(80);
        screen.rules.setShown(false);
        QVERIFY(!editor.isOpen());
        screen.rules.setShown(true);
        QCOMPARE(editor.threshold(), 96.0);
    }

    void rowsOfTheSameThingsStay()
    {
        Screen screen;
        QSignalSpy resets(screen.rules.rows(), &QAbstractItemModel::modelReset);
        QSignalSpy removed(screen.rules.rows(), &QAbstractItemModel::rowsRemoved);
        QSignalSpy inserted(screen.rules.rows(), &QAbstractItemModel::rowsInserted);
        screen.rules.setOn(screen.row(Kind::Preset), true);
        // The sentence of no rules makes room for the first one, and nothing else moves.
        QCOMPARE(resets.count() + removed.count() + inserted.count(), 2);
        QCOMPARE(removed.first().at(1).toInt(), removed.first().at(2).toInt());
        QVERIFY(screen.rules.rows()->takesKeyboard(screen.row(Kind::Rule)));
        QVERIFY(!screen.rules.rows()->takesKeyboard(screen.row(Kind::Section)));
    }
};

QUILLBROOK_SUITE(TestRulesState, QGuiApplication)
#include "tst_RulesState.moc"

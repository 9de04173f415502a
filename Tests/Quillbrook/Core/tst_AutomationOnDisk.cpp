// Rules that fire on real files in a temporary home folder.

#include "Support/HomeOnDisk.h"
#include "Support/Suite.h"

#include <fcntl.h>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

constexpr off_t mebibyte = 1'048'576;
constexpr qint64 gibibyte = 1'073'741'824;
constexpr auto packages = ".npm/_cacache";
constexpr auto logs = ".gradle/daemon";

// A disk that is 90 % full, with two things on it that are worth clearing, and much else.
struct Fixture : HomeOnDisk
{
    explicit Fixture(const std::string &data = "data")
        : HomeOnDisk(data)
    {
        large("home/.npm/_cacache/one", 150 * mebibyte);
        large("home/.npm/_cacache/two", 60 * mebibyte);
        large("home/.gradle/daemon/log", 201 * mebibyte);
        tree.file("home/Documents/thesis.txt", 4096);
        free(50);
        scan();
    }

    /// Takes room on the disk, in no time.
    void large(const std::string &name, off_t bytes) const
    {
        tree.file(name);
        const int file = ::open(tree.path(name).c_str(), O_WRONLY | O_CLOEXEC);
        if (::posix_fallocate(file, 0, bytes) != 0)
            qFatal("no room for %s", name.c_str());
        ::close(file);
    }
    void free(qint64 gibibytes)
    {
        volumes.answer = { .available = gibibytes * gibibyte, .total = 500 * gibibyte };
    }

    /// Waits until rules have nothing more to do: a scan, what they clear, what goes for good, and a scan
    /// again.
    void calm() const
    {
        for (int stage = 0; stage < 4; ++stage) {
            QTest::qWait(50);
            settled();
        }
    }
    void tick() const
    {
        model->automation().tick();
        calm();
    }

    void addRule(const std::string &name, Cadence cadence = Cadence::everyTime) const
    {
        QVERIFY(model->automation().add(finding(name), 90, cadence));
    }
    [[nodiscard]] const AutomationRule &rule() const { return model->automation().store().rules().first(); }
    [[nodiscard]] const QStringList &log() const { return model->automation().log(); }
    [[nodiscard]] const std::vector<TrashedItem> &rows() const { return model->books().ledger().items(); }
};

} // namespace

class TestAutomationOnDisk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void scanEndsInWhatRulesClear()
    {
        Fixture fixture;
        fixture.addRule(packages);
        fixture.scan();
        fixture.calm();
        QVERIFY(fixture.has(packages));
        QVERIFY(!fixture.has(".npm/_cacache/one"));
        QVERIFY(fixture.isTrashed("one") && fixture.isTrashed("two"));
        QVERIFY(fixture.has(".gradle/daemon/log"));
        QVERIFY(fixture.has("Documents/thesis.txt"));
        QCOMPARE(fixture.rows().size(), size_t(2));
        for (const auto &row : fixture.rows())
            QVERIFY(row.byRule.value_or(false));
        QCOMPARE(fixture.log(), QStringList{ u"210 MB · Downloaded code packages · disk was 90% full"_s });
        QCOMPARE(fixture.desktop.notifier.posted.size(), 1);
        // It was measured again, and what has gone is not due a second time.
        QCOMPARE(fixture.model->scans().report()->findings.size(), 1);
        QCOMPARE(fixture.rule().timesFired, 1);
        // None of it is told as the person's own doing.
        QVERIFY(fixture.model->reclaims().reclaimLog().isEmpty());
        QVERIFY(!fixture.model->reclaims().freeNowOffer());
        QCOMPARE(fixture.model->books().reclaimedSoFar(), 0);
        QVERIFY(!fixture.model->automation().offer());
    }

    void aDayLaterItIsGone()
    {
        Fixture fixture;
        fixture.addRule(packages);
        fixture.scan();
        fixture.calm();
        // The same after a restart: the books say who moved it.
        fixture.start();
        fixture.free(300);
        fixture.scan();
        fixture.tick();
        QVERIFY(fixture.isTrashed("one"));
        fixture.clock.moment = fixture.clock.moment.addDays(1);
        fixture.tick();
        QVERIFY(!fixture.isTrashed("one") && !fixture.isTrashed("two"));
        QCOMPARE(fixture.log(), QStringList{ u"210 MB removed for good · 2 items a rule had moved"_s });
        QVERIFY(fixture.rows().empty());
    }

    void whatIsKeptOutlivesItsDay()
    {
        Fixture fixture;
        fixture.addRule(packages);
        fixture.scan();
        fixture.calm();
        fixture.free(300);
        const auto kept = fixture.model->books().held().front().item;
        fixture.model->books().toggleKept(kept.id);
        fixture.clock.moment = fixture.clock.moment.addDays(1);
        fixture.tick();
        QVERIFY(fixture.isTrashed("one") && !fixture.isTrashed("two"));
        QCOMPARE(fixture.rows(), std::vector{ kept });
        fixture.model->books().toggleKept(kept.id);
        fixture.tick();
        QVERIFY(!fixture.isTrashed("one"));
    }

    void underFiveGigabytesItIsGoneAtOnce()
    {
        Fixture fixture;
        fixture.addRule(logs);
        fixture.free(4);
        fixture.scan();
        fixture.calm();
        QVERIFY(fixture.has(logs) && !fixture.has(".gradle/daemon/log") && !fixture.isTrashed("log"));
        QCOMPARE(fixture.log().size(), 2);
        QCOMPARE(fixture.log().last(), u"201 MB removed for good · 1 item a rule had moved"_s);
    }

    // What had moved ages out of the Trash like the rest; it is told of nowhere.
    void partlyFailedRuleIsEnteredAndNotTold()
    {
        // The Trash itself lies among the packages, and a folder that holds it never goes into it.
        Fixture fixture("home/.npm/_cacache/data");
        std::filesystem::create_directories(fixture.trashFolder + "/files");
        fixture.addRule(packages);
        fixture.scan();
        fixture.calm();
        QVERIFY(fixture.isTrashed("one") && fixture.isTrashed("two"));
        QCOMPARE(fixture.rows().size(), size_t(2));
        QCOMPARE(fixture.rule().timesFired, 0);
        QVERIFY(fixture.log().isEmpty());
        QVERIFY(fixture.desktop.notifier.posted.isEmpty());
        QCOMPARE(fixture.model->scans().phase().kind, Phase::Kind::ready);
        fixture.clock.moment = fixture.clock.moment.addDays(1);
        fixture.free(300);
        fixture.tick();
        QVERIFY(!fixture.isTrashed("one"));
        QCOMPARE(fixture.log().size(), 1);
    }

    void folderThatHasBecomeALinkLosesNothing()
    {
        Fixture fixture;
        fixture.addRule(packages);
        // It is exchanged after the scan has looked, and before the rule acts.
        connect(&fixture.model->scans(), &ScanDriver::reportChanged, &fixture.model->scans(), [&fixture] {
            std::filesystem::remove_all(fixture.path(packages));
            std::error_code ignored;
            std::filesystem::create_directory_symlink(
                fixture.path("Documents"), fixture.path(packages), ignored);
        });
        fixture.scan();
        fixture.calm();
        QVERIFY(fixture.has("Documents/thesis.txt"));
        QVERIFY(fixture.rows().empty());
        QVERIFY(fixture.desktop.notifier.posted.isEmpty());
    }

    void tamperedFileMovesNothingElse()
    {
        Fixture fixture;
        const auto home = fixture.path("");
        const QByteArray rule
            = R"({"id":"0B9A2C1E-5D3F-4A6B-8C7D-112233445566","ruleID":"RULE","path":"PATH",)"
              R"("triggerUsedPercent":0,"cadence":"everyTime","enabled":true,"timesFired":0})";
        QByteArrayList rows;
        for (const auto &[ruleId, place] : std::initializer_list<std::pair<const char *, std::string>>{
                 { "npm.cacache", home + "Documents" },
                 { "npm.cacache", home + ".npm/_cacache/../../Documents" },
                 { "npm.cacache", "/etc" },
                 { "downloads.folder", home + "Documents" },
                 { "trash", fixture.trashFolder },
             })
            rows.append(QByteArray(rule).replace("RULE", ruleId).replace("PATH", place.c_str()));
        QVERIFY(fixture.disk.writing.replace(
            fixture.dataFolder + "/Quillbrook/automation.json", '[' + rows.join(',') + ']'));
        fixture.start();
        QCOMPARE(fixture.model->automation().store().rules().size(), rows.size());
        fixture.scan();
        fixture.calm();
        QVERIFY(fixture.has("Documents/thesis.txt") && fixture.has(".npm/_cacache/one"));
        QVERIFY(fixture.rows().empty());
    }

    void clearingByHandOffersARule()
    {
        Fixture fixture;
        fixture.large("home/.npm/_cacache/three", 900 * mebibyte);
        fixture.scan();
        fixture.model->reclaims().reclaim({ fixture.finding(packages), fixture.finding(logs) }, true);
        fixture.calm();
        QVERIFY(fixture.model->automation().offer());
        QCOMPARE(fixture.model->automation().offer()->rule.id, u"npm.cacache"_s);
        // A new scan does not clear it.
        fixture.scan();
        QVERIFY(fixture.model->automation().offer());
    }
};

QUILLBROOK_SUITE(TestAutomationOnDisk, QCoreApplication)
#include "tst_AutomationOnDisk.moc"

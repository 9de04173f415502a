#include "Core/AppModel.h"
#include "Support/FolderHold.h"
#include "Support/ScannedHome.h"
#include "Support/Suite.h"

#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 gibi = qint64{ 1024 } * 1024 * 1024;

struct Found
{
    const char *id;
    qint64 bytes;
    qsizetype items = 0;
    Safety safety = Safety::careful;
};

const auto most = u"What is using the most space?"_s;
const auto safe = u"What's safe to delete?"_s;
const auto move = u"What can I move to another drive?"_s;

} // namespace

Q_DECLARE_METATYPE(QList<Found>)

class TestQuestionDriver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void questionsFollowFromTheFindings_data()
    {
        QTest::addColumn<QList<Found>>("found");
        QTest::addColumn<QStringList>("questions");
        QTest::newRow("nothing") << QList<Found>() << QStringList{ safe };
        QTest::newRow("two items") << QList<Found>{ { "simulator.devices", 1, 2 } }
                                   << QStringList{ u"How many of simulator.devices are there?"_s, safe };
        QTest::newRow("one item, and the next group is tried")
            << QList<Found>{ { "simulator.devices", 9, 1 }, { "xcode.deriveddata", 5, 3 } }
            << QStringList{ u"How many of xcode.deriveddata are there?"_s, safe };
        QTest::newRow("what is never suggested is not counted")
            << QList<Found>{ { "simulator.devices", 1, 2, Safety::reportOnly } } << QStringList{ safe };
        QTest::newRow("what opens into no items is not counted")
            << QList<Found>{ { "npm.cacache", 1, 2 } } << QStringList{ safe };
        QTest::newRow("exactly 2 GiB that must stay")
            << QList<Found>{ { "mail.data", 2 * gibi, 0, Safety::reportOnly } } << QStringList{ safe };
        QTest::newRow("one byte more") << QList<Found>{ { "mail.data", 2 * gibi + 1, 0, Safety::reportOnly } }
                                       << QStringList{ safe, u"Why won't you remove of mail.data?"_s };
        QTest::newRow("something to move goes before it")
            << QList<Found>{ { "mail.data", 9 * gibi, 0, Safety::reportOnly }, { "android.avd", gibi, 2 } }
            << QStringList{ u"How many of android.avd are there?"_s, safe, move };
    }

    void questionsFollowFromTheFindings()
    {
        QFETCH(QList<Found>, found);
        std::optional<ReclaimReport> report = ReclaimReport();
        QHash<QString, qsizetype> items;
        for (const auto &row : found) {
            const auto id = QString::fromLatin1(row.id);
            items.insert(id, row.items);
            report->findings.append({ .rule = { .id = id, .title = u"Of "_s + id, .safety = row.safety },
                .bytes = row.bytes,
                .redirectedOffVolume = id == u"simulator.devices" });
        }
        QTEST(QuestionDriver::computeSuggestedQuestions({ .report = report,
                  .itemCount = [&items](const Finding &finding) { return items.value(finding.rule.id); } }),
            "questions");
    }

    void beforeAScanThereIsOne()
    {
        const std::optional<ReclaimReport> none;
        QCOMPARE(QuestionDriver::computeSuggestedQuestions({ .report = none, .itemCount = {} }),
            QStringList{ most });
        FakeServices fake;
        const AppModel model(fake.services);
        QCOMPARE(model.questions().suggestedQuestions(), QStringList{ most });
    }

    void scanThatEndsWellRenewsThemAfterItsEnd()
    {
        ScannedHome home;
        home.addPlace(".android/avd", 0);
        for (const auto *name : { "one", "two" }) {
            home.addFolder(std::string(".android/avd/") + name + ".avd");
            home.addFile(std::string(".android/avd/") + name + ".avd/disk", 90);
        }
        QStringList atTheEnd;
        connect(&home.model.scans(), &ScanDriver::finished, this,
            [&] { atTheEnd = home.model.questions().suggestedQuestions(); });
        home.scan();
        QCOMPARE(atTheEnd, QStringList{ most });
        const QStringList expected{ u"How many test android phones are there?"_s, safe, move };
        QTRY_COMPARE(home.model.questions().suggestedQuestions(), expected);
    }

    void scanThatIsGivenUpKeepsThem()
    {
        ScannedHome home;
        home.scan();
        QTRY_COMPARE(home.model.questions().suggestedQuestions(), QStringList{ safe });
        const QSignalSpy changes(&home.model.questions(), &QuestionDriver::suggestedQuestionsChanged);
        home.addPlace(".android/avd", 200);
        home.model.scans().scan({});
        home.model.questions().refreshSuggestedQuestions();
        home.model.scans().cancelScan();
        QTest::qWait(50);
        QCOMPARE(changes.count(), 0);
    }
};

QUILLBROOK_SUITE(TestQuestionDriver, QCoreApplication)
#include "tst_QuestionDriver.moc"

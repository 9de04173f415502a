#include "Removal/JournalFormat.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using State = JournalUnit::State;

namespace {

TrashedItem item(const std::string &name, ThingIdentity identity)
{
    return { .id = QString::fromStdString(name),
        .label = u"Caches · "_s + QString::fromStdString(name),
        .originalPath = "/home/someone/.cache/" + name,
        .trashPath = "/home/someone/.local/share/Trash/files/" + name,
        .movedAt = QDateTime(QDate(2024, 5, 1), QTime(8, 30), Qt::UTC),
        .identity = std::move(identity) };
}

const TrashedItem byInode = item("odd\xff\nname", { .inode = 17, .born = -5, .note = "whole", .mode = 0555 });
const TrashedItem byNote = item("plain", { .note = "[Trash Info]\nPath=/a\n" });

QByteArray beginning(const QByteArray &bytes = "30", const QByteArray &planned = "3")
{
    return "{\"begin\":{\"title\":\"Caches\",\"bytes\":" + bytes + ",\"planned\":" + planned + "}}\n";
}

} // namespace

class TestJournalFormat : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsWrittenIsRead()
    {
        const std::vector<JournalUnit> units{
            { .title = u"Caches"_s, .bytes = 30, .planned = 3, .moves = { byInode, byNote } },
            { .title = u"Logs"_s, .bytes = 5, .byRule = true, .state = State::whole, .moves = { byNote } },
            { .title = u"Empty"_s, .state = State::failed },
        };
        const auto lines
            = JournalFormat::batch(7) + JournalFormat::encode(units) + JournalFormat::leave(byInode);
        const JournalFormat::Content content{ .total = 7, .units = units, .leaving = { byInode } };
        QCOMPARE(JournalFormat::decode(lines), content);
        // The last line is cut anywhere: all before it stands.
        for (int cut = 2; cut < JournalFormat::leave(byInode).size(); ++cut)
            QCOMPARE(JournalFormat::decode(lines.chopped(cut)),
                (JournalFormat::Content{ .total = 7, .units = units }));
    }

    // Of a batch that a kill has cut short, the next one keeps the total.
    void firstTotalCounts()
    {
        QCOMPARE(JournalFormat::decode(JournalFormat::batch(7) + JournalFormat::batch(9)).total,
            std::optional<qint64>(7));
    }

    void findingThatFailedIsNotWhole()
    {
        for (const auto &lines : { JournalFormat::failed(u"id"_s) + JournalFormat::whole(),
                 JournalFormat::whole() + JournalFormat::failed({}) }) {
            const auto content = JournalFormat::decode(beginning() + lines);
            QCOMPARE(content.units.front().state, State::failed);
        }
    }

    void whatCanNotBeUnderstoodMeansNothing_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("no JSON") << QByteArray("begin");
        QTest::newRow("cut short") << QByteArray("{\"move\":{\"id\":");
        QTest::newRow("no object") << QByteArray("[{\"whole\":true}]");
        QTest::newRow("another key") << QByteArray("{\"moved\":{}}");
        QTest::newRow("a row that is none") << QByteArray("{\"move\":{\"id\":1},\"note\":\"\"}");
        auto unknown = JournalFormat::move(byNote);
        QTest::newRow("a thing that is known by nothing")
            << unknown.replace("\"note\"", "\"none\"").trimmed();
        QTest::newRow("a total that is none") << QByteArray("{\"batch\":\"7\"}");
        QTest::newRow("a finding that is none") << QByteArray("{\"begin\":{\"title\":1}}");
        QTest::newRow("not whole") << QByteArray("{\"whole\":false}");
        QTest::newRow("no name of what failed") << QByteArray("{\"failed\":1}");
    }
    void whatCanNotBeUnderstoodMeansNothing()
    {
        QFETCH(QByteArray, line);
        const auto usual = beginning() + JournalFormat::move(byInode);
        QCOMPARE(JournalFormat::decode(usual + line + '\n' + JournalFormat::move(byNote)),
            JournalFormat::decode(usual + JournalFormat::move(byNote)));
    }

    // What was moved is not forgotten because the line of its finding is damaged.
    void entryWithoutItsFindingStandsByItself()
    {
        const JournalUnit alone{ .title = byNote.label, .state = State::whole, .moves = { byNote } };
        const JournalUnit before{
            .title = u"Caches"_s, .bytes = 30, .planned = 3, .state = State::whole, .moves = { byInode }
        };
        const auto lost = "{\"begin\":{}}\n" + JournalFormat::move(byNote) + JournalFormat::whole();
        QCOMPARE(JournalFormat::decode(lost).units, std::vector{ alone });
        QCOMPARE(JournalFormat::decode(JournalFormat::encode({ before }) + lost).units,
            (std::vector{ before, alone }));
        QCOMPARE(JournalFormat::decode(JournalFormat::whole() + JournalFormat::failed({})),
            JournalFormat::Content());
    }

    // It divides what the finding was worth.
    void atLeastOneEntryIsPlanned_data()
    {
        QTest::addColumn<QByteArray>("planned");
        QTest::newRow("none") << QByteArray("0");
        QTest::newRow("fewer than none") << QByteArray("-3");
    }
    void atLeastOneEntryIsPlanned()
    {
        QFETCH(QByteArray, planned);
        QCOMPARE(JournalFormat::decode(beginning("30", planned)).units.front().planned, 1);
    }
};

QUILLBROOK_SUITE(TestJournalFormat, NoApplication)
#include "tst_JournalFormat.moc"

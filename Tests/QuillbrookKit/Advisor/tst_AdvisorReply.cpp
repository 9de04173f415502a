#include "Advisor/AdvisorReply.h"
#include "Support/Suite.h"

#include <QTest>

#include <nlohmann/json.hpp>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestAdvisorReply : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void schemaTellsTheFieldsInTheirOrder()
    {
        const auto schema = nlohmann::ordered_json::parse(AdvisorReply::schema().toStdString());
        QStringList told;
        for (const auto &[name, field] : schema["properties"].items())
            told.append(QString::fromStdString(name + ": " + field["type"].get<std::string>() + ": "
                + field["description"].get<std::string>()));
        const QStringList expected{
            u"answer: string: A complete, grammatical sentence answering the question. Copy the count and size VERBATIM from the list — never compute, estimate or round them. Match the verb to the number. Example for count=1: 'There is 1 Android emulator, using 10.8 GB.' Example for count=5: 'There are 5 iOS simulators, using 10.4 GB.'"_s,
            u"proposesRemoval: boolean: true ONLY if the user asked to delete, remove, clear or free something"_s,
            u"groupID: string: When proposesRemoval is true, the exact group id being talked about. Otherwise an empty string."_s,
            u"alsoConsiderGroupID: string: A different group id worth mentioning because clearing it would also free space, or an empty string."_s
        };
        QCOMPARE(told, expected);
        QVERIFY(!schema.contains("description"));
        QCOMPARE(schema["required"].size(), 4);
        QCOMPARE(schema["additionalProperties"].get<bool>(), false);
    }

    void replyIsTakenAsItIs()
    {
        const auto reply = AdvisorReply::decode(" {\"alsoConsiderGroupID\":\"\",\"answer\":\"1\\n\\\"x\\\" "
                                                "\\u05e9\",\"proposesRemoval\":true,\"groupID\":\"a.b\"}\n");
        const AdvisorReply expected{
            .answer = u"1\n\"x\" ש"_s, .proposesRemoval = true, .groupId = u"a.b"_s
        };
        QVERIFY(reply == expected);
    }

    void everythingElseIsNoReply_data()
    {
        QTest::addColumn<QByteArray>("text");
        const auto with = [](const QByteArray &fields) { return "{" + fields + "}"; };
        const QByteArray good
            = R"("answer":"a","proposesRemoval":false,"groupID":"g","alsoConsiderGroupID":"")";
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("a word") << QByteArray("Sure!");
        QTest::newRow("a list") << QByteArray("[]");
        QTest::newRow("a list of a reply") << '[' + with(good) + ']';
        QTest::newRow("a text") << QByteArray(R"("a")");
        QTest::newRow("an empty object") << QByteArray("{}");
        QTest::newRow("words before it") << "Here: " + with(good);
        QTest::newRow("words behind it") << with(good) + " Done.";
        QTest::newRow("twice") << with(good) + with(good);
        QTest::newRow("in a fence") << "```json\n" + with(good) + "\n```";
        QTest::newRow("a byte order mark") << "\xef\xbb\xbf" + with(good);
        QTest::newRow("a field too many") << with(good + R"(,"path":"/home")");
        QTest::newRow("a field twice") << with(good + R"(,"groupID":"other")");
        QTest::newRow("a field too few") << with(R"("answer":"a","proposesRemoval":false,"groupID":"g")");
        QTest::newRow("another letter case") << with(QByteArray(good).replace("groupID", "groupId"));
        QTest::newRow("a word for the boolean") << with(QByteArray(good).replace("false", "\"true\""));
        QTest::newRow("a number for the boolean") << with(QByteArray(good).replace("false", "1"));
        QTest::newRow("null for a text") << with(QByteArray(good).replace("\"g\"", "null"));
        QTest::newRow("a boolean for a text") << with(QByteArray(good).replace("\"g\"", "true"));
        QTest::newRow("an object for a text") << with(QByteArray(good).replace("\"g\"", with(good)));
        QTest::newRow("a list for a text") << with(QByteArray(good).replace("\"g\"", "[\"g\"]"));
        QTest::newRow("a number for a text") << with(QByteArray(good).replace("\"a\"", "1e400"));
        QTest::newRow("within another object") << with("\"answer\":" + with(good));
        QTest::newRow("no UTF-8") << with(QByteArray(good).replace("\"g\"", "\"\xff\""));
        QTest::newRow("half a pair") << with(QByteArray(good).replace("\"g\"", R"("\ud800")"));
        QTest::newRow("a comment") << with("/* */" + good);
        QTest::newRow("cut off") << with(good).chopped(1);
        QTest::newRow("a million brackets") << QByteArray(1'000'000, '[');
    }

    void everythingElseIsNoReply()
    {
        QFETCH(QByteArray, text);
        QVERIFY(!AdvisorReply::decode(text));
    }
};

QUILLBROOK_SUITE(TestAdvisorReply, NoApplication)
#include "tst_AdvisorReply.moc"

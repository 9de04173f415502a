#include "Advisor/AdvisorReply.h"
#include "Advisor/ChatRequest.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

// moc reads raw literals wrongly that hold quotes after backslashes.
QByteArray quoted(const char *text)
{
    return QByteArray(text).replace('`', '"');
}

const ChatRequest request{ .model = u"maker/\"small\""_s,
    .instructions = u"You answer.\n"_s,
    .turns = { { .question = u"Why?"_s, .reply = quoted("{`answer`:`So.`}") } },
    .question = u"And now — what?"_s };

QByteArray beginning()
{
    auto schema = AdvisorReply::schema();
    schema.replace('"', "\\\"");
    return quoted("{`model`:`maker/\\`small\\``,`stream`:false,`messages`:["
                  "{`role`:`system`,`content`:`You answer.\\n`},"
                  "{`role`:`system`,`content`:`Answer with one JSON object that fits this schema, and with "
                  "nothing else:\\n")
        + schema
        + quoted(
            "`},{`role`:`user`,`content`:`Why?`},{`role`:`assistant`,`content`:`{\\`answer\\`:\\`So.\\`}`},"
            "{`role`:`user`,`content`:`And now — what?`}]");
}

QByteArray expectedOfOllama()
{
    return beginning() + quoted(",`format`:") + AdvisorReply::schema()
        + quoted(",`options`:{`num_ctx`:8192}}");
}

QByteArray expectedOfTheOthers()
{
    return beginning()
        + quoted(
            ",`response_format`:{`type`:`json_schema`,`json_schema`:{`name`:`advisor_reply`,`strict`:true,"
            "`schema`:")
        + AdvisorReply::schema() + "}}}";
}

} // namespace

class TestChatRequest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatOllamaIsSentIsThisToTheByte() { QCOMPARE(request.ollamaBody(8192), expectedOfOllama()); }

    void whatTheOthersAreSentIsThisToTheByte() { QCOMPARE(request.completionsBody(), expectedOfTheOthers()); }

    void oldestTurnsAreLeftOutAndNeverTheInstructions()
    {
        auto large = request;
        for (int i = 0; i < 40; ++i)
            large.turns.append({ .question = QString::number(i), .reply = QByteArray(300, 'x') });
        QVERIFY(large.fitInto(4096));
        QVERIFY(large.tokens() <= 4096);
        QVERIFY(large.turns.size() > 5);
        QCOMPARE(large.turns.last().question, u"39"_s);
        QVERIFY(large.completionsBody().contains("You answer."));
        auto many = request;
        many.turns = QList<ChatTurn>(1000);
        QVERIFY(many.fitInto(1'000'000));
        QVERIFY(many.turns.size() < 100);
    }

    void whatCanNotFitIsNotSent()
    {
        auto large = request;
        large.instructions = QString(40'000, u'1');
        QVERIFY(!large.fitInto(8192));
        QVERIFY(large.turns.isEmpty());
    }

    void contextGrowsInStepsUpToTheLimit()
    {
        QCOMPARE(request.contextWithin(65'536), 8192);
        QCOMPARE(request.contextWithin(4096), 4096);
        auto large = request;
        large.instructions = QString(9'000, u'1');
        QCOMPARE(large.contextWithin(65'536), 16'384);
        large.instructions = QString(90'000, u'1');
        QCOMPARE(large.contextWithin(40'000), 40'000);
    }

    // Of what others write every byte may be a token; of what we write, every one but those of words.
    void tokensAreNeverTooFew_data()
    {
        QTest::addColumn<ChatRequest>("chat");
        QTest::addColumn<int>("least");
        QTest::addColumn<int>("most");
        const auto words = u"What is it "_s.repeated(100);
        const auto digits = u"1234567890"_s.repeated(100);
        const auto hebrew = u"שלום"_s.repeated(100);
        QTest::newRow("our words") << ChatRequest{ .instructions = words } << 300 << 500;
        QTest::newRow("our figures") << ChatRequest{ .instructions = digits } << 1000 << 1100;
        QTest::newRow("a question") << ChatRequest{ .question = words } << 1100 << 1200;
        QTest::newRow("a question in other letters") << ChatRequest{ .question = hebrew } << 800 << 900;
        QTest::newRow("a turn") << ChatRequest{ .turns = { { .question = words, .reply = words.toUtf8() } } }
                                << 2200 << 2300;
    }

    void tokensAreNeverTooFew()
    {
        QFETCH(ChatRequest, chat);
        QFETCH(int, least);
        QFETCH(int, most);
        const auto needed = chat.tokens() - ChatRequest().tokens();
        QVERIFY2(needed >= least && needed <= most, QByteArray::number(needed).constData());
    }
};

Q_DECLARE_METATYPE(Quillbrook::ChatRequest)

QUILLBROOK_SUITE(TestChatRequest, NoApplication)
#include "tst_ChatRequest.moc"

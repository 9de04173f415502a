#include "Advisor/ModelAnswers.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestModelAnswers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void modelsElsewhereAreKnown()
    {
        const auto models = ModelAnswers::ollamaModels(
            R"({"models":[{"name":"a"},{"name":"b","remote_host":"https://x.test"},{"name":"c","remote_model":"c"},)"
            R"({"name":"d:cloud"},{"name":"e:70b-cloud"},{"name":5},{"model":"f"},"g"]})");
        QVERIFY(models);
        QStringList here;
        for (const auto &model : *models)
            here.append(model.isElsewhere ? u"-"_s : model.id);
        QCOMPARE(here, QStringList({ u"a"_s, u"-"_s, u"-"_s, u"-"_s, u"-"_s }));
    }

    void detailsSayWhatAModelIsFor_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("told");
        QTest::newRow("all") << QByteArray(
            R"({"details":{},"capabilities":["completion","tools"],"model_info":{"llama.context_length":131072}})")
                             << u"here answers 131072"_s;
        QTest::newRow("old server") << QByteArray(R"({"details":{}})") << u"here answers -1"_s;
        QTest::newRow("for comparing")
            << QByteArray(R"({"details":{},"capabilities":["embedding"]})") << u"here - -1"_s;
        QTest::newRow("elsewhere") << QByteArray(R"({"details":{},"remote_host":"x"})")
                                   << u"elsewhere answers -1"_s;
        QTest::newRow("mistyped") << QByteArray(R"({"details":{},"capabilities":3,"model_info":[{}]})")
                                  << u"here - -1"_s;
        QTest::newRow("negative") << QByteArray(R"({"details":{},"model_info":{"x.context_length":-5}})")
                                  << u"here answers -1"_s;
        QTest::newRow("no details") << QByteArray("{}") << u"none"_s;
        QTest::newRow("no JSON") << QByteArray("<html>") << u"none"_s;
    }

    void detailsSayWhatAModelIsFor()
    {
        QFETCH(QByteArray, body);
        const auto details = ModelAnswers::ollamaDetails(body);
        QTEST(!details ? u"none"_s
                       : u"%1 %2 %3"_s.arg(details->isElsewhere ? u"elsewhere"_s : u"here"_s,
                           details->canAnswer ? u"answers"_s : u"-"_s,
                           QString::number(details->context.value_or(-1))),
            "told");
    }

    void replyIsWholeOrNone_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QByteArray>("reply");
        const QByteArray chat = R"({"message":{"content":"{}"},"done":true,"done_reason":"stop"})";
        QTest::newRow("Ollama's") << chat << QByteArray("{}");
        QTest::newRow("cut for length") << QByteArray(chat).replace("stop", "length") << QByteArray();
        QTest::newRow("not done") << QByteArray(chat).replace("true", "false") << QByteArray();
        QTest::newRow("no content") << QByteArray(chat).replace("content", "thinking") << QByteArray();
        QTest::newRow("written elsewhere")
            << QByteArray(chat).replace("{\"m", "{\"remote_host\":\"x\",\"m") << QByteArray();
        QTest::newRow("a list") << QByteArray("[]") << QByteArray();
        const QByteArray completion = R"({"choices":[{"finish_reason":"stop","message":{"content":"{}"}}]})";
        QTest::newRow("completion") << completion << QByteArray("{}");
        QTest::newRow("completion cut") << QByteArray(completion).replace("stop", "length") << QByteArray();
        QTest::newRow("completion refused")
            << QByteArray(completion).replace("\"{}\"", "null") << QByteArray();
        QTest::newRow("no choices") << QByteArray(R"({"choices":[]})") << QByteArray();
        QTest::newRow("choices are no list") << QByteArray(R"({"choices":{"0":{}}})") << QByteArray();
        QTest::newRow("choice is a word") << QByteArray(R"({"choices":["stop"]})") << QByteArray();
    }

    void replyIsWholeOrNone()
    {
        QFETCH(QByteArray, body);
        const auto reply = body.contains("choices") ? ModelAnswers::completionsReply(body)
                                                    : ModelAnswers::ollamaReply(body);
        QTEST(reply.value_or(QByteArray()), "reply");
    }

    void serverSaysThatItIsLoading_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<bool>("isLoading");
        QTest::newRow("now") << QByteArray(
            R"({"error":{"code":503,"message":"Loading model","type":"unavailable_error"}})")
                             << true;
        QTest::newRow("as it was told before") << QByteArray(R"({"status":"loading model"})") << true;
        QTest::newRow("another error") << QByteArray(R"({"error":{"type":"other"}})") << false;
        QTest::newRow("an error of words") << QByteArray(R"({"error":"unavailable_error"})") << false;
        QTest::newRow("well") << QByteArray(R"({"status":"ok"})") << false;
        QTest::newRow("a web page") << QByteArray("<html>\"error\"") << false;
    }

    void serverSaysThatItIsLoading()
    {
        QFETCH(QByteArray, body);
        QTEST(ModelAnswers::isLoading(body), "isLoading");
    }

    // Another user's program may answer as well, with anything.
    void objectIsReadUpToItsThousandthKey_data()
    {
        QTest::addColumn<int>("keysBefore");
        QTest::addColumn<bool>("isRead");
        QTest::newRow("none") << 0 << true;
        QTest::newRow("the thousandth") << 999 << true;
        QTest::newRow("one too many") << 1000 << false;
    }
    void objectIsReadUpToItsThousandthKey()
    {
        QFETCH(int, keysBefore);
        QByteArray keys;
        for (int i = 0; i < keysBefore; ++i)
            keys += "\"" + QByteArray::number(i) + "\":0,";
        // Another object has a count of its own.
        const auto body = "{\"other\":[{" + keys + R"("last":{}}],)" + keys.mid(6) + R"("status":"ok"})";
        QTEST(ModelAnswers::isHealthy(body), "isRead");
    }

    void nameIsShownWithoutItsFolders_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("name");
        QTest::newRow("tag") << u"llama3.2:3b"_s << u"llama3.2:3b"_s;
        QTest::newRow("path") << u"/home/ann/models/small-Q4.gguf"_s << u"small-Q4"_s;
        QTest::newRow("maker") << u"maker/small"_s << u"maker/small"_s;
        QTest::newRow("marks and line feeds") << u"a\n\u202eb\x1b"_s << u"ab"_s;
        QTest::newRow("long") << QString(100, u'x') << QString(60, u'x') + u'…';
    }

    void nameIsShownWithoutItsFolders()
    {
        QFETCH(QString, id);
        QTEST(ModelAnswers::shownName(id), "name");
    }
};

QUILLBROOK_SUITE(TestModelAnswers, NoApplication)
#include "tst_ModelAnswers.moc"

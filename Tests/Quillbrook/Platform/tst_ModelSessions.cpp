#include "Advisor/AdvisorPrompt.h"
#include "Advisor/AdvisorReply.h"
#include "Advisor/ChatRequest.h"
#include "Catalogue/StorageCatalogue.h"
#include "Platform/LocalModelServers.h"
#include "Support/AskedModels.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using Kind = LocalModelServers::Kind;

Q_DECLARE_METATYPE(Quillbrook::LocalModelServers::Kind)

// What is asked in a conversation, over a socket, and what counts as an answer.
class TestModelSessions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatGoesOverTheSocketIsTheRequestAndNothingElse_data()
    {
        QTest::addColumn<Kind>("kind");
        QTest::newRow("Ollama") << Kind::ollama;
        QTest::newRow("llama.cpp") << Kind::llamaCpp;
        QTest::newRow("vLLM") << Kind::vllm;
    }

    void whatGoesOverTheSocketIsTheRequestAndNothingElse()
    {
        QFETCH(Kind, kind);
        qputenv("http_proxy", "http://127.0.0.1:1");
        qputenv("all_proxy", "http://127.0.0.1:1");
        auto lines = modelReplying();
        lines["kind"_L1] = kind == Kind::ollama ? u"ollama"_s
            : kind == Kind::vllm                ? u"vllm"_s
                                                : u"llama.cpp"_s;
        const ModelServer server(lines);
        LocalModelServers servers(m_listeners, { { kind, server.port() } });
        QVERIFY(availabilityOf(servers).isAvailable());
        const auto session = servers.startSession(u"You answer — \"so\".\n"_s);
        const AdvisorReply expected{ .answer = u"Five."_s, .proposesRemoval = true, .groupId = u"a.b"_s };
        QVERIFY(answerOf(*session, u"How many?"_s) == expected);
        QVERIFY(answerOf(*session, u"And now?"_s) == expected);

        ChatRequest chat{ .model = u"small:1b"_s,
            .instructions = u"You answer — \"so\".\n"_s,
            .turns = { { .question = u"How many?"_s, .reply = modelReply() } },
            .question = u"And now?"_s };
        const auto *path = kind == Kind::ollama ? "/api/chat" : "/v1/chat/completions";
        const auto sent = server.requests(QString::fromLatin1(path));
        QCOMPARE(sent.size(), 2);
        QCOMPARE(sent.last()["body"_L1].toString().toUtf8(),
            kind == Kind::ollama ? chat.ollamaBody(8192) : chat.completionsBody());
        auto names = sent.last()["headers"_L1].toObject().keys();
        names.sort(Qt::CaseInsensitive);
        const QStringList expectedNames{ u"Accept-Encoding"_s, u"Accept-Language"_s, u"Connection"_s,
            u"Content-Length"_s, u"Content-Type"_s, u"Host"_s, u"User-Agent"_s };
        QCOMPARE(names, expectedNames);
        qunsetenv("http_proxy");
        qunsetenv("all_proxy");
    }

    // The whole way, from findings with telling names to what the server has read.
    void nothingFromTheDiskGoesOverTheSocket()
    {
        const ModelServer server(modelReplying());
        LocalModelServers servers(m_listeners, { { Kind::ollama, server.port() } });
        QVERIFY(availabilityOf(servers).isAvailable());
        const auto rules = StorageCatalogue::rules();
        for (int i = 0; i < 30; ++i) {
            QList<AdvisorPrompt::Group> groups;
            for (std::size_t row = 0; row < rules.size(); ++row) {
                const auto secret = u"ȸ\u202e\n\"%1 שלום.pdf"_s.arg(row);
                groups.append({ .finding = { .id = secret,
                                    .rule = rules[(row + static_cast<std::size_t>(i)) % rules.size()],
                                    .path = u"/home/"_s + secret,
                                    .bytes = i * 1'000'000'007LL,
                                    .locationLabel = secret,
                                    .applicationId = secret },
                    .itemCount = i });
            }
            QVERIFY(answerOf(
                *servers.startSession(AdvisorPrompt::instructions({ .groups = groups })), u"What?"_s));
        }
        const auto sent = server.requests();
        QVERIFY(sent.size() > 90);
        for (const auto &request : sent) {
            const auto body = request["body"_L1].toString();
            QVERIFY(!body.contains(u'ȸ') && !body.contains(u"/home") && !body.contains(u".pdf"));
            QVERIFY(!body.contains(u"\\u"));
        }
    }

    void everythingThatIsNoReplyFails_data()
    {
        QTest::addColumn<QByteArray>("more");
        QTest::newRow("status 400") << QByteArray(",'faults':{'/api/chat':'status:400'}");
        QTest::newRow("status 503") << QByteArray(",'faults':{'/api/chat':'status:503'}");
        QTest::newRow("a web page") << QByteArray(",'faults':{'/api/chat':'html'}");
        QTest::newRow("huge") << QByteArray(",'faults':{'/api/chat':'huge'}");
        QTest::newRow("closed") << QByteArray(",'faults':{'/api/chat':'closed'}");
        QTest::newRow("cut off") << QByteArray(",'faults':{'/api/chat':'cut'}");
        QTest::newRow("wrong types") << QByteArray(",'chat':{'message':5}");
        QTest::newRow("too long") << QByteArray(",'chat':{'done_reason':'length'}");
        QTest::newRow("written elsewhere") << QByteArray(",'chat':{'remote_host':'x'}");
        QTest::newRow("schema ignored") << QByteArray(",'replies':['You could delete /home.']");
    }

    void everythingThatIsNoReplyFails()
    {
        QFETCH(QByteArray, more);
        const ModelServer server(modelReplying(more));
        LocalModelServers servers(m_listeners, { { Kind::ollama, server.port() } });
        QVERIFY(availabilityOf(servers).isAvailable());
        const auto session = servers.startSession(u"x"_s);
        QVERIFY(!answerOf(*session, u"y"_s));
        QVERIFY(!server.requests(u"/api/chat"_s).isEmpty());
    }

    void redirectIsNotFollowed()
    {
        const ModelServer elsewhere(modelReplying());
        const auto target = "http://127.0.0.1:" + QByteArray::number(elsewhere.port()) + "/api/chat";
        const ModelServer server(modelReplying(",'faults':{'/api/chat':'redirect:" + target + "'}"));
        LocalModelServers servers(m_listeners, { { Kind::ollama, server.port() } });
        QVERIFY(availabilityOf(servers).isAvailable());
        QVERIFY(!answerOf(*servers.startSession(u"x"_s), u"y"_s));
        QVERIFY(elsewhere.requests().isEmpty());
    }

    void closingTheConnectionAfterAnAnswerDoesNoHarm()
    {
        const ModelServer server(
            modelReplying(",'faults':{'/api/chat':'close after','/api/tags':'close after'}"));
        LocalModelServers servers(m_listeners, { { Kind::ollama, server.port() } });
        QVERIFY(availabilityOf(servers).isAvailable());
        const auto session = servers.startSession(u"x"_s);
        QVERIFY(answerOf(*session, u"y"_s));
        QVERIFY(answerOf(*session, u"z"_s));
    }

    void failedQuestionIsNoPartOfTheTranscript()
    {
        auto script = modelReplying();
        script["replies"_L1] = QJsonArray{ u"nonsense"_s, QString::fromUtf8(modelReply()) };
        const ModelServer server(script);
        LocalModelServers servers(m_listeners, { { Kind::ollama, server.port() } });
        QVERIFY(availabilityOf(servers).isAvailable());
        const auto session = servers.startSession(u"x"_s);
        QVERIFY(!answerOf(*session, u"first"_s));
        QVERIFY(answerOf(*session, u"second"_s));
        const auto body = server.requests(u"/api/chat"_s).last()["body"_L1].toString();
        QVERIFY(!body.contains(u"first") && !body.contains(u"nonsense"));
    }

    void whatDoesNotFitIsNotSent()
    {
        const ModelServer server(modelReplying(",'context':2048"));
        LocalModelServers servers(m_listeners, { { Kind::ollama, server.port() } });
        QVERIFY(availabilityOf(servers).isAvailable());
        QVERIFY(!answerOf(*servers.startSession(QString(4'000, u'1')), u"y"_s));
        QVERIFY(server.requests(u"/api/chat"_s).isEmpty());
    }

    void secondQuestionAtOnceFailsAndTheFirstCanBeStopped()
    {
        const ModelServer server(modelReplying(",'faults':{'/api/chat':'half'}"));
        LocalModelServers servers(m_listeners, { { Kind::ollama, server.port() } });
        QVERIFY(availabilityOf(servers).isAvailable());
        const auto session = servers.startSession(u"x"_s);
        std::stop_source stop;
        const auto first = session->respond(u"y"_s, stop.get_token());
        const auto second = session->respond(u"z"_s, {});
        QVERIFY(second.isFinished() && !second.result());
        QTRY_COMPARE_WITH_TIMEOUT(server.requests(u"/api/chat"_s).size(), 1, modelPatience);
        QVERIFY(!first.isFinished());
        stop.request_stop();
        QTRY_VERIFY_WITH_TIMEOUT(first.isFinished(), modelPatience);
        QVERIFY(!first.result());
    }

    // Not only the answer: what is asked of the server before the question, too.
    void stopDoesNotWaitForAServerThatSaysNothing()
    {
        const ModelServer server(modelReplying(",'faults':{'/api/tags':['','slow']}"));
        LocalModelServers servers(m_listeners, { { Kind::ollama, server.port() } });
        QVERIFY(availabilityOf(servers).isAvailable());
        const auto session = servers.startSession(u"x"_s);
        const auto before = server.requests().size();
        std::stop_source stop;
        const auto reply = session->respond(u"y"_s, stop.get_token());
        QTRY_COMPARE_WITH_TIMEOUT(server.requests().size(), before + 2, modelPatience);
        stop.request_stop();
        QTRY_VERIFY_WITH_TIMEOUT(reply.isFinished(), 5'000);
        QVERIFY(!reply.result());
        QVERIFY(server.requests(u"/api/chat"_s).isEmpty());
    }

    void busyServerIsWaitedForOnceSomethingIsAsked()
    {
        const ModelServer server(modelReplying(",'faults':{'/api/tags':['','slow:2']}"));
        LocalModelServers servers(m_listeners, { { Kind::ollama, server.port() } });
        QVERIFY(availabilityOf(servers).isAvailable());
        QVERIFY(answerOf(*servers.startSession(u"x"_s), u"y"_s));
        QVERIFY(!availabilityOf(servers).isAvailable());
    }

    void whatListensIsLookedAtBeforeEveryQuestion()
    {
        const ModelServer server(modelReplying());
        LocalModelServers servers(m_listeners, { { Kind::ollama, server.port() } });
        QVERIFY(availabilityOf(servers).isAvailable());
        const auto session = servers.startSession(u"x"_s);
        QVERIFY(answerOf(*session, u"y"_s));
        m_listeners.answer = Listener::foreign;
        const auto before = server.requests().size();
        QVERIFY(!answerOf(*session, u"z"_s));
        QCOMPARE(server.requests().size(), before);
    }

private:
    FakeListeners m_listeners;

private Q_SLOTS:
    void init() { m_listeners.answer = Listener::trusted; }
};

QUILLBROOK_SUITE(TestModelSessions, QCoreApplication)
#include "tst_ModelSessions.moc"

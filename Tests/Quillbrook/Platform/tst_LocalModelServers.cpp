#include "Advisor/AdvisorPrompt.h"
#include "Advisor/AdvisorReply.h"
#include "Advisor/ChatRequest.h"
#include "Catalogue/StorageCatalogue.h"
#include "Platform/LocalModelServers.h"
#include "Platform/LoopbackListeners.h"
#include "Support/ModelServer.h"
#include "Support/Suite.h"

#include <QElapsedTimer>
#include <QTcpServer>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using Kind = LocalModelServers::Kind;
using Problem = ModelAvailability::Problem;

Q_DECLARE_METATYPE(Quillbrook::LocalModelServers::Kind)
Q_DECLARE_METATYPE(Quillbrook::ModelAvailability::Problem)

namespace {

// Far beyond what a busy machine takes.
constexpr int patience = 20'000;

class FakeListeners final : public LoopbackListeners
{
public:
    [[nodiscard]] Listener at(quint16 /*port*/) const override { return answer; }

    std::atomic<Listener> answer = Listener::trusted;
};

QJsonObject parsed(const char *text)
{
    const auto object = QJsonDocument::fromJson(QByteArray(text).replace('\'', '"')).object();
    if (object.isEmpty())
        qFatal("no script: %s", text);
    return object;
}

/// As a model writes it.
QByteArray reply()
{
    return QByteArray(
        "{`answer`: `Five.`, `proposesRemoval`: true, `groupID`: `a.b`, `alsoConsiderGroupID`: ``}")
        .replace('`', '"');
}

QJsonObject script(const QByteArray &more = {})
{
    auto made = parsed(QByteArray("{'kind':'ollama'" + more + "}").constData());
    if (!made.contains("replies"_L1))
        made["replies"_L1] = QJsonArray{ QString::fromUtf8(reply()) };
    return made;
}

} // namespace

class TestLocalModelServers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void serverThatHasAModelIsFound_data()
    {
        QTest::addColumn<Kind>("kind");
        QTest::addColumn<QByteArray>("script");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("model");
        QTest::newRow("Ollama") << Kind::ollama
                                << QByteArray("{'kind':'ollama','models':['small:1b','other']}")
                                << u"Ollama"_s << u"small:1b"_s;
        QTest::newRow("Ollama's first that is here and answers")
            << Kind::ollama
            << QByteArray(
                   "{'kind':'ollama','models':[{'name':'far','remote_host':'https:x'},{'name':'big-cloud'},"
                   "{'name':'embed','show':{'capabilities':['embedding']}},"
                   "{'name':'hidden','show':{'remote_model':'x'}},'here']}")
            << u"Ollama"_s << u"here"_s;
        QTest::newRow("llama.cpp") << Kind::llamaCpp
                                   << QByteArray("{'kind':'llama.cpp','models':['/models/small.gguf']}")
                                   << u"llama.cpp"_s << u"small"_s;
        QTest::newRow("llamafile") << Kind::llamaCpp
                                   << QByteArray("{'kind':'llamafile','models':['/zip/small.gguf']}")
                                   << u"llamafile"_s << u"small"_s;
        QTest::newRow("vLLM") << Kind::vllm << QByteArray("{'kind':'vllm','models':['maker/small']}")
                              << u"vLLM"_s << u"maker/small"_s;
    }

    void serverThatHasAModelIsFound()
    {
        QFETCH(Kind, kind);
        QFETCH(QByteArray, script);
        const ModelServer server(parsed(script));
        LocalModelServers servers(m_listeners, { { kind, server.port() } });
        const auto found = availability(servers);
        QCOMPARE(found.problem, Problem::none);
        QTEST(found.server, "name");
        QTEST(found.model, "model");
        for (const auto &request : server.requests())
            QVERIFY(!request["path"_L1].toString().contains(u"chat"));
    }

    void whatIsWrongIsTold_data()
    {
        QTest::addColumn<Kind>("kind");
        QTest::addColumn<QByteArray>("script");
        QTest::addColumn<Problem>("problem");
        const auto ollama = [](const char *label, const QByteArray &more, Problem problem) {
            QTest::newRow(label) << Kind::ollama << "{'kind':'ollama'," + more + "}" << problem;
        };
        ollama("old", "'version':'0.4.9'", Problem::tooOld);
        ollama("no version", "'version':'new'", Problem::noServer);
        ollama("empty", "'models':[]", Problem::noModel);
        ollama("only for comparing", "'models':[{'name':'e','show':{'capabilities':['embedding']}}]",
            Problem::noModel);
        ollama("only elsewhere", "'models':[{'name':'f','remote_host':'x'}]", Problem::onlyElsewhere);
        ollama("elsewhere by the details", "'models':[{'name':'f','show':{'remote_host':'x'}}]",
            Problem::onlyElsewhere);
        ollama("redirected", "'faults':{'/api/version':'redirect:/api/tags'}", Problem::noServer);
        ollama("a web page", "'faults':{'/api/version':'html'}", Problem::noServer);
        ollama("huge", "'faults':{'/api/tags':'huge'}", Problem::noModel);
        ollama("closed", "'faults':{'/api/version':'closed'}", Problem::noServer);
        ollama("silent", "'faults':{'/api/version':'slow'}", Problem::noServer);
        const auto llama = [](const char *label, const QByteArray &more, Problem problem) {
            QTest::newRow(label) << Kind::llamaCpp << "{'kind':'llama.cpp'," + more + "}" << problem;
        };
        llama("loading", "'faults':{'/health':'status:503'}", Problem::loading);
        llama("another program", "'faults':{'/health':'html'}", Problem::noServer);
        llama("no list", "'faults':{'/v1/models':'text:[]'}", Problem::noServer);
        llama(
            "another's models", "'models':[{'name':'m','owned_by':'organization_owner'}]", Problem::noServer);
        QTest::newRow("no vLLM") << Kind::vllm << QByteArray("{'kind':'llama.cpp'}") << Problem::noServer;
    }

    void whatIsWrongIsTold()
    {
        QFETCH(Kind, kind);
        QFETCH(QByteArray, script);
        const ModelServer server(parsed(script));
        LocalModelServers servers(m_listeners, { { kind, server.port() } });
        QTEST(availability(servers).problem, "problem");
        QVERIFY(!ask(*servers.startSession(u"x"_s), u"y"_s));
    }

    void anothersListenerIsNotSpokenTo()
    {
        const ModelServer server(script());
        m_listeners.answer = Listener::foreign;
        LocalModelServers servers(m_listeners, { { Kind::ollama, server.port() } });
        QCOMPARE(availability(servers).problem, Problem::someoneElses);
        m_listeners.answer = Listener::none;
        QCOMPARE(availability(servers).problem, Problem::noServer);
        QVERIFY(server.requests().isEmpty());
    }

    void firstPlaceWithAModelIsTaken()
    {
        const ModelServer empty(parsed("{'kind':'ollama','models':[]}"));
        const ModelServer llama(parsed("{'kind':'llama.cpp','models':['a']}"));
        const ModelServer vllm(parsed("{'kind':'vllm','models':['b']}"));
        LocalModelServers servers(m_listeners,
            { { Kind::ollama, empty.port() }, { Kind::llamaCpp, llama.port() },
                { Kind::vllm, vllm.port() } });
        QCOMPARE(availability(servers).model, u"a"_s);
        QCOMPARE(LocalModelServers::usualPlaces().constFirst().port, 11434);
    }

    // The bar is half a second; a process that is suspended by a busy machine takes longer.
    void nobodyThereIsKnownAtOnce()
    {
        QElapsedTimer timer;
        timer.start();
        QTcpServer closed;
        QVERIFY(closed.listen(QHostAddress::LocalHost));
        const auto port = closed.serverPort();
        closed.close();
        LocalModelServers servers(m_listeners, { { Kind::ollama, port } });
        QCOMPARE(availability(servers).problem, Problem::noServer);
        QVERIFY(timer.elapsed() < 500);
    }

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
        auto lines = script();
        lines["kind"_L1] = kind == Kind::ollama ? u"ollama"_s
            : kind == Kind::vllm                ? u"vllm"_s
                                                : u"llama.cpp"_s;
        const ModelServer server(lines);
        LocalModelServers servers(m_listeners, { { kind, server.port() } });
        QVERIFY(availability(servers).isAvailable());
        const auto session = servers.startSession(u"You answer — \"so\".\n"_s);
        const AdvisorReply expected{ .answer = u"Five."_s, .proposesRemoval = true, .groupId = u"a.b"_s };
        QVERIFY(ask(*session, u"How many?"_s) == expected);
        QVERIFY(ask(*session, u"And now?"_s) == expected);

        ChatRequest chat{ .model = u"small:1b"_s,
            .instructions = u"You answer — \"so\".\n"_s,
            .turns = { { .question = u"How many?"_s, .reply = reply() } },
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
        const ModelServer server(script());
        LocalModelServers servers(m_listeners, { { Kind::ollama, server.port() } });
        QVERIFY(availability(servers).isAvailable());
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
            QVERIFY(
                ask(*servers.startSession(AdvisorPrompt::instructions({ .groups = groups })), u"What?"_s));
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
        const ModelServer server(script(more));
        LocalModelServers servers(m_listeners, { { Kind::ollama, server.port() } });
        QVERIFY(availability(servers).isAvailable());
        const auto session = servers.startSession(u"x"_s);
        QVERIFY(!ask(*session, u"y"_s));
        QVERIFY(!server.requests(u"/api/chat"_s).isEmpty());
    }

    void redirectIsNotFollowed()
    {
        const ModelServer elsewhere(script());
        const auto target = "http://127.0.0.1:" + QByteArray::number(elsewhere.port()) + "/api/chat";
        const ModelServer server(script(",'faults':{'/api/chat':'redirect:" + target + "'}"));
        LocalModelServers servers(m_listeners, { { Kind::ollama, server.port() } });
        QVERIFY(availability(servers).isAvailable());
        QVERIFY(!ask(*servers.startSession(u"x"_s), u"y"_s));
        QVERIFY(elsewhere.requests().isEmpty());
    }

    void closingTheConnectionAfterAnAnswerDoesNoHarm()
    {
        const ModelServer server(script(",'faults':{'/api/chat':'close after','/api/tags':'close after'}"));
        LocalModelServers servers(m_listeners, { { Kind::ollama, server.port() } });
        QVERIFY(availability(servers).isAvailable());
        const auto session = servers.startSession(u"x"_s);
        QVERIFY(ask(*session, u"y"_s));
        QVERIFY(ask(*session, u"z"_s));
    }

    void failedQuestionIsNoPartOfTheTranscript()
    {
        const ModelServer server(nonsenseAtFirst());
        LocalModelServers servers(m_listeners, { { Kind::ollama, server.port() } });
        QVERIFY(availability(servers).isAvailable());
        const auto session = servers.startSession(u"x"_s);
        QVERIFY(!ask(*session, u"first"_s));
        QVERIFY(ask(*session, u"second"_s));
        const auto body = server.requests(u"/api/chat"_s).last()["body"_L1].toString();
        QVERIFY(!body.contains(u"first") && !body.contains(u"nonsense"));
    }

    void whatDoesNotFitIsNotSent()
    {
        const ModelServer server(script(",'context':2048"));
        LocalModelServers servers(m_listeners, { { Kind::ollama, server.port() } });
        QVERIFY(availability(servers).isAvailable());
        QVERIFY(!ask(*servers.startSession(QString(4'000, u'1')), u"y"_s));
        QVERIFY(server.requests(u"/api/chat"_s).isEmpty());
    }

    void secondQuestionAtOnceFailsAndTheFirstCanBeStopped()
    {
        const ModelServer server(script(",'faults':{'/api/chat':'half'}"));
        LocalModelServers servers(m_listeners, { { Kind::ollama, server.port() } });
        QVERIFY(availability(servers).isAvailable());
        const auto session = servers.startSession(u"x"_s);
        std::stop_source stop;
        const auto first = session->respond(u"y"_s, stop.get_token());
        const auto second = session->respond(u"z"_s, {});
        QVERIFY(second.isFinished() && !second.result());
        QTRY_COMPARE_WITH_TIMEOUT(server.requests(u"/api/chat"_s).size(), 1, patience);
        QVERIFY(!first.isFinished());
        stop.request_stop();
        QTRY_VERIFY_WITH_TIMEOUT(first.isFinished(), patience);
        QVERIFY(!first.result());
    }

    void whatListensIsLookedAtBeforeEveryQuestion()
    {
        const ModelServer server(script());
        LocalModelServers servers(m_listeners, { { Kind::ollama, server.port() } });
        QVERIFY(availability(servers).isAvailable());
        const auto session = servers.startSession(u"x"_s);
        QVERIFY(ask(*session, u"y"_s));
        m_listeners.answer = Listener::foreign;
        const auto before = server.requests().size();
        QVERIFY(!ask(*session, u"z"_s));
        QCOMPARE(server.requests().size(), before);
    }

    void allMayEndInTheMiddle()
    {
        const ModelServer server(script(",'faults':{'/api/chat':'slow','/api/tags':'slow:0.2'}"));
        auto servers = std::make_unique<LocalModelServers>(
            m_listeners, QList<LocalModelServers::Place>{ { Kind::ollama, server.port() } });
        QVERIFY(availability(*servers).isAvailable());
        auto session = servers->startSession(u"x"_s);
        const auto reply = session->respond(u"y"_s, {});
        QTRY_COMPARE_WITH_TIMEOUT(server.requests(u"/api/chat"_s).size(), 1, patience);
        const auto found = servers->availability();
        session.reset();
        servers.reset();
        QTRY_VERIFY_WITH_TIMEOUT(reply.isFinished() && found.isFinished(), patience);
        QVERIFY(!reply.result());
        QVERIFY(!found.result().isAvailable());
    }

private:
    static QJsonObject nonsenseAtFirst()
    {
        auto made = script();
        made["replies"_L1] = QJsonArray{ u"nonsense"_s, QString::fromUtf8(reply()) };
        return made;
    }
    static ModelAvailability availability(LocalModelServers &servers)
    {
        const auto found = servers.availability();
        return QTest::qWaitFor([&found] { return found.isFinished(); }, patience) ? found.result()
                                                                                  : ModelAvailability();
    }
    static std::optional<AdvisorReply> ask(ModelSession &session, const QString &question)
    {
        const auto reply = session.respond(question, {});
        return QTest::qWaitFor([&reply] { return reply.isFinished(); }, patience)
            ? reply.result()
            : AdvisorReply{ .answer = u"too late"_s };
    }

    FakeListeners m_listeners;

private Q_SLOTS:
    void init() { m_listeners.answer = Listener::trusted; }
};

QUILLBROOK_SUITE(TestLocalModelServers, QCoreApplication)
#include "tst_LocalModelServers.moc"

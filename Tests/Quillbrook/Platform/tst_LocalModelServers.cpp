#include "Platform/LocalModelServers.h"
#include "Support/AskedModels.h"
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
        const ModelServer server(modelScript(script));
        LocalModelServers servers(m_listeners, { { kind, server.port() } });
        const auto found = availabilityOf(servers);
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
        llama("loading", "'faults':{'/health':'loading'}", Problem::loading);
        llama("another program that is busy", "'faults':{'/health':'status:503'}", Problem::noServer);
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
        const ModelServer server(modelScript(script));
        LocalModelServers servers(m_listeners, { { kind, server.port() } });
        QTEST(availabilityOf(servers).problem, "problem");
        QVERIFY(!answerOf(*servers.startSession(u"x"_s), u"y"_s));
    }

    void anothersListenerIsNotSpokenTo()
    {
        const ModelServer server(modelReplying());
        m_listeners.answer = Listener::foreign;
        LocalModelServers servers(m_listeners, { { Kind::ollama, server.port() } });
        QCOMPARE(availabilityOf(servers).problem, Problem::someoneElses);
        m_listeners.answer = Listener::none;
        QCOMPARE(availabilityOf(servers).problem, Problem::noServer);
        QVERIFY(server.requests().isEmpty());
    }

    void firstPlaceWithAModelIsTaken()
    {
        const ModelServer empty(modelScript("{'kind':'ollama','models':[]}"));
        const ModelServer llama(modelScript("{'kind':'llama.cpp','models':['a']}"));
        const ModelServer vllm(modelScript("{'kind':'vllm','models':['b']}"));
        LocalModelServers servers(m_listeners,
            { { Kind::ollama, empty.port() }, { Kind::llamaCpp, llama.port() },
                { Kind::vllm, vllm.port() } });
        QCOMPARE(availabilityOf(servers).model, u"a"_s);
        QCOMPARE(LocalModelServers::usualPlaces().constFirst().port, 11434);
    }

    // Without waiting the second and a half that an answer may take. How long it takes is measured elsewhere.
    void nobodyThereIsKnownAtOnce()
    {
        QElapsedTimer timer;
        timer.start();
        QTcpServer closed;
        QVERIFY(closed.listen(QHostAddress::LocalHost));
        const auto port = closed.serverPort();
        closed.close();
        LocalModelServers servers(m_listeners, { { Kind::ollama, port } });
        QCOMPARE(availabilityOf(servers).problem, Problem::noServer);
        QVERIFY(timer.elapsed() < 1'400);
    }

    void allMayEndInTheMiddle()
    {
        const ModelServer server(modelReplying(",'faults':{'/api/chat':'slow','/api/tags':'slow:0.2'}"));
        auto servers = std::make_unique<LocalModelServers>(
            m_listeners, QList<LocalModelServers::Place>{ { Kind::ollama, server.port() } });
        QVERIFY(availabilityOf(*servers).isAvailable());
        auto session = servers->startSession(u"x"_s);
        const auto reply = session->respond(u"y"_s, {});
        QTRY_COMPARE_WITH_TIMEOUT(server.requests(u"/api/chat"_s).size(), 1, modelPatience);
        const auto found = servers->availability();
        session.reset();
        servers.reset();
        QTRY_VERIFY_WITH_TIMEOUT(reply.isFinished() && found.isFinished(), modelPatience);
        QVERIFY(!reply.result());
        QVERIFY(!found.result().isAvailable());
    }

private:
    FakeListeners m_listeners;

private Q_SLOTS:
    void init() { m_listeners.answer = Listener::trusted; }
};

QUILLBROOK_SUITE(TestLocalModelServers, QCoreApplication)
#include "tst_LocalModelServers.moc"

#include "Platform/LoopbackHttpClient.h"
#include "Support/Suite.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

using namespace Quillbrook;
using namespace std::chrono_literals;

namespace {

// Far beyond what a busy machine takes.
constexpr int patience = 20'000;

} // namespace

class TestLoopbackHttpClient : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void redirectIsAnAnswerAndNotFollowed()
    {
        m_answer = "HTTP/1.1 302 Found\r\nLocation: /there\r\nSet-Cookie: a=b\r\nContent-Length: 0\r\n\r\n";
        const auto answer = send({ .port = m_server->serverPort(), .path = "/here" });
        QCOMPARE(answer ? answer->status : 0, 302);
        QVERIFY(m_asked.startsWith("GET /here HTTP/1.1\r\n"));
        QCOMPARE(m_connections, 1);
        QVERIFY(send({ .port = m_server->serverPort(), .path = "/again" }));
        QVERIFY(!m_asked.toLower().contains("cookie"));
    }

    void bodyIsPostedAsItIs()
    {
        m_answer = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}";
        const auto answer = send({ .port = m_server->serverPort(), .path = "/x", .body = "{\"a\":1}" });
        QCOMPARE(answer ? answer->body : QByteArray(), QByteArray("{}"));
        QVERIFY(m_asked.startsWith("POST /x HTTP/1.1\r\n") && m_asked.contains("\r\nHost: 127.0.0.1:"));
        QVERIFY(m_asked.endsWith("\r\n\r\n{\"a\":1}"));
    }

    void pathCanNotLeadAway_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::newRow("another host") << QByteArray("//example.invalid/x");
        QTest::newRow("an address") << QByteArray("/@example.invalid:80/");
        QTest::newRow("a question") << QByteArray("/x?y=z#w");
    }

    void pathCanNotLeadAway()
    {
        QFETCH(QByteArray, path);
        m_answer = "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n";
        QVERIFY(send({ .port = m_server->serverPort(), .path = path }));
        QCOMPARE(m_connections, 1);
    }

    void limitsAndTheStopEndIt_data()
    {
        QTest::addColumn<bool>("isStopped");
        QTest::newRow("limit") << false;
        QTest::newRow("stop") << true;
    }

    void limitsAndTheStopEndIt()
    {
        QFETCH(bool, isStopped);
        std::stop_source stop;
        const auto limit = isStopped ? 60'000ms : 200ms;
        const auto future = m_client.send({ .port = m_server->serverPort(),
            .path = "/",
            .silence = limit,
            .total = limit,
            .stop = stop.get_token() });
        QTRY_VERIFY_WITH_TIMEOUT(!m_asked.isEmpty(), patience);
        if (isStopped)
            stop.request_stop();
        QTRY_VERIFY_WITH_TIMEOUT(future.isFinished(), patience);
        QVERIFY(!future.result());
    }

    void stopBeforehandEndsItAtOnce()
    {
        std::stop_source stop;
        stop.request_stop();
        QVERIFY(!send({ .port = m_server->serverPort(), .path = "/", .stop = stop.get_token() }));
    }

private:
    std::optional<HttpAnswer> send(const LoopbackRequest &request)
    {
        const auto future = m_client.send(request);
        return QTest::qWaitFor([&future] { return future.isFinished(); }, patience) ? future.result()
                                                                                    : std::nullopt;
    }

    LoopbackHttpClient m_client;
    std::unique_ptr<QTcpServer> m_server;
    /// What is answered to everything; nothing while empty.
    QByteArray m_answer;
    QByteArray m_asked;
    int m_connections = 0;

private Q_SLOTS:
    void init()
    {
        m_server = std::make_unique<QTcpServer>();
        QVERIFY(m_server->listen(QHostAddress::LocalHost));
        m_answer.clear();
        m_asked.clear();
        m_connections = 0;
        connect(m_server.get(), &QTcpServer::newConnection, this, [this] {
            auto *connection = m_server->nextPendingConnection();
            ++m_connections;
            connect(connection, &QTcpSocket::readyRead, this, [this, connection] {
                m_asked = connection->readAll();
                connection->write(m_answer);
            });
        });
    }
};

QUILLBROOK_SUITE(TestLoopbackHttpClient, QCoreApplication)
#include "tst_LoopbackHttpClient.moc"

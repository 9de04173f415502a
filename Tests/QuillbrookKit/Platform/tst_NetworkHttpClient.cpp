#include "Automation/UpdateCheck.h"
#include "Platform/NetworkHttpClient.h"
#include "Support/Suite.h"
#include "Support/TestCertificates.h"
#include "Support/TlsServer.h"

#include <QElapsedTimer>
#include <QLocale>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <algorithm>
#include <memory>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Future = QFuture<std::optional<HttpAnswer>>;

const QByteArray feed = R"({"version":"1.1","url":"https:\/\/updates.test/get","notes":"Faster"})";

// Far beyond what a busy machine takes.
constexpr int patience = 20'000;

/// Waits for the answer.
bool isDone(const Future &future)
{
    return QTest::qWaitFor([&future] { return future.isFinished(); }, patience);
}

} // namespace

class TestNetworkHttpClient : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // Whoever would tell the person's language now has one to tell.
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Austria));
        m_certificates = std::make_unique<TestCertificates>(u"DNS:localhost,IP:127.0.0.1"_s);
        QVERIFY2(m_certificates->isMade(), "the certificates could not be made");
    }

    void statusIsAnAnswer_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<int>("status");
        QTest::newRow("304") << QByteArray("304 Not Modified") << 304;
        QTest::newRow("400") << QByteArray("400 Bad Request") << 400;
        QTest::newRow("401") << QByteArray("401 Unauthorized") << 401;
        QTest::newRow("404") << QByteArray("404 Not Found") << 404;
        QTest::newRow("418") << QByteArray("418 I'm a teapot") << 418;
        QTest::newRow("500") << QByteArray("500 Internal Server Error") << 500;
        QTest::newRow("503") << QByteArray("503 Service Unavailable") << 503;
    }

    void statusIsAnAnswer()
    {
        QFETCH(QByteArray, line);
        QFETCH(int, status);
        m_server->answer
            = [line](QSslSocket &connection, const QByteArray &) { TlsServer::write(connection, line, {}); };
        const HttpAnswer expected{ .status = status };
        QVERIFY(get(request()) == expected);
    }

    void sendsWhatIsWantedAndNothingElse()
    {
        const auto future = UpdateCheck::check(*m_client, u"7.8.9"_s, m_server->url(u"/version.json"_s));
        QTRY_VERIFY_WITH_TIMEOUT(future.isFinished(), patience);
        QCOMPARE(m_server->heads.size(), 1);
        auto lines = m_server->heads.first().split('\n');
        for (auto &line : lines)
            line = line.trimmed();
        QCOMPARE(lines.takeFirst(), QByteArray("GET /version.json HTTP/1.1"));
        std::ranges::sort(lines);
        const auto host = m_server->url({}).authority().toLatin1();
        const QList<QByteArray> expected{ "Accept-Encoding: identity", "Accept-Language: *",
            "Cache-Control: no-cache", "Connection: Keep-Alive", "Host: " + host, "Pragma: no-cache",
            "User-Agent: Quillbrook" };
        QCOMPARE(lines, expected);
    }

    void requestWithoutHeadersTellsNoLanguage()
    {
        QVERIFY(get(request()));
        const auto &head = m_server->heads.first();
        QVERIFY(head.contains("\r\nAccept-Language: *\r\n"));
        QVERIFY(head.contains("\r\nUser-Agent: Quillbrook"));
        QVERIFY(!head.contains("de-AT"));
        QVERIFY(!head.contains("Mozilla"));
    }

    void redirectIsFollowed_data()
    {
        QTest::addColumn<bool>("isElsewhere");
        QTest::newRow("here") << false;
        QTest::newRow("to another host") << true;
    }

    void redirectIsFollowed()
    {
        QFETCH(bool, isElsewhere);
        const auto there
            = isElsewhere ? m_server->url(u"/there"_s, u"localhost"_s).toEncoded() : QByteArray("/there");
        m_server->answer = [there](QSslSocket &connection, const QByteArray &path) {
            if (path == "/there")
                TlsServer::write(connection, "200 OK", feed);
            else
                TlsServer::write(connection, "302 Found", {},
                    "Location: " + there + "\r\nSet-Cookie: who=you; Path=/\r\n");
        };
        const HttpAnswer expected{ .status = 200, .body = feed };
        QVERIFY(get(request()) == expected);
        QCOMPARE(m_server->heads.size(), 2);
        const auto &second = m_server->heads.last();
        QVERIFY(second.startsWith("GET /there "));
        QCOMPARE(second.contains("\r\nHost: localhost:"), isElsewhere);
        QVERIFY(!second.toLower().contains("cookie"));
        QVERIFY(second.contains("\r\nAccept-Language: *"));
        QVERIFY(second.contains("\r\nUser-Agent: Quillbrook"));
        QVERIFY(!second.toLower().contains("referer"));
    }

    void redirectAwayFromTlsIsRefused()
    {
        QTcpServer plain;
        QVERIFY(plain.listen(QHostAddress::LocalHost));
        const auto there = "http://127.0.0.1:" + QByteArray::number(plain.serverPort()) + "/version.json";
        m_server->answer = [there](QSslSocket &connection, const QByteArray &) {
            TlsServer::write(connection, "302 Found", feed, "Location: " + there + "\r\n");
        };
        QVERIFY(!get(request()));
        QCOMPARE(m_server->heads.size(), 1);
        QTest::qWait(100);
        QVERIFY(!plain.hasPendingConnections());
    }

    void redirectInACircleEnds()
    {
        m_server->answer = [](QSslSocket &connection, const QByteArray &) {
            TlsServer::write(connection, "302 Found", {}, "Location: /version.json\r\n");
        };
        QVERIFY(!get(request()));
        QVERIFY(m_server->heads.size() < 10);
    }

    void cookiesAreNotKept()
    {
        m_server->answer = [](QSslSocket &connection, const QByteArray &) {
            TlsServer::write(connection, "200 OK", feed, "Set-Cookie: who=you; Path=/; Max-Age=86400\r\n");
        };
        QVERIFY(get(request()));
        QVERIFY(get(request()));
        QCOMPARE(m_server->heads.size(), 2);
        QVERIFY(!m_server->heads.last().toLower().contains("cookie"));
    }

    void everyRequestHasAConnectionOfItsOwn()
    {
        m_server->answer = [](QSslSocket &connection, const QByteArray &) {
            connection.write(
                "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(feed.size()) + "\r\n\r\n" + feed);
        };
        QVERIFY(get(request()));
        QTRY_COMPARE_WITH_TIMEOUT(m_server->ended, 1, patience);
        QVERIFY(get(request()));
        QTRY_COMPARE_WITH_TIMEOUT(m_server->ended, 2, patience);
    }

    void dripEndsAtTheTotal()
    {
        m_server->answer = [](QSslSocket &connection, const QByteArray &) {
            connection.write("HTTP/1.1 200 OK\r\nContent-Length: 60000\r\n\r\n");
            auto *drip = new QTimer(&connection);
            QObject::connect(drip, &QTimer::timeout, &connection, [&connection] { connection.write("."); });
            drip->start(20ms);
        };
        auto asked = request();
        asked.total = 400ms;
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!get(asked));
        QVERIFY(timer.elapsed() >= 350);
        QCOMPARE(m_server->heads.size(), 1);
    }

    void silenceEnds_data()
    {
        QTest::addColumn<QByteArray>("said");
        QTest::newRow("from the beginning") << QByteArray();
        QTest::newRow("in the body") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n{");
    }

    void silenceEnds()
    {
        QFETCH(QByteArray, said);
        m_server->answer = [said](QSslSocket &connection, const QByteArray &) { connection.write(said); };
        auto asked = request();
        asked.silence = 300ms;
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!get(asked));
        QVERIFY(timer.elapsed() >= 250);
        QVERIFY(timer.elapsed() < 9000);
        QCOMPARE(m_server->heads.size(), 1);
    }

    void steadyTalkOutlastsTheSilence()
    {
        m_server->answer = [](QSslSocket &connection, const QByteArray &) {
            connection.write("HTTP/1.1 200 OK\r\nContent-Length: 8\r\n\r\n");
            auto *drip = new QTimer(&connection);
            QObject::connect(drip, &QTimer::timeout, &connection, [&connection] { connection.write("."); });
            drip->start(200ms);
        };
        auto asked = request();
        asked.silence = 1s;
        const HttpAnswer expected{ .status = 200, .body = "........" };
        QVERIFY(get(asked) == expected);
    }

    void bodyIsTakenUpToTheLimit()
    {
        for (const auto size : { 65'536, 65'537 }) {
            m_server->answer = [size](QSslSocket &connection, const QByteArray &) {
                TlsServer::write(connection, "200 OK", QByteArray(size, 'x'));
            };
            const auto answer = get(request());
            QCOMPARE(answer ? answer->body.size() : 0, size == 65'536 ? size : 0);
        }
    }

    void endlessBodyIsGivenUp()
    {
        m_server->answer = [](QSslSocket &connection, const QByteArray &) {
            connection.write("HTTP/1.1 200 OK\r\n\r\n");
            auto *flood = new QTimer(&connection);
            QObject::connect(flood, &QTimer::timeout, &connection, [&connection] {
                if (connection.bytesToWrite() < 1'000'000)
                    connection.write(QByteArray(100'000, 'x'));
            });
            flood->start(0ms);
        };
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!get(request()));
        QVERIFY(timer.elapsed() < 9000);
        QTRY_COMPARE_WITH_TIMEOUT(m_server->ended, 1, patience);
    }

    void packedBodyIsNotUnpacked()
    {
        const QByteArray packed("\x1f\x8b no real one");
        m_server->answer = [packed](QSslSocket &connection, const QByteArray &) {
            TlsServer::write(connection, "200 OK", packed, "Content-Encoding: gzip\r\n");
        };
        const HttpAnswer expected{ .status = 200, .body = packed };
        QVERIFY(get(request()) == expected);
    }

    void cutOffBodyIsNoAnswer()
    {
        m_server->answer = [](QSslSocket &connection, const QByteArray &) {
            connection.write("HTTP/1.1 200 OK\r\nContent-Length: 5000\r\n\r\n" + feed);
            connection.disconnectFromHost();
        };
        QVERIFY(!get(request()));
        QCOMPARE(m_server->heads.size(), 1);
    }

    void systemsAuthoritiesDoNotKnowTheTests()
    {
        m_client = std::make_unique<NetworkHttpClient>();
        QVERIFY(!get(request()));
        QVERIFY(m_server->heads.isEmpty());
    }

    void wrongHostNameIsNotTrusted()
    {
        const TestCertificates others(u"DNS:other.test"_s);
        QVERIFY(others.isMade());
        m_server = std::make_unique<TlsServer>(others.server());
        m_client = std::make_unique<NetworkHttpClient>(others.trusting());
        QVERIFY(!get(request()));
        QVERIFY(m_server->heads.isEmpty());
    }

    void refusedConnectionIsNoAnswer()
    {
        const auto asked = request();
        m_server.reset();
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!get(asked));
        QVERIFY(timer.elapsed() < 9000);
    }

    void whatIsNoTlsIsNoAnswer()
    {
        QTcpServer plain;
        QVERIFY(plain.listen(QHostAddress::LocalHost));
        connect(&plain, &QTcpServer::newConnection, this, [&plain] {
            plain.nextPendingConnection()->write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}");
        });
        auto asked = request();
        asked.url.setPort(plain.serverPort());
        QVERIFY(!get(asked));
    }

    void whatIsNoHttpIsNoAnswer()
    {
        m_server->answer = [](QSslSocket &connection, const QByteArray &) {
            connection.write("220 mail.test ESMTP\r\n");
            connection.disconnectFromHost();
        };
        QVERIFY(!get(request()));
        QVERIFY(!m_server->heads.isEmpty());
    }

    void onlyTlsIsAsked_data()
    {
        QTest::addColumn<QString>("url");
        for (const auto *url : { "", "http://127.0.0.1/", "ftp://127.0.0.1/", "file:///etc/hostname",
                 "data:text/plain,x", "qrc:/x", "https:", "https:///version.json", "version.json" })
            QTest::addRow("'%s'", url) << QString::fromLatin1(url);
    }

    void onlyTlsIsAsked()
    {
        QFETCH(QString, url);
        const auto future = m_client->get({ .url = QUrl(url) });
        QVERIFY(future.isFinished());
        QVERIFY(!future.result());
    }

    void clientMayEndWhileAsking()
    {
        m_server->answer = [](QSslSocket &, const QByteArray &) {};
        const auto early = m_client->get(request());
        const auto late = m_client->get(request());
        QTRY_VERIFY_WITH_TIMEOUT(m_server->heads.size() == 2, patience);
        const auto unsent = m_client->get(request());
        m_client.reset();
        for (const auto &future : { early, late, unsent }) {
            QVERIFY(future.isFinished());
            QVERIFY(!future.isCanceled());
            QVERIFY(!future.result());
        }
    }

    void clientMayEndByTheAnswer()
    {
        int answers = 0;
        m_client->get(request()).then([&](const std::optional<HttpAnswer> &) {
            m_client.reset();
            ++answers;
        });
        QTRY_COMPARE_WITH_TIMEOUT(answers, 1, patience);
        QTest::qWait(50);
        QVERIFY(!m_client);
    }

    void nobodyHasToWait()
    {
        static_cast<void>(m_client->get(request()));
        QTRY_COMPARE_WITH_TIMEOUT(m_server->heads.size(), 1, patience);
        QTRY_COMPARE_WITH_TIMEOUT(m_server->ended, 1, patience);
    }

private:
    HttpRequest request(const QString &path = u"/version.json"_s) const
    {
        return { .url = m_server->url(path), .silence = 10s, .total = 10s };
    }
    std::optional<HttpAnswer> get(const HttpRequest &request)
    {
        const auto future = m_client->get(request);
        return isDone(future) ? future.result() : HttpAnswer{ .status = -1, .body = "too late" };
    }

    std::unique_ptr<TestCertificates> m_certificates;
    std::unique_ptr<TlsServer> m_server;
    std::unique_ptr<NetworkHttpClient> m_client;

private Q_SLOTS:
    void init()
    {
        m_server = std::make_unique<TlsServer>(m_certificates->server());
        m_server->answer = [](QSslSocket &connection, const QByteArray &) {
            TlsServer::write(connection, "200 OK", feed, "Content-Type: application/json\r\n");
        };
        m_client = std::make_unique<NetworkHttpClient>(m_certificates->trusting());
    }

    void cleanup()
    {
        m_client.reset();
        m_server.reset();
    }
};

QUILLBROOK_SUITE(TestNetworkHttpClient, QCoreApplication)
#include "tst_NetworkHttpClient.moc"

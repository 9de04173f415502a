#include "Platform/Linux/Processes/LinuxLoopbackListeners.h"
#include "Support/Suite.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(Quillbrook::Listener)

class TestLinuxLoopbackListeners : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ownListenerIsSeenAsLongAsItListens()
    {
        const LinuxLoopbackListeners listeners;
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        const auto port = server.serverPort();
        QCOMPARE(listeners.at(port), Listener::trusted);
        server.close();
        QCOMPARE(listeners.at(port), Listener::none);
        QVERIFY(server.listen(QHostAddress::Any, port));
        QCOMPARE(listeners.at(port), Listener::trusted);
    }

    void connectionIsNoListener()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, server.serverPort());
        QVERIFY(socket.waitForConnected());
        QCOMPARE(LinuxLoopbackListeners().at(socket.localPort()), Listener::none);
    }

    void whoeverMayTakeTheConnectionHasToBeTrusted_data()
    {
        QTest::addColumn<QByteArray>("lines");
        QTest::addColumn<Listener>("expected");
        const auto line = [](const char *address, const char *state, int owner) {
            return QByteArray("   0: ") + address + ":2CAA 00000000:0000 " + state
                + " 00000000:00000000 00:00000000 00000000  " + QByteArray::number(owner) + "        0 1 1\n";
        };
        const auto *here = "0100007F";
        QTest::newRow("nobody") << QByteArray() << Listener::none;
        QTest::newRow("own") << line(here, "0A", 1000) << Listener::trusted;
        QTest::newRow("root's") << line(here, "0A", 0) << Listener::trusted;
        QTest::newRow("a service's") << line(here, "0A", 999) << Listener::trusted;
        QTest::newRow("another person's") << line(here, "0A", 1001) << Listener::foreign;
        QTest::newRow("nobody's") << line(here, "0A", 65534) << Listener::foreign;
        QTest::newRow("on every address") << line("00000000", "0A", 1001) << Listener::foreign;
        QTest::newRow("on every address of both kinds")
            << line("00000000000000000000000000000000", "0A", 1001) << Listener::foreign;
        QTest::newRow("on the mapped address")
            << line("0000000000000000FFFF00000100007F", "0A", 1001) << Listener::foreign;
        QTest::newRow("on another address") << line("0200007F", "0A", 1001) << Listener::none;
        QTest::newRow("a connection") << line(here, "01", 1001) << Listener::none;
        QTest::newRow("own and another's")
            << line(here, "0A", 1000) + line("00000000", "0A", 1001) << Listener::foreign;
        QTest::newRow("another port") << line(here, "0A", 1000).replace("2CAA", "2CAB") << Listener::none;
        QTest::newRow("damaged") << QByteArray("0: 0100007F:2CAA\n\n x y z 0A\n") << Listener::none;
    }

    void whoeverMayTakeTheConnectionHasToBeTrusted()
    {
        QFETCH(QByteArray, lines);
        const QTemporaryDir folder;
        QFile table(folder.filePath(u"tcp"_s));
        QVERIFY(table.open(QIODevice::WriteOnly));
        table.write("  sl  local_address rem_address   st\n" + lines);
        table.close();
        const auto path = table.fileName().toStdString();
        const auto missing = folder.filePath(u"none"_s).toStdString();
        const LinuxLoopbackListeners first({ .tcp = path, .tcp6 = missing, .userId = 1000 });
        QTEST(first.at(11434), "expected");
        const LinuxLoopbackListeners second({ .tcp = missing, .tcp6 = path, .userId = 1000 });
        QTEST(second.at(11434), "expected");
    }
};

QUILLBROOK_SUITE(TestLinuxLoopbackListeners, QCoreApplication)
#include "tst_LinuxLoopbackListeners.moc"

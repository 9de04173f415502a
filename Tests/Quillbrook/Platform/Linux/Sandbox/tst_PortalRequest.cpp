#include "Platform/Linux/Sandbox/PortalRequest.h"
#include "Support/FakePortal.h"
#include "Support/PrivateBus.h"
#include "Support/Suite.h"

#include <QTest>

#include <memory>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

using Response = std::optional<PortalRequest::Response>;

class TestPortalRequest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_bus = std::make_unique<PrivateBus>();
        m_portal = std::make_unique<FakePortal>();
        m_client = m_bus->connection();
        m_services = m_bus->connection();
        QVERIFY(m_client.isConnected());
        m_requests = std::make_unique<PortalRequest>(m_client);
    }
    void cleanup()
    {
        m_requests.reset();
        m_bus.reset();
        m_portal.reset();
    }

    void answerIsHandedOn_data()
    {
        QTest::addColumn<FakePortal::Answer>("answer");
        QTest::newRow("after the handle") << FakePortal::Answer::response;
        QTest::newRow("before the handle") << FakePortal::Answer::responseFirst;
    }
    void answerIsHandedOn()
    {
        QFETCH(FakePortal::Answer, answer);
        m_portal->answer = answer;
        m_portal->results = { { u"autostart"_s, true }, { u"uris"_s, QStringList{ u"file:///a"_s } } };
        QVERIFY(m_portal->offer(m_services));
        const auto response = ask(10s);
        QTRY_VERIFY(response.isFinished());
        QVERIFY(response.result().has_value());
        QCOMPARE(response.result()->code, uint{ PortalRequest::Response::granted });
        QCOMPARE(response.result()->results, m_portal->results);
        QVERIFY(m_portal->closed.isEmpty());
    }

    void callKeepsItsArgumentsAndGetsAToken()
    {
        QVERIFY(m_portal->offer(m_services));
        const auto first = ask(10s);
        QTRY_VERIFY(first.isFinished());
        const auto second = ask(10s);
        QTRY_VERIFY(second.isFinished());
        QCOMPARE(m_portal->calls.size(), 2);
        const auto &call = m_portal->calls.constFirst();
        QCOMPARE(call.interface, u"org.freedesktop.portal.FileChooser"_s);
        QCOMPARE(call.method, u"OpenFile"_s);
        QCOMPARE(call.arguments.size(), 3);
        QCOMPARE(call.arguments.at(0).toString(), u"window"_s);
        QCOMPARE(call.arguments.at(1).toString(), u"title"_s);
        QCOMPARE(call.options.value(u"directory"_s), QVariant(true));
        QCOMPARE(call.options.size(), 2);
        const auto token = call.options.value(u"handle_token"_s).toString();
        QVERIFY(!token.isEmpty());
        QVERIFY(token != m_portal->calls.at(1).options.value(u"handle_token"_s).toString());
    }

    void personMayTakeTheirTime_data()
    {
        QTest::addColumn<FakePortal::Answer>("answer");
        QTest::newRow("handle of the token") << FakePortal::Answer::handleOnly;
        QTest::newRow("another handle") << FakePortal::Answer::otherHandle;
    }
    void personMayTakeTheirTime()
    {
        QFETCH(FakePortal::Answer, answer);
        m_portal->answer = answer;
        m_portal->code = 1;
        QVERIFY(m_portal->offer(m_services));
        const auto response = ask(10s);
        QTRY_COMPARE(m_portal->handles.size(), 1);
        settle();
        QVERIFY(!response.isFinished());
        m_portal->respond(m_services);
        QTRY_VERIFY(response.isFinished());
        QVERIFY(response.result().has_value());
        QCOMPARE(response.result()->code, uint{ PortalRequest::Response::cancelled });
    }

    void answersFindTheirQuestions()
    {
        m_portal->answer = FakePortal::Answer::handleOnly;
        QVERIFY(m_portal->offer(m_services));
        const auto first = ask(10s);
        QTRY_COMPARE(m_portal->handles.size(), 1);
        const auto second = ask(10s);
        QTRY_COMPARE(m_portal->handles.size(), 2);
        m_portal->respond(m_services);
        QTRY_VERIFY(second.isFinished());
        settle();
        QVERIFY(!first.isFinished());
    }

    void withoutAnAnswerThereIsNone_data()
    {
        QTest::addColumn<FakePortal::Answer>("answer");
        QTest::addColumn<bool>("takesBack");
        QTest::newRow("the portal refuses the call") << FakePortal::Answer::error << false;
        QTest::newRow("the portal gives no handle") << FakePortal::Answer::plainReply << false;
        QTest::newRow("the portal is silent") << FakePortal::Answer::none << true;
        QTest::newRow("nobody answers") << FakePortal::Answer::handleOnly << true;
        QTest::newRow("nobody answers, another handle") << FakePortal::Answer::otherHandle << true;
    }
    void withoutAnAnswerThereIsNone()
    {
        QFETCH(FakePortal::Answer, answer);
        QFETCH(bool, takesBack);
        m_portal->answer = answer;
        QVERIFY(m_portal->offer(m_services));
        const auto response = ask(takesBack ? 300ms : 60s);
        QTRY_VERIFY(response.isFinished());
        QVERIFY(!response.result().has_value());
        settle();
        QTRY_COMPARE(m_portal->closed, takesBack ? m_portal->handles : QStringList());
        // What comes now is for nobody.
        m_portal->respond(m_services);
        settle();
    }

    void withoutAPortalThereIsNone()
    {
        const auto response = ask(60s);
        QTRY_VERIFY(response.isFinished());
        QVERIFY(!response.result().has_value());
    }

    void withoutABusThereIsNone()
    {
        m_requests = std::make_unique<PortalRequest>(QDBusConnection(u"not connected"_s));
        const auto response = ask(60s);
        QVERIFY(response.isFinished());
        QVERIFY(!response.result().has_value());
    }

    void openQuestionsAreTakenBackAtTheEnd()
    {
        m_portal->answer = FakePortal::Answer::handleOnly;
        QVERIFY(m_portal->offer(m_services));
        const auto response = ask(60s);
        QTRY_COMPARE(m_portal->handles.size(), 1);
        settle();
        m_requests.reset();
        QVERIFY(response.isFinished());
        QVERIFY(response.isCanceled());
        QTRY_COMPARE(m_portal->closed, m_portal->handles);
    }

private:
    [[nodiscard]] QFuture<Response> ask(std::chrono::milliseconds timeout)
    {
        auto message = PortalRequest::method(u"org.freedesktop.portal.FileChooser"_s, u"OpenFile"_s);
        message << u"window"_s << u"title"_s << QVariantMap{ { u"directory"_s, true } };
        return m_requests->call(message, timeout);
    }

    // Whatever was sent before has come when this returns.
    void settle()
    {
        const auto question = QDBusMessage::createMethodCall(
            u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s, u"GetId"_s);
        for (const auto &connection : { m_client, m_services, m_client })
            QCOMPARE(connection.call(question).type(), QDBusMessage::ReplyMessage);
        QCoreApplication::processEvents();
    }

    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<FakePortal> m_portal;
    QDBusConnection m_client{ u"not yet"_s };
    QDBusConnection m_services = m_client;
    std::unique_ptr<PortalRequest> m_requests;
};

QUILLBROOK_SUITE(TestPortalRequest, QCoreApplication)
#include "tst_PortalRequest.moc"

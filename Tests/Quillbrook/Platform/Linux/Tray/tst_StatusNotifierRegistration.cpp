#include "Platform/Linux/Tray/StatusNotifierRegistration.h"
#include "Support/FakeTrayPanel.h"
#include "Support/PrivateBus.h"
#include "Support/Suite.h"

#include <QDBusConnectionInterface>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestStatusNotifierRegistration : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_bus = std::make_unique<PrivateBus>();
        m_own = m_bus->connection();
        m_desktop = m_bus->connection();
        QVERIFY(m_own.isConnected() && m_desktop.isConnected());
        m_panel = std::make_unique<FakeTrayPanel>(m_desktop);
        m_registration = std::make_unique<StatusNotifierRegistration>(m_own);
    }

    void cleanup()
    {
        m_registration.reset();
        m_panel.reset();
        m_bus.reset();
    }

    void tellsTheWatcherThatIsThere()
    {
        m_panel->start();
        const QSignalSpy changes(m_registration.get(), &StatusNotifierRegistration::shownChanged);
        m_registration->start();
        QTRY_VERIFY(m_registration->isShown());
        QCOMPARE(m_panel->items, QStringList({ ownName() }));
        QCOMPARE(changes.count(), 1);
        QVERIFY(m_desktop.interface()->isServiceRegistered(ownName()));
    }

    void tellsTheWatcherThatComesLater()
    {
        m_registration->start();
        settle();
        QVERIFY(!m_registration->isShown());
        m_panel->start();
        QTRY_VERIFY(m_registration->isShown());
        QCOMPARE(m_panel->items, QStringList({ ownName() }));
    }

    void tellsEveryWatcherAnew()
    {
        m_panel->start();
        m_registration->start();
        QTRY_VERIFY(m_registration->isShown());
        const QSignalSpy changes(m_registration.get(), &StatusNotifierRegistration::shownChanged);
        for (int restart = 1; restart <= 3; ++restart) {
            m_panel->stop();
            QTRY_VERIFY(!m_registration->isShown());
            m_panel->start();
            QTRY_VERIFY(m_registration->isShown());
            QCOMPARE(m_panel->items.size(), restart + 1);
            QCOMPARE(m_panel->items.last(), ownName());
        }
        QCOMPARE(changes.count(), 6);
    }

    void comesBackToAWatcherThatDropsIt()
    {
        m_panel->start();
        m_registration->start();
        QTRY_VERIFY(m_registration->isShown());
        m_panel->drop(u"org.kde.StatusNotifierItem-1-1"_s);
        settle();
        QVERIFY(m_registration->isShown());
        for (const auto *after : { "", "/StatusNotifierItem", "@/StatusNotifierItem" }) {
            m_panel->drop(ownName() + QLatin1StringView(after));
            QTRY_VERIFY(!m_registration->isShown());
            QTRY_VERIFY(m_registration->isShown());
        }
        QCOMPARE(m_panel->items, QStringList(4, ownName()));
    }

    void comesBackToTheWatcherThatIsThere()
    {
        m_panel->start();
        m_registration->start();
        QTRY_VERIFY(m_registration->isShown());
        m_panel->drop(ownName());
        m_panel->stop();
        QTRY_VERIFY(!m_registration->isShown());
        m_panel->start();
        QTRY_VERIFY(m_registration->isShown());
        QTest::qWait(2 * StatusNotifierRegistration::firstPause.count());
        QCOMPARE(m_panel->items, QStringList(2, ownName()));
    }

    void isShownOnlyWithAPanel()
    {
        m_panel->isPanelThere = false;
        m_panel->start();
        m_registration->start();
        QTRY_COMPARE(m_panel->items.size(), 1);
        settle();
        QVERIFY(!m_registration->isShown());
        m_panel->setPanel(true);
        QTRY_VERIFY(m_registration->isShown());
        m_panel->setPanel(false);
        QTRY_VERIFY(!m_registration->isShown());
        QCOMPARE(m_panel->items.size(), 1);
    }

    void isNotShownByAWatcherThatRefuses()
    {
        m_panel->refuses = true;
        m_panel->start();
        m_registration->start();
        settle();
        m_panel->setPanel(true);
        settle();
        QVERIFY(!m_registration->isShown());
    }

    void startsNoWatcher()
    {
        // Nobody has the name, and nobody is asked for by it.
        const QSignalSpy changes(m_registration.get(), &StatusNotifierRegistration::shownChanged);
        m_registration->start();
        settle();
        QCOMPARE(changes.count(), 0);
        QVERIFY(!m_desktop.interface()->isServiceRegistered(FakeTrayPanel::name()));
    }

    void takesTheConnectionsNameWhereItsOwnIsTaken()
    {
        auto other = m_bus->connection();
        QVERIFY(other.registerService(ownName()));
        m_panel->start();
        m_registration->start();
        QTRY_VERIFY(m_registration->isShown());
        QCOMPARE(m_panel->items, QStringList({ m_own.baseService() }));
        m_registration.reset();
        QVERIFY(m_desktop.interface()->isServiceRegistered(ownName()));
    }

    void startingTwiceTellsOnce()
    {
        m_panel->start();
        m_registration->start();
        m_registration->start();
        QTRY_VERIFY(m_registration->isShown());
        settle();
        QCOMPARE(m_panel->items.size(), 1);
    }

    void nameGoesWithIt()
    {
        m_registration->start();
        QVERIFY(m_desktop.interface()->isServiceRegistered(ownName()));
        m_registration.reset();
        QVERIFY(!m_desktop.interface()->isServiceRegistered(ownName()));
    }

    void nothingWithoutABus()
    {
        StatusNotifierRegistration registration(QDBusConnection(u"not connected"_s));
        const QSignalSpy changes(&registration, &StatusNotifierRegistration::shownChanged);
        registration.start();
        QCoreApplication::processEvents();
        QVERIFY(!registration.isShown());
        QCOMPARE(changes.count(), 0);
    }

private:
    [[nodiscard]] static QString ownName()
    {
        return u"org.kde.StatusNotifierItem-%1-1"_s.arg(QCoreApplication::applicationPid());
    }
    /// Until all that has been said on the bus has come to both.
    void settle()
    {
        const auto question = QDBusMessage::createMethodCall(
            u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s, u"GetId"_s);
        // A call, its answer, and the question that follows it.
        for (int round = 0; round < 4; ++round)
            for (const auto &connection : { m_own, m_desktop }) {
                QCOMPARE(connection.call(question).type(), QDBusMessage::ReplyMessage);
                QCoreApplication::processEvents();
            }
    }

    std::unique_ptr<PrivateBus> m_bus;
    QDBusConnection m_own{ u"not yet"_s };
    QDBusConnection m_desktop = m_own;
    std::unique_ptr<FakeTrayPanel> m_panel;
    std::unique_ptr<StatusNotifierRegistration> m_registration;
};

QUILLBROOK_SUITE(TestStatusNotifierRegistration, QCoreApplication)
#include "tst_StatusNotifierRegistration.moc"

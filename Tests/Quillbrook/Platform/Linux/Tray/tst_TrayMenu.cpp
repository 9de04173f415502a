#include "Platform/Linux/Tray/TrayMenu.h"
#include "Support/PrivateBus.h"
#include "Support/Suite.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingReply>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

const auto interface = u"com.canonical.dbusmenu"_s;

/// A panel that listens.
class MenuListener : public QObject
{
    Q_OBJECT

public:
    QList<QList<MenuEntryProperties>> updates;
    QList<qsizetype> losses;
    int layouts = 0;

public Q_SLOTS:
    void update(
        const QList<Quillbrook::MenuEntryProperties> &changed, const QList<Quillbrook::MenuEntryLosses> &lost)
    {
        updates.append(changed);
        losses.append(lost.size());
    }
    void layOut(uint, int) { ++layouts; }
};

} // namespace

class TestTrayMenu : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_bus = std::make_unique<PrivateBus>();
        m_panel = m_bus->connection();
        auto own = m_bus->connection();
        QVERIFY(m_panel.isConnected() && own.isConnected());
        QVERIFY(own.registerService(u"menu.test"_s));
        m_menu = std::make_unique<TrayMenu>(own);
        m_menu->setFigure(u"79.4 GB"_s);
        m_menu->publish();
    }

    void cleanup()
    {
        m_menu.reset();
        m_bus.reset();
    }

    void layoutHasTheEntriesInTheirOrder()
    {
        const auto reply = call(u"GetLayout"_s, { 0, -1, QStringList() });
        QCOMPARE(reply.signature(), u"u(ia{sv}av)"_s);
        const auto root = layout();
        QCOMPARE(root.id, 0);
        QCOMPARE(root.properties, QVariantMap({ { u"children-display"_s, u"submenu"_s } }));
        QStringList labels;
        for (const auto &entry : root.children)
            labels.append(entry.properties.value(u"label"_s, u"-"_s).toString());
        QCOMPARE(labels, QStringList({ u"79.4 GB free"_s, u"-"_s, u"Open"_s, u"Check now"_s, u"Quit"_s }));
        QCOMPARE(root.children[0].properties.value(u"enabled"_s), QVariant(false));
        QCOMPARE(root.children[1].properties, QVariantMap({ { u"type"_s, u"separator"_s } }));
        for (const auto &entry : root.children.mid(2))
            QCOMPARE(entry.properties.keys(), QStringList({ u"label"_s }));
    }

    void layoutIsAsDeepAsAsked()
    {
        QVERIFY(layout(0, 0).children.isEmpty());
        QCOMPARE(layout(0, 1).children.size(), 5);
        const auto open = layout(3, -1);
        QCOMPARE(open.id, 3);
        QCOMPARE(open.properties.value(u"label"_s), QVariant(u"Open"_s));
        QVERIFY(open.children.isEmpty());
    }

    void layoutHasTheNamedPropertiesOnly()
    {
        const auto root = layout(0, -1, { u"enabled"_s, u"type"_s });
        QVERIFY(root.properties.isEmpty());
        QCOMPARE(root.children[0].properties, QVariantMap({ { u"enabled"_s, false } }));
        QCOMPARE(root.children[1].properties, QVariantMap({ { u"type"_s, u"separator"_s } }));
        QVERIFY(root.children[2].properties.isEmpty());
    }

    void unknownEntryIsAnError_data()
    {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QVariantList>("arguments");
        QTest::newRow("layout") << u"GetLayout"_s << QVariantList{ 6, -1, QStringList() };
        QTest::newRow("layout of a negative one") << u"GetLayout"_s << QVariantList{ -1, -1, QStringList() };
        QTest::newRow("property") << u"GetProperty"_s << QVariantList{ 6, u"label"_s };
        QTest::newRow("property that is not there") << u"GetProperty"_s << QVariantList{ 3, u"colour"_s };
        QTest::newRow("event") << u"Event"_s
                               << QVariantList{ 6, u"clicked"_s, QVariant::fromValue(QDBusVariant(0)), 0U };
        QTest::newRow("about to show") << u"AboutToShow"_s << QVariantList{ 6 };
    }

    void unknownEntryIsAnError()
    {
        QFETCH(QString, method);
        QFETCH(QVariantList, arguments);
        const auto reply = call(method, arguments);
        QCOMPARE(reply.type(), QDBusMessage::ErrorMessage);
        QCOMPARE(reply.errorName(), u"org.freedesktop.DBus.Error.InvalidArgs"_s);
    }

    void propertiesOfSomeEntries()
    {
        const auto of = [this](const QList<int> &ids, const QStringList &names) {
            const auto reply = call(u"GetGroupProperties"_s, { QVariant::fromValue(ids), names });
            return qdbus_cast<QList<MenuEntryProperties>>(reply.arguments().value(0));
        };
        const auto some = of({ 1, 5, 99 }, { u"label"_s });
        QCOMPARE(some.size(), 2);
        QCOMPARE(some[0].id, 1);
        QCOMPARE(some[0].properties, QVariantMap({ { u"label"_s, u"79.4 GB free"_s } }));
        QCOMPARE(some[1].id, 5);
        QCOMPARE(some[1].properties, QVariantMap({ { u"label"_s, u"Quit"_s } }));
        QCOMPARE(of({}, {}).size(), 6);
    }

    void onePropertyOfAnEntry()
    {
        const auto reply = call(u"GetProperty"_s, { 4, u"label"_s });
        QCOMPARE(reply.signature(), u"v"_s);
        QCOMPARE(qdbus_cast<QDBusVariant>(reply.arguments().value(0)).variant(), QVariant(u"Check now"_s));
    }

    void menuDescribesItself()
    {
        const auto reply = ask(u"org.freedesktop.DBus.Properties"_s, u"GetAll"_s, { interface });
        const auto all = qdbus_cast<QVariantMap>(reply.arguments().value(0));
        QCOMPARE(all.value(u"Version"_s), QVariant(3U));
        QCOMPARE(all.value(u"Status"_s), QVariant(u"normal"_s));
        QCOMPARE(all.value(u"TextDirection"_s), QVariant(u"ltr"_s));
    }

    void clickChoosesOnce_data()
    {
        QTest::addColumn<int>("id");
        QTest::addColumn<QList<int>>("expected");
        QTest::newRow("menu") << 0 << QList<int>{ 0, 0, 0 };
        QTest::newRow("figure") << 1 << QList<int>{ 0, 0, 0 };
        QTest::newRow("separator") << 2 << QList<int>{ 0, 0, 0 };
        QTest::newRow("Open") << 3 << QList<int>{ 1, 0, 0 };
        QTest::newRow("Check now") << 4 << QList<int>{ 0, 1, 0 };
        QTest::newRow("Quit") << 5 << QList<int>{ 0, 0, 1 };
    }

    void clickChoosesOnce()
    {
        QFETCH(int, id);
        QFETCH(QList<int>, expected);
        const QSignalSpy open(m_menu.get(), &TrayMenu::openChosen);
        const QSignalSpy check(m_menu.get(), &TrayMenu::checkChosen);
        const QSignalSpy quit(m_menu.get(), &TrayMenu::quitChosen);
        const auto reply
            = call(u"Event"_s, { id, u"clicked"_s, QVariant::fromValue(QDBusVariant(u""_s)), 12U });
        QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
        QCoreApplication::processEvents();
        QCOMPARE(QList<int>({ int(open.count()), int(check.count()), int(quit.count()) }), expected);
    }

    void otherEventsChooseNothing()
    {
        const QSignalSpy quit(m_menu.get(), &TrayMenu::quitChosen);
        for (const auto &event : { u"hovered"_s, u"opened"_s, u"closed"_s })
            QCOMPARE(call(u"Event"_s, { 5, event, QVariant::fromValue(QDBusVariant(0)), 0U }).type(),
                QDBusMessage::ReplyMessage);
        QCoreApplication::processEvents();
        QCOMPARE(quit.count(), 0);
    }

    void eventsMayComeTogether()
    {
        const QSignalSpy open(m_menu.get(), &TrayMenu::openChosen);
        const QList<MenuEvent> events{ { .id = 0, .name = u"opened"_s, .data = QDBusVariant(0) },
            { .id = 99, .name = u"clicked"_s, .data = QDBusVariant(0) },
            { .id = 3, .name = u"clicked"_s, .data = QDBusVariant(0) } };
        const auto reply = call(u"EventGroup"_s, { QVariant::fromValue(events) });
        QCOMPARE(qdbus_cast<QList<int>>(reply.arguments().value(0)), QList<int>({ 99 }));
        QTRY_COMPARE(open.count(), 1);
    }

    void eventsNoneOfWhichCanBe()
    {
        const QList<MenuEvent> events{ { .id = 99, .name = u"clicked"_s, .data = QDBusVariant(0) } };
        QCOMPARE(call(u"EventGroup"_s, { QVariant::fromValue(events) }).type(), QDBusMessage::ErrorMessage);
        QCOMPARE(call(u"EventGroup"_s, { QVariant::fromValue(QList<MenuEvent>()) }).type(),
            QDBusMessage::ReplyMessage);
    }

    void showingNeedsNoUpdate()
    {
        QCOMPARE(call(u"AboutToShow"_s, { 0 }).arguments(), QVariantList({ false }));
        const auto reply = call(u"AboutToShowGroup"_s, { QVariant::fromValue(QList<int>{ 0, 42 }) });
        QCOMPARE(qdbus_cast<QList<int>>(reply.arguments().value(0)), QList<int>());
        QCOMPARE(qdbus_cast<QList<int>>(reply.arguments().value(1)), QList<int>({ 42 }));
    }

    void figureChangeIsTold()
    {
        MenuListener listener;
        QVERIFY(m_panel.connect({}, TrayMenu::objectPath().path(), interface, u"ItemsPropertiesUpdated"_s,
            &listener,
            SLOT(update(QList<Quillbrook::MenuEntryProperties>, QList<Quillbrook::MenuEntryLosses>))));
        QVERIFY(m_panel.connect({}, TrayMenu::objectPath().path(), interface, u"LayoutUpdated"_s, &listener,
            SLOT(layOut(uint, int))));
        QCOMPARE(layout().children.size(), 5);

        m_menu->setFigure(u"12 GB"_s);
        QTRY_COMPARE(listener.updates.size(), 1);
        QCOMPARE(listener.losses, QList<qsizetype>({ 0 }));
        QCOMPARE(listener.updates[0].size(), 1);
        QCOMPARE(listener.updates[0][0].id, 1);
        QCOMPARE(listener.updates[0][0].properties, QVariantMap({ { u"label"_s, u"12 GB free"_s } }));
        QCOMPARE(layout().children[0].properties.value(u"label"_s), QVariant(u"12 GB free"_s));
        QCOMPARE(listener.layouts, 0);
    }

    void sameFigureTellsNothing()
    {
        const QSignalSpy updates(m_menu.get(), &TrayMenu::ItemsPropertiesUpdated);
        m_menu->setFigure(u"79.4 GB"_s);
        QCOMPARE(updates.count(), 0);
    }

    void underscoreIsNoAccelerator()
    {
        m_menu->setFigure(u"a_b__c"_s);
        QCOMPARE(layout().children[0].properties.value(u"label"_s), QVariant(u"a__b____c free"_s));
    }

    void nothingWithoutABus()
    {
        TrayMenu menu(QDBusConnection(u"not connected"_s));
        menu.publish();
        menu.setFigure(u"1 GB"_s);
        const QSignalSpy open(&menu, &TrayMenu::openChosen);
        menu.Event(3, u"clicked"_s, QDBusVariant(0), 0);
        QTRY_COMPARE(open.count(), 1);
    }

private:
    /// The reply to a call from another program.
    [[nodiscard]] QDBusMessage call(const QString &method, const QVariantList &arguments)
    {
        return ask(interface, method, arguments);
    }

    [[nodiscard]] QDBusMessage ask(
        const QString &target, const QString &method, const QVariantList &arguments)
    {
        auto message
            = QDBusMessage::createMethodCall(u"menu.test"_s, TrayMenu::objectPath().path(), target, method);
        message.setArguments(arguments);
        return m_panel.call(message, QDBus::BlockWithGui, 5000);
    }

    [[nodiscard]] MenuLayout layout(int parent = 0, int depth = -1, const QStringList &names = {})
    {
        const auto reply = call(u"GetLayout"_s, { parent, depth, names });
        if (reply.arguments().size() != 2)
            return { .id = -1 };
        return qdbus_cast<MenuLayout>(reply.arguments().at(1));
    }

    std::unique_ptr<PrivateBus> m_bus;
    QDBusConnection m_panel{ u"not yet"_s };
    std::unique_ptr<TrayMenu> m_menu;
};

QUILLBROOK_SUITE(TestTrayMenu, QCoreApplication)
#include "tst_TrayMenu.moc"

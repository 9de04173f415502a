#include "Platform/Linux/Tray/LinuxTrayItem.h"
#include "Support/FakeTrayItem.h"
#include "Support/FakeTrayPanel.h"
#include "Support/PrivateBus.h"
#include "Support/Suite.h"

#include <QDBusMessage>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const TrayItem::Appearance half{ .title = u"79.4 GB"_s, .usedShare = 0.5 };
const TrayItem::Appearance full{ .title = u"3 GB"_s, .usedShare = 0.97, .isDanger = true };

} // namespace

class TestLinuxTrayItem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_tries = 0;
        m_bus = std::make_unique<PrivateBus>();
        m_desktop = m_bus->connection();
        QVERIFY(m_desktop.isConnected());
        m_panel = std::make_unique<FakeTrayPanel>(m_desktop);
    }

    void cleanup()
    {
        m_item.reset();
        m_panel.reset();
        m_bus.reset();
    }

    void isShownByThePanel()
    {
        m_panel->start();
        m_item = make(60s);
        const QSignalSpy changes(m_item.get(), &TrayItem::shownChanged);
        m_item->show(half);
        QTRY_VERIFY(m_item->isShown());
        QCOMPARE(changes.count(), 1);
        const auto title = say(StatusNotifierItem::objectPath(), u"org.freedesktop.DBus.Properties"_s,
            u"Get"_s, { u"org.kde.StatusNotifierItem"_s, u"Title"_s });
        QCOMPARE(qdbus_cast<QDBusVariant>(title.arguments().value(0)).variant(),
            QVariant(u"Quillbrook - 79.4 GB free"_s));
    }

    void isNotThereBeforeItIsShown()
    {
        m_panel->start();
        m_item = make(1ms);
        QTest::qWait(50);
        QVERIFY(m_panel->items.isEmpty());
        QCOMPARE(m_tries, 0);
        QVERIFY(!m_item->isShown());
    }

    void panelThatComesLaterShowsIt()
    {
        m_item = make(60s);
        m_item->show(half);
        m_item->show(full);
        QTest::qWait(20);
        m_panel->start();
        QTRY_VERIFY(m_item->isShown());
        QCOMPARE(m_panel->items.size(), 1);
        QCOMPARE(m_tries, 0);
    }

    void signalsComeThrough()
    {
        m_panel->start();
        m_item = make(60s);
        m_item->show(half);
        QTRY_VERIFY(m_item->isShown());
        QList<std::optional<QPoint>> places;
        connect(m_item.get(), &TrayItem::activated, this,
            [&](const std::optional<QPoint> &place) { places.append(place); });
        const QSignalSpy open(m_item.get(), &TrayItem::openChosen);
        const QSignalSpy check(m_item.get(), &TrayItem::checkChosen);
        const QSignalSpy quit(m_item.get(), &TrayItem::quitChosen);

        const auto item = StatusNotifierItem::objectPath();
        say(item, u"org.kde.StatusNotifierItem"_s, u"Activate"_s, { 300, 10 });
        QCOMPARE(places, QList<std::optional<QPoint>>({ QPoint(300, 10) }));
        // A panel that knows no place tells the corner of the screen.
        say(item, u"org.kde.StatusNotifierItem"_s, u"Activate"_s, { 0, 0 });
        QCOMPARE(places.last(), std::optional<QPoint>());
        say(item, u"org.kde.StatusNotifierItem"_s, u"ProvideXdgActivationToken"_s, { u"abc"_s });
        QCOMPARE(m_item->takeActivationToken(), QByteArray("abc"));
        QCOMPARE(m_item->takeActivationToken(), QByteArray());
        say(item, u"org.kde.StatusNotifierItem"_s, u"SecondaryActivate"_s, { 300, 10 });
        QCOMPARE(open.count(), 1);
        for (int id = 3; id <= 5; ++id)
            say(TrayMenu::objectPath().path(), u"com.canonical.dbusmenu"_s, u"Event"_s,
                { id, u"clicked"_s, QVariant::fromValue(QDBusVariant(0)), 0U });
        QTRY_COMPARE(quit.count(), 1);
        QCOMPARE(open.count(), 2);
        QCOMPARE(check.count(), 1);
        QCOMPARE(places.size(), 2);
    }

    void olderTrayTakesItWhenThereIsNoPanel()
    {
        m_item = make(1ms);
        const QSignalSpy changes(m_item.get(), &TrayItem::shownChanged);
        m_item->show(half);
        QTRY_VERIFY(m_older);
        QCOMPARE(m_older->appearances, QList<TrayItem::Appearance>({ half }));
        QVERIFY(!m_item->isShown());
        m_older->setShown(true);
        QVERIFY(m_item->isShown());
        QCOMPARE(changes.count(), 1);
        m_item->show(full);
        m_item->show(full);
        QCOMPARE(m_older->appearances, QList<TrayItem::Appearance>({ half, full }));

        const QSignalSpy presses(m_item.get(), &TrayItem::activated);
        const QSignalSpy open(m_item.get(), &TrayItem::openChosen);
        const QSignalSpy check(m_item.get(), &TrayItem::checkChosen);
        const QSignalSpy quit(m_item.get(), &TrayItem::quitChosen);
        Q_EMIT m_older->activated(QPoint(1, 2));
        Q_EMIT m_older->openChosen();
        Q_EMIT m_older->checkChosen();
        Q_EMIT m_older->quitChosen();
        QCOMPARE(presses.count() + open.count() + check.count() + quit.count(), 4);
    }

    void olderTrayIsNotTouchedWhereAPanelIs()
    {
        m_panel->start();
        m_item = make(400ms);
        m_item->show(half);
        QTRY_VERIFY(m_item->isShown());
        QTest::qWait(600);
        QCOMPARE(m_tries, 0);
        // A panel that starts anew at once.
        m_panel->stop();
        QTRY_VERIFY(!m_item->isShown());
        m_panel->start();
        QTRY_VERIFY(m_item->isShown());
        QTest::qWait(600);
        QCOMPARE(m_tries, 0);
    }

    void olderTrayGivesItBackToAPanel()
    {
        m_item = make(1ms);
        m_item->show(half);
        QTRY_VERIFY(m_older);
        m_older->setShown(true);
        m_panel->start();
        QTRY_VERIFY(!m_older);
        QVERIFY(m_item->isShown());
    }

    void olderTrayTakesOverFromAPanelThatStays_data()
    {
        QTest::addColumn<bool>("watcherStays");
        QTest::newRow("watcher gone too") << false;
        QTest::newRow("watcher stays") << true;
    }

    void olderTrayTakesOverFromAPanelThatStays()
    {
        QFETCH(bool, watcherStays);
        m_panel->start();
        m_item = make(400ms);
        m_item->show(half);
        QTRY_VERIFY(m_item->isShown());
        if (watcherStays)
            m_panel->setPanel(false);
        else
            m_panel->stop();
        QTRY_COMPARE(m_tries, 1);
        QVERIFY(m_older);
        QCOMPARE(m_older->appearances, QList<TrayItem::Appearance>({ half }));
    }

    void olderTrayAtOnceWithoutABus()
    {
        m_item = make(60s, false);
        m_item->show(half);
        QTRY_COMPARE(m_tries, 1);
    }

    void noTrayAtAll()
    {
        m_item = std::make_unique<LinuxTrayItem>(LinuxTrayItem::Options{
            .bus = m_bus->connection(), .grace = 1ms, .makeOther = [this]() -> std::unique_ptr<TrayItem> {
                ++m_tries;
                return nullptr;
            } });
        m_item->show(half);
        QTRY_COMPARE(m_tries, 1);
        m_item->show(full);
        QVERIFY(!m_item->isShown());
        m_panel->start();
        QTRY_VERIFY(m_item->isShown());
    }

    void olderTrayNeedsItsWindowSystem()
    {
        if (QGuiApplication::platformName() == u"xcb"_s)
            QSKIP("This window system may have such a tray");
        QCOMPARE(LinuxTrayItem::makeOlder(), nullptr);
    }

private:
    [[nodiscard]] std::unique_ptr<LinuxTrayItem> make(std::chrono::milliseconds grace, bool hasBus = true)
    {
        return std::make_unique<LinuxTrayItem>(
            LinuxTrayItem::Options{ .bus = hasBus ? m_bus->connection() : QDBusConnection(u"not connected"_s),
                .grace = grace,
                .makeOther = [this]() -> std::unique_ptr<TrayItem> {
                    ++m_tries;
                    auto made = std::make_unique<FakeTrayItem>();
                    m_older = made.get();
                    return made;
                } });
    }

    /// What a panel says to the item.
    QDBusMessage say(
        const QString &path, const QString &interface, const QString &method, const QVariantList &arguments)
    {
        auto message = QDBusMessage::createMethodCall(m_panel->items.value(0), path, interface, method);
        message.setArguments(arguments);
        return m_desktop.call(message, QDBus::BlockWithGui, 5000);
    }

    std::unique_ptr<PrivateBus> m_bus;
    QDBusConnection m_desktop{ u"not yet"_s };
    std::unique_ptr<FakeTrayPanel> m_panel;
    /// How often the older tray was tried, and what was made for it last.
    int m_tries = 0;
    QPointer<FakeTrayItem> m_older;
    std::unique_ptr<LinuxTrayItem> m_item;
};

QUILLBROOK_SUITE(TestLinuxTrayItem, QGuiApplication)
#include "tst_LinuxTrayItem.moc"

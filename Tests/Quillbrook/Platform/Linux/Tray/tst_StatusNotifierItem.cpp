#include "Platform/Linux/Tray/StatusNotifierItem.h"
#include "Platform/Linux/Tray/TrayMenu.h"
#include "Support/PrivateBus.h"
#include "Support/Suite.h"

#include <QDBusMessage>
#include <QSignalSpy>
#include <QTest>
#include <QXmlStreamReader>

#include <memory>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

const auto interface = u"org.kde.StatusNotifierItem"_s;
const auto propertiesInterface = u"org.freedesktop.DBus.Properties"_s;

/// A panel that listens.
class ItemListener : public QObject
{
    Q_OBJECT

public:
    QStringList heard;

public Q_SLOTS:
    void title() { heard.append(u"title"_s); }
    void icon() { heard.append(u"icon"_s); }
    void toolTip() { heard.append(u"tooltip"_s); }
    void label(const QString &text, const QString &guide)
    {
        heard.append(u"label "_s + text + (guide.isEmpty() ? QString() : u" guided"_s));
    }
    void properties(const QString &changedInterface, const QVariantMap &changed, const QStringList &)
    {
        heard.append(changedInterface + u' ' + changed.keys().join(u',') + u' ' + changed.first().toString());
    }
};

} // namespace

class TestStatusNotifierItem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_bus = std::make_unique<PrivateBus>();
        m_panel = m_bus->connection();
        auto own = m_bus->connection();
        QVERIFY(m_panel.isConnected() && own.isConnected());
        QVERIFY(own.registerService(u"item.test"_s));
        m_item = std::make_unique<StatusNotifierItem>(own, TrayMenu::objectPath());
        m_item->setAppearance({ .title = u"79.4 GB"_s, .usedShare = 0.5 });
        m_item->publish();
    }

    void cleanup()
    {
        m_item.reset();
        m_bus.reset();
    }

    void textsAreThoseOfTheFigure()
    {
        QCOMPARE(property(u"Title"_s), QVariant(u"Quillbrook - 79.4 GB free"_s));
        QCOMPARE(property(u"XAyatanaLabel"_s), QVariant(u"79.4 GB"_s));
        const auto toolTip = qdbus_cast<TrayToolTip>(property(u"ToolTip"_s));
        QCOMPARE(toolTip.title, u"Quillbrook"_s);
        QCOMPARE(toolTip.text, u"79.4 GB free"_s);
    }

    void constantsSayWhatItIs()
    {
        QCOMPARE(property(u"Category"_s), QVariant(u"SystemServices"_s));
        QCOMPARE(property(u"Id"_s), QVariant(u"com.tarnwick.Quillbrook"_s));
        QCOMPARE(property(u"Status"_s), QVariant(u"Active"_s));
        QCOMPARE(property(u"ItemIsMenu"_s), QVariant(false));
        QCOMPARE(property(u"WindowId"_s), QVariant(0));
        // A name would be shown in the place of the picture.
        QCOMPARE(property(u"IconName"_s), QVariant(QString()));
        QCOMPARE(qdbus_cast<QDBusObjectPath>(property(u"Menu"_s)), TrayMenu::objectPath());
    }

    void picturesGoAsBytesInTheOrderOfTheBus()
    {
        const auto pixmaps = qdbus_cast<QList<TrayPixmap>>(property(u"IconPixmap"_s));
        QCOMPARE(pixmaps.size(), qsizetype(TrayPicture::sizes.size()));
        for (qsizetype i = 0; i < pixmaps.size(); ++i) {
            const auto size = TrayPicture::sizes[std::size_t(i)];
            QCOMPARE(pixmaps[i].width, size);
            QCOMPARE(pixmaps[i].height, size);
            QCOMPARE(pixmaps[i].bytes.size(), 4 * size * size);
            const auto expected = TrayPicture::draw(TrayPicture::contentOf(0.5, false), size)
                                      .pixelColor(size / 4, size * 3 / 4);
            const auto *bytes = pixmaps[i].bytes.constData() + 4 * (size * 3 / 4 * size + size / 4);
            const auto byte = [&](int at) { return int(static_cast<unsigned char>(bytes[at])); };
            QCOMPARE(byte(0), expected.alpha());
            QCOMPARE(byte(1), expected.red());
            QCOMPARE(byte(2), expected.green());
            QCOMPARE(byte(3), expected.blue());
            QVERIFY(expected.blue() > expected.red());
        }
    }

    void introspectionNamesEverySignature()
    {
        const auto text = call(u"org.freedesktop.DBus.Introspectable"_s, u"Introspect"_s, {})
                              .arguments()
                              .value(0)
                              .toString();
        QHash<QString, QString> properties;
        QHash<QString, QString> methods;
        QStringList signalNames;
        QXmlStreamReader reader(text);
        QString own;
        QString method;
        while (!reader.atEnd()) {
            if (reader.readNext() != QXmlStreamReader::StartElement)
                continue;
            const auto name = reader.attributes().value(u"name"_s).toString();
            if (reader.name() == u"interface"_s)
                own = name;
            if (own != interface)
                continue;
            if (reader.name() == u"property"_s)
                properties.insert(name, reader.attributes().value(u"type"_s).toString());
            if (reader.name() == u"signal"_s)
                signalNames.append(name);
            if (reader.name() == u"method"_s)
                methods.insert(method = name, {});
            else if (reader.name() == u"arg"_s && !method.isEmpty() && signalNames.isEmpty())
                methods[method] += reader.attributes().value(u"type"_s);
        }
        QCOMPARE(properties.value(u"IconPixmap"_s), u"a(iiay)"_s);
        QCOMPARE(properties.value(u"ToolTip"_s), u"(sa(iiay)ss)"_s);
        QCOMPARE(properties.value(u"Menu"_s), u"o"_s);
        QCOMPARE(properties.value(u"ItemIsMenu"_s), u"b"_s);
        for (const auto &name : { u"Activate"_s, u"ContextMenu"_s, u"SecondaryActivate"_s, u"Scroll"_s,
                 u"ProvideXdgActivationToken"_s })
            QVERIFY2(text.contains(u"<method name=\""_s + name + u'"'), qPrintable(name));
        for (const auto &name : { u"NewTitle"_s, u"NewIcon"_s, u"NewToolTip"_s, u"NewStatus"_s })
            QVERIFY2(signalNames.contains(name), qPrintable(name));
        // What is not for panels stays inside.
        QVERIFY(!text.contains(u"pressed"_s));
        QVERIFY(!text.contains(u"takeActivationToken"_s));
    }

    void changesAreTold()
    {
        ItemListener listener;
        listen(listener);
        m_item->setAppearance({ .title = u"3 GB"_s, .usedShare = 0.97, .isDanger = true });
        QTRY_COMPARE(listener.heard.size(), 5);
        QCOMPARE(listener.heard,
            QStringList({ u"title"_s, u"tooltip"_s, u"label 3 GB guided"_s,
                u"org.kde.StatusNotifierItem XAyatanaLabel 3 GB"_s, u"icon"_s }));
        QCOMPARE(property(u"Title"_s), QVariant(u"Quillbrook - 3 GB free"_s));
    }

    void sameAppearanceTellsNothing()
    {
        ItemListener listener;
        listen(listener);
        m_item->setAppearance({ .title = u"79.4 GB"_s, .usedShare = 0.5 });
        // Too little more to be seen.
        m_item->setAppearance({ .title = u"79.4 GB"_s, .usedShare = 0.503 });
        QVERIFY(property(u"Title"_s).isValid());
        QCoreApplication::processEvents();
        QCOMPARE(listener.heard, QStringList());
    }

    void newFigureKeepsTheIcon()
    {
        const QSignalSpy icons(m_item.get(), &StatusNotifierItem::NewIcon);
        const QSignalSpy titles(m_item.get(), &StatusNotifierItem::NewTitle);
        m_item->setAppearance({ .title = u"79.3 GB"_s, .usedShare = 0.5 });
        QCOMPARE(icons.count(), 0);
        QCOMPARE(titles.count(), 1);
    }

    void newFullnessKeepsTheTexts()
    {
        const auto before = m_item->pixmaps();
        const QSignalSpy icons(m_item.get(), &StatusNotifierItem::NewIcon);
        const QSignalSpy titles(m_item.get(), &StatusNotifierItem::NewTitle);
        m_item->setAppearance({ .title = u"79.4 GB"_s, .usedShare = 0.9 });
        QCOMPARE(icons.count(), 1);
        QCOMPARE(titles.count(), 0);
        QVERIFY(m_item->pixmaps() != before);
    }

    void pressTellsThePlace_data()
    {
        QTest::addColumn<QString>("method");
        QTest::newRow("press") << u"Activate"_s;
        QTest::newRow("menu left to the item") << u"ContextMenu"_s;
    }

    void pressTellsThePlace()
    {
        QFETCH(QString, method);
        const QSignalSpy presses(m_item.get(), &StatusNotifierItem::pressed);
        QCOMPARE(call(interface, method, { 1500, 1060 }).type(), QDBusMessage::ReplyMessage);
        QCOMPARE(presses.count(), 1);
        QCOMPARE(presses[0][0].toPoint(), QPoint(1500, 1060));
    }

    void middleButtonAndWheel()
    {
        const QSignalSpy presses(m_item.get(), &StatusNotifierItem::pressed);
        const QSignalSpy middle(m_item.get(), &StatusNotifierItem::secondaryPressed);
        QCOMPARE(call(interface, u"Scroll"_s, { 120, u"vertical"_s }).type(), QDBusMessage::ReplyMessage);
        QCOMPARE(middle.count(), 0);
        QCOMPARE(call(interface, u"SecondaryActivate"_s, { 1, 2 }).type(), QDBusMessage::ReplyMessage);
        QCOMPARE(middle.count(), 1);
        QCOMPARE(presses.count(), 0);
    }

    void tokenIsTakenOnce()
    {
        QCOMPARE(m_item->takeActivationToken(), QByteArray());
        QCOMPARE(
            call(interface, u"ProvideXdgActivationToken"_s, { u"abc"_s }).type(), QDBusMessage::ReplyMessage);
        QCOMPARE(m_item->takeActivationToken(), QByteArray("abc"));
        QCOMPARE(m_item->takeActivationToken(), QByteArray());
    }

    void nothingWithoutABus()
    {
        StatusNotifierItem item(QDBusConnection(u"not connected"_s), TrayMenu::objectPath());
        item.publish();
        item.setAppearance({ .title = u"1 GB"_s, .usedShare = 0.99, .isDanger = true });
        QCOMPARE(item.label(), u"1 GB"_s);
    }

private:
    [[nodiscard]] QVariant property(const QString &name)
    {
        const auto reply = call(propertiesInterface, u"Get"_s, { interface, name });
        return qdbus_cast<QDBusVariant>(reply.arguments().value(0)).variant();
    }

    QDBusMessage call(const QString &target, const QString &method, const QVariantList &arguments)
    {
        auto message = QDBusMessage::createMethodCall(
            u"item.test"_s, StatusNotifierItem::objectPath(), target, method);
        message.setArguments(arguments);
        return m_panel.call(message, QDBus::BlockWithGui, 5000);
    }

    void listen(ItemListener &listener)
    {
        const auto path = StatusNotifierItem::objectPath();
        QVERIFY(m_panel.connect({}, path, interface, u"NewTitle"_s, &listener, SLOT(title())));
        QVERIFY(m_panel.connect({}, path, interface, u"NewIcon"_s, &listener, SLOT(icon())));
        QVERIFY(m_panel.connect({}, path, interface, u"NewToolTip"_s, &listener, SLOT(toolTip())));
        QVERIFY(m_panel.connect(
            {}, path, interface, u"XAyatanaNewLabel"_s, &listener, SLOT(label(QString, QString))));
        QVERIFY(m_panel.connect({}, path, propertiesInterface, u"PropertiesChanged"_s, &listener,
            SLOT(properties(QString, QVariantMap, QStringList))));
        // The bus has taken the wishes once it answers what came after them.
        QVERIFY(property(u"Id"_s).isValid());
    }

    std::unique_ptr<PrivateBus> m_bus;
    QDBusConnection m_panel{ u"not yet"_s };
    std::unique_ptr<StatusNotifierItem> m_item;
};

QUILLBROOK_SUITE(TestStatusNotifierItem, QGuiApplication)
#include "tst_StatusNotifierItem.moc"

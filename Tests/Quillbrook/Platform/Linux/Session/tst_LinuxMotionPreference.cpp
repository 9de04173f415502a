#include "Platform/Linux/Session/LinuxMotionPreference.h"
#include "Support/PrivateBus.h"
#include "Support/Suite.h"

#include <QDBusArgument>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

using Groups = QMap<QString, QVariantMap>;

const auto appearance = u"org.freedesktop.appearance"_s;
const auto reducedMotion = u"reduced-motion"_s;
const auto gnome = u"org.gnome.desktop.interface"_s;
const auto animations = u"enable-animations"_s;
const auto kde = u"org.kde.kdeglobals.KDE"_s;
const auto factor = u"AnimationDurationFactor"_s;

} // namespace

Q_DECLARE_METATYPE(Groups)

namespace {

/// What a desktop's portal answers.
class Portal : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    explicit Portal(const QDBusConnection &bus)
        : m_bus(bus)
    {
        m_bus.registerObject(u"/org/freedesktop/portal/desktop"_s, this,
            QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals);
        m_bus.registerService(u"org.freedesktop.portal.Desktop"_s);
    }

    Groups answer;
    bool refuses = false;
    QStringList asked;

public Q_SLOTS:
    Groups ReadAll(const QStringList &groups)
    {
        asked = groups;
        if (refuses)
            sendErrorReply(QDBusError::AccessDenied);
        return answer;
    }

Q_SIGNALS:
    void SettingChanged(const QString &group, const QString &key, const QDBusVariant &value);

private:
    QDBusConnection m_bus;
};

} // namespace

class TestLinuxMotionPreference : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qDBusRegisterMetaType<Groups>();
        PrivateBus bus;
        QVERIFY2(bus.connection().isConnected(), "dbus-daemon could not be started");
    }

    void eachDesktopSaysItInItsWay_data()
    {
        QTest::addColumn<QString>("group");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<bool>("isAbout");
        QTest::addColumn<bool>("isReduced");
        QTest::newRow("shared: reduced") << appearance << reducedMotion << QVariant(1U) << true << true;
        QTest::newRow("shared: no preference")
            << appearance << reducedMotion << QVariant(0U) << true << false;
        QTest::newRow("shared: unknown value")
            << appearance << reducedMotion << QVariant(7U) << true << false;
        QTest::newRow("shared: another type")
            << appearance << reducedMotion << QVariant(u"much"_s) << false << false;
        QTest::newRow("shared: another key") << appearance << u"contrast"_s << QVariant(1U) << false << false;
        QTest::newRow("animations off") << gnome << animations << QVariant(false) << true << true;
        QTest::newRow("animations on") << gnome << animations << QVariant(true) << true << false;
        QTest::newRow("animations a number") << gnome << animations << QVariant(0U) << false << false;
        QTest::newRow("factor 0 as text") << kde << factor << QVariant(u"0"_s) << true << true;
        QTest::newRow("factor 0") << kde << factor << QVariant(0.0) << true << true;
        QTest::newRow("factor a half") << kde << factor << QVariant(u"0.5"_s) << true << false;
        QTest::newRow("factor not a number") << kde << factor << QVariant(u"none"_s) << false << false;
        QTest::newRow("key in another group") << kde << animations << QVariant(false) << false << false;
    }

    void eachDesktopSaysItInItsWay()
    {
        QFETCH(QString, group);
        QFETCH(QString, key);
        QFETCH(QVariant, value);
        QFETCH(bool, isAbout);
        QFETCH(bool, isReduced);
        const auto answer = LinuxMotionPreference::asksForLess(group, key, value);
        QCOMPARE(answer.has_value(), isAbout);
        QCOMPARE(answer.value_or(false), isReduced);
    }

    void portalIsAskedOnce()
    {
        PrivateBus bus;
        Portal portal(bus.connection());
        const LinuxMotionPreference motion(bus.connection());
        QTRY_COMPARE(portal.asked, QStringList({ appearance, gnome, kde }));
        QVERIFY(!motion.isReduced());
    }

    void portalsAnswerCounts()
    {
        PrivateBus bus;
        Portal portal(bus.connection());
        portal.answer = { { gnome, { { animations, false }, { u"cursor-size"_s, 24 } } } };
        const LinuxMotionPreference motion(bus.connection());
        QSignalSpy changes(&motion, &MotionPreference::changed);
        QVERIFY(!motion.isReduced());
        QTRY_VERIFY(motion.isReduced());
        QCOMPARE(changes.count(), 1);
    }

    void oneOfTwoIsEnough()
    {
        PrivateBus bus;
        Portal portal(bus.connection());
        portal.answer = { { appearance, { { reducedMotion, 1U } } }, { gnome, { { animations, true } } } };
        const LinuxMotionPreference motion(bus.connection());
        QTRY_VERIFY(motion.isReduced());
    }

    void changeIsFollowed()
    {
        PrivateBus bus;
        Portal portal(bus.connection());
        const LinuxMotionPreference motion(bus.connection());
        QTRY_VERIFY(!portal.asked.isEmpty());
        QSignalSpy changes(&motion, &MotionPreference::changed);
        Q_EMIT portal.SettingChanged(gnome, animations, QDBusVariant(false));
        QTRY_VERIFY(motion.isReduced());
        Q_EMIT portal.SettingChanged(gnome, u"cursor-size"_s, QDBusVariant(48));
        Q_EMIT portal.SettingChanged(gnome, animations, QDBusVariant(true));
        QTRY_VERIFY(!motion.isReduced());
        QCOMPARE(changes.count(), 2);
    }

    void silentDesktopMeansNoWish_data()
    {
        QTest::addColumn<bool>("hasPortal");
        QTest::addColumn<bool>("hasBus");
        QTest::newRow("portal that refuses") << true << true;
        QTest::newRow("no portal") << false << true;
        QTest::newRow("no bus") << false << false;
    }

    void silentDesktopMeansNoWish()
    {
        QFETCH(bool, hasPortal);
        QFETCH(bool, hasBus);
        PrivateBus bus;
        std::unique_ptr<Portal> portal;
        if (hasPortal) {
            portal = std::make_unique<Portal>(bus.connection());
            portal->refuses = true;
        }
        auto connection = hasBus ? bus.connection() : QDBusConnection(u"not connected"_s);
        const LinuxMotionPreference motion(connection);
        // One round trip on the same connection later, the answer to the question has come.
        if (hasBus)
            connection.call(QDBusMessage::createMethodCall(
                                u"org.freedesktop.DBus"_s, u"/"_s, u"org.freedesktop.DBus"_s, u"GetId"_s),
                QDBus::BlockWithGui, 5000);
        QCoreApplication::processEvents();
        QVERIFY(!motion.isReduced());
    }
};

QUILLBROOK_SUITE(TestLinuxMotionPreference, QCoreApplication)
#include "tst_LinuxMotionPreference.moc"

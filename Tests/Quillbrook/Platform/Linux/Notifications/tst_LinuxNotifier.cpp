#include "Platform/Linux/Notifications/LinuxNotifier.h"
#include "Support/FakePortal.h"
#include "Support/FakeProcessRunner.h"
#include "Support/FakeUserDefaults.h"
#include "Support/MemoryFiles.h"
#include "Support/PrivateBus.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QDBusContext>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QRegularExpression>
#include <QTest>
#include <QUuid>

#include <atomic>
#include <memory>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

using Permissions = QMap<QString, QStringList>;
Q_DECLARE_METATYPE(Permissions)

namespace {

const auto askedKey = u"Quillbrook.notificationsAsked"_s;
const auto quillbrook = u"com.tarnwick.Quillbrook"_s;

class FakeServer : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    QStringList capabilities;
    bool isSilent = false;
    bool knowsNoCapabilities = false;
    int questions = 0;
    /// The arguments of each call of Notify.
    QList<QVariantList> notified;

    [[nodiscard]] bool offer(QDBusConnection bus)
    {
        return bus.registerObject(u"/org/freedesktop/Notifications"_s, this, QDBusConnection::ExportAllSlots)
            && bus.registerService(u"org.freedesktop.Notifications"_s);
    }

public Q_SLOTS:
    QStringList GetCapabilities()
    {
        ++questions;
        setDelayedReply(isSilent);
        if (knowsNoCapabilities)
            sendErrorReply(QDBusError::UnknownMethod, u"no"_s);
        return capabilities;
    }
    uint Notify(const QString &application, uint replaced, const QString &icon, const QString &summary,
        const QString &body, const QStringList &actions, const QVariantMap &hints, int timeout)
    {
        setDelayedReply(isSilent);
        notified.append({ application, replaced, icon, summary, body, actions, hints, timeout });
        return 1;
    }
};

class FakePermissionStore : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.impl.portal.PermissionStore")

public:
    Permissions permissions;
    bool refuses = false;
    QStringList lookedUp;

    [[nodiscard]] bool offer(QDBusConnection bus)
    {
        return bus.registerObject(
                   u"/org/freedesktop/impl/portal/PermissionStore"_s, this, QDBusConnection::ExportAllSlots)
            && bus.registerService(u"org.freedesktop.impl.portal.PermissionStore"_s);
    }

public Q_SLOTS:
    Permissions Lookup(const QString &table, const QString &id, QDBusVariant &data)
    {
        lookedUp << table << id;
        data = QDBusVariant(u""_s);
        if (refuses)
            sendErrorReply(QDBusError::AccessDenied, u"no"_s);
        return permissions;
    }
};

} // namespace

class TestLinuxNotifier : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qDBusRegisterMetaType<Permissions>();
        m_tree.fileWith("bin/gsettings", "#!/bin/sh\nexit 1\n");
        m_tree.permissions("bin/gsettings", 0755);
        m_tree.fileWith("bin/gnome-control-center", "#!/bin/sh\nexit 1\n");
        m_tree.permissions("bin/gnome-control-center", 0755);
    }
    void init()
    {
        m_bus = std::make_unique<PrivateBus>();
        m_client = m_bus->connection();
        m_services = m_bus->connection();
        QVERIFY(m_client.isConnected());
        m_server = std::make_unique<FakeServer>();
        m_portal = std::make_unique<FakePortal>();
        m_portal->answer = FakePortal::Answer::plainReply;
        m_store = std::make_unique<FakePermissionStore>();
        m_defaults.values.clear();
        m_processes = {};
        m_files.files.clear();
        m_session = {
            .desktops = { u"GNOME"_s }, .configFolder = "/settings", .programFolders = { m_tree.text("bin") }
        };
        m_started.clear();
    }
    void cleanup()
    {
        m_bus.reset();
        m_server.reset();
        m_portal.reset();
        m_store.reset();
    }

    void notificationIsPosted()
    {
        QVERIFY(m_server->offer(m_services));
        const auto notifier = made();
        notifier->post(u"12 GB can be reclaimed"_s, u"3 GB free · mostly Caches"_s);
        QTRY_COMPARE(m_server->notified.size(), 1);
        const auto &arguments = m_server->notified.constFirst();
        QCOMPARE(arguments.at(0), QVariant(u"Quillbrook"_s));
        QCOMPARE(arguments.at(1), QVariant(0U));
        QCOMPARE(arguments.at(2), QVariant(quillbrook));
        QCOMPARE(arguments.at(3), QVariant(u"12 GB can be reclaimed"_s));
        QCOMPARE(arguments.at(4), QVariant(u"3 GB free · mostly Caches"_s));
        QCOMPARE(arguments.at(5), QVariant(QStringList()));
        QCOMPARE(arguments.at(7), QVariant(-1));
        const QVariantMap hints{ { u"desktop-entry"_s, quillbrook }, { u"suppress-sound"_s, true },
            { u"urgency"_s, QVariant::fromValue<uchar>(1) } };
        QCOMPARE(arguments.at(6).toMap(), hints);
        QCOMPARE(arguments.at(6).toMap().value(u"urgency"_s).metaType(), QMetaType::fromType<uchar>());
        notifier->post(u"another"_s, QString());
        QTRY_COMPARE(m_server->notified.size(), 2);
        QVERIFY(m_portal->calls.isEmpty());
    }

    void bodyIsEscapedWhereItIsMarkup_data()
    {
        QTest::addColumn<QStringList>("capabilities");
        QTest::addColumn<bool>("knowsNoCapabilities");
        QTest::addColumn<QString>("shown");
        const auto asItIs = u"A & B <i> \"c\" 'd' &amp;"_s;
        const auto escaped = u"A &amp; B &lt;i&gt; \"c\" 'd' &amp;amp;"_s;
        QTest::newRow("markup") << QStringList{ u"body"_s, u"body-markup"_s } << false << escaped;
        QTest::newRow("plain text") << QStringList{ u"body"_s, u"body-hyperlinks"_s } << false << asItIs;
        QTest::newRow("nothing") << QStringList() << false << asItIs;
        QTest::newRow("server that can't say") << QStringList() << true << escaped;
    }
    void bodyIsEscapedWhereItIsMarkup()
    {
        QFETCH(QStringList, capabilities);
        m_server->capabilities = capabilities;
        QFETCH(bool, knowsNoCapabilities);
        m_server->knowsNoCapabilities = knowsNoCapabilities;
        QVERIFY(m_server->offer(m_services));
        const auto notifier = made();
        notifier->post(u"<b> & c"_s, u"A & B <i> \"c\" 'd' &amp;"_s);
        QTRY_COMPARE(m_server->notified.size(), 1);
        QCOMPARE(m_server->notified.constFirst().at(3).toString(), u"<b> & c"_s);
        QTEST(m_server->notified.constFirst().at(4).toString(), "shown");
    }

    void postingFailsSilently_data()
    {
        QTest::addColumn<bool>("isSandboxed");
        QTest::addColumn<bool>("hasBus");
        QTest::newRow("no server") << false << true;
        QTest::newRow("no portal") << true << true;
        QTest::newRow("no bus") << false << false;
        QTest::newRow("no bus in a sandbox") << true << false;
    }
    void postingFailsSilently()
    {
        QFETCH(bool, isSandboxed);
        QFETCH(bool, hasBus);
        QTest::failOnWarning(QRegularExpression(u".*"_s));
        if (isSandboxed)
            enterFlatpak();
        if (!hasBus)
            m_client = QDBusConnection(u"not connected"_s);
        const auto notifier = made();
        notifier->post(u"title"_s, u"body"_s);
        settle();
    }

    void notifierMayGoBeforeTheAnswer()
    {
        m_server->isSilent = true;
        QVERIFY(m_server->offer(m_services));
        auto notifier = made(60s);
        notifier->post(u"title"_s, u"body"_s);
        const auto asked = notifier->requestAuthorisation();
        const auto state = notifier->state();
        QTRY_COMPARE(m_server->questions, 2);
        notifier.reset();
        QVERIFY(asked.isFinished());
        QVERIFY(state.isFinished());
        settle();
        QVERIFY(m_server->notified.isEmpty());
    }

    void sandboxPostsThroughThePortal()
    {
        enterFlatpak();
        QVERIFY(m_server->offer(m_services));
        QVERIFY(m_portal->offer(m_services));
        const auto notifier = made();
        notifier->post(u"title & more"_s, u"body <b>"_s);
        notifier->post(u"title & more"_s, u"body <b>"_s);
        QTRY_COMPARE(m_portal->calls.size(), 2);
        const auto &call = m_portal->calls.constFirst();
        QCOMPARE(call.interface, u"org.freedesktop.portal.Notification"_s);
        QCOMPARE(call.method, u"AddNotification"_s);
        QCOMPARE(call.arguments.size(), 2);
        QVERIFY(!QUuid::fromString(call.arguments.constFirst().toString()).isNull());
        QVERIFY(call.arguments.constFirst() != m_portal->calls.at(1).arguments.constFirst());
        const QVariantMap shown{ { u"title"_s, u"title & more"_s }, { u"body"_s, u"body <b>"_s } };
        QCOMPARE(call.options, shown);
        settle();
        QVERIFY(m_server->notified.isEmpty());
    }

    void serverThatWouldBeStartedIsThere()
    {
        const TempTree services;
        services.fileWith("org.freedesktop.Notifications.service",
            "[D-BUS Service]\nName=org.freedesktop.Notifications\nExec=/nowhere/at/all\n");
        m_bus = std::make_unique<PrivateBus>(services.text());
        m_client = m_bus->connection();
        QVERIFY(m_client.isConnected());
        QCOMPARE(stateOf(*made()), NotificationState::notAsked);
    }

    void askingIsRemembered()
    {
        QVERIFY(m_server->offer(m_services));
        QCOMPARE(stateOf(*made()), NotificationState::notAsked);
        QCOMPARE(m_server->questions, 0);
        const auto notifier = made();
        const auto asked = notifier->requestAuthorisation();
        QTRY_VERIFY(asked.isFinished());
        QCOMPARE(m_server->questions, 1);
        QCOMPARE(m_defaults.values.value(askedKey), QVariant(true));
        QCOMPARE(stateOf(*notifier), NotificationState::allowed);
        // As after a restart.
        QCOMPARE(stateOf(*made()), NotificationState::allowed);
        QVERIFY(m_server->notified.isEmpty());
    }

    void postingIsAsking()
    {
        QVERIFY(m_server->offer(m_services));
        made()->post(u"title"_s, u"body"_s);
        QCOMPARE(stateOf(*made()), NotificationState::allowed);
    }

    void askingComesToAnEnd_data()
    {
        QTest::addColumn<bool>("hasServer");
        QTest::addColumn<bool>("hasBus");
        QTest::newRow("silent server") << true << true;
        QTest::newRow("no server") << false << true;
        QTest::newRow("no bus") << false << false;
    }
    void askingComesToAnEnd()
    {
        QFETCH(bool, hasServer);
        QFETCH(bool, hasBus);
        m_server->isSilent = true;
        if (hasServer)
            QVERIFY(m_server->offer(m_services));
        if (!hasBus)
            m_client = QDBusConnection(u"not connected"_s);
        const auto notifier = made(300ms);
        const auto asked = notifier->requestAuthorisation();
        QTRY_VERIFY(asked.isFinished());
        QVERIFY(!asked.isCanceled());
        QCOMPARE(stateOf(*notifier), hasServer ? NotificationState::allowed : NotificationState::denied);
    }

    void silentServerIsPostedToAllTheSame()
    {
        m_server->isSilent = true;
        QVERIFY(m_server->offer(m_services));
        const auto notifier = made(300ms);
        notifier->post(u"title"_s, u"a & b"_s);
        QTRY_COMPARE(m_server->notified.size(), 1);
        QCOMPARE(m_server->notified.constFirst().at(4).toString(), u"a &amp; b"_s);
    }

    void switchOfTheDesktopDenies_data()
    {
        QTest::addColumn<QString>("desktop");
        QTest::addColumn<QByteArray>("gnomeSays");
        QTest::addColumn<bool>("asked");
        QTest::addColumn<NotificationState>("state");
        const QByteArray off = "false\n";
        QTest::newRow("GNOME: off") << u"GNOME"_s << off << true << NotificationState::denied;
        QTest::newRow("GNOME: off before it was asked")
            << u"GNOME"_s << off << false << NotificationState::denied;
        QTest::newRow("GNOME: on") << u"GNOME"_s << QByteArray("true\n") << true
                                   << NotificationState::allowed;
        QTest::newRow("Plasma: off") << u"KDE"_s << QByteArray() << true << NotificationState::denied;
        QTest::newRow("another desktop") << u"XFCE"_s << off << true << NotificationState::allowed;
    }
    void switchOfTheDesktopDenies()
    {
        QFETCH(QString, desktop);
        QFETCH(QByteArray, gnomeSays);
        QFETCH(bool, asked);
        QVERIFY(m_server->offer(m_services));
        m_defaults.setBoolean(askedKey, asked);
        m_session.desktops = { desktop };
        m_files.files["/settings/plasmanotifyrc"]
            = "[Applications][com.tarnwick.Quillbrook]\nShowPopups=false\n";
        m_processes.answer = [&gnomeSays](const ProcessRunner::Command &) {
            return ProcessRunner::Result{ .output = gnomeSays, .exited = true, .exitCode = 0 };
        };
        QFETCH(NotificationState, state);
        QCOMPARE(stateOf(*made()), state);
    }

    void notifierWaitsForTheProgramItRuns()
    {
        QVERIFY(m_server->offer(m_services));
        std::atomic_bool hasBegun = false;
        std::atomic_bool hasEnded = false;
        m_processes.answer = [&](const ProcessRunner::Command &) {
            hasBegun = true;
            QTest::qSleep(300);
            hasEnded = true;
            return std::optional<ProcessRunner::Result>();
        };
        auto notifier = made();
        const auto state = notifier->state();
        QTRY_VERIFY(hasBegun);
        notifier.reset();
        QVERIFY(hasEnded);
        QTRY_VERIFY(state.isFinished());
        QVERIFY(state.isCanceled());
    }

    void permissionStoreDecidesInASandbox_data()
    {
        QTest::addColumn<Permissions>("permissions");
        QTest::addColumn<bool>("refuses");
        QTest::addColumn<bool>("asked");
        QTest::addColumn<NotificationState>("state");
        const QStringList no{ u"no"_s };
        QTest::newRow("no") << Permissions{ { quillbrook, no } } << false << true
                            << NotificationState::denied;
        QTest::newRow("no, not asked yet")
            << Permissions{ { quillbrook, no } } << false << false << NotificationState::denied;
        QTest::newRow("yes") << Permissions{ { quillbrook, { u"yes"_s } } } << false << true
                             << NotificationState::allowed;
        QTest::newRow("not asked yet") << Permissions() << false << false << NotificationState::notAsked;
        QTest::newRow("no word") << Permissions() << false << true << NotificationState::allowed;
        QTest::newRow("no to another")
            << Permissions{ { u"org.example.Other"_s, no } } << false << true << NotificationState::allowed;
        QTest::newRow("the store can't be seen")
            << Permissions{ { quillbrook, no } } << true << true << NotificationState::allowed;
    }
    void permissionStoreDecidesInASandbox()
    {
        QFETCH(Permissions, permissions);
        QFETCH(bool, refuses);
        QFETCH(bool, asked);
        enterFlatpak();
        QVERIFY(m_portal->offer(m_services));
        QVERIFY(m_store->offer(m_services));
        m_store->permissions = permissions;
        m_store->refuses = refuses;
        m_defaults.setBoolean(askedKey, asked);
        QFETCH(NotificationState, state);
        QCOMPARE(stateOf(*made()), state);
        QCOMPARE(m_store->lookedUp, (QStringList{ u"notifications"_s, u"notification"_s }));
        QVERIFY(m_processes.commands.isEmpty());
    }

    void sandboxNeedsThePortal()
    {
        enterFlatpak();
        QVERIFY(m_server->offer(m_services));
        QCOMPARE(stateOf(*made()), NotificationState::denied);
        QVERIFY(m_portal->offer(m_services));
        const auto notifier = made();
        QCOMPARE(stateOf(*notifier), NotificationState::notAsked);
        const auto asked = notifier->requestAuthorisation();
        QTRY_VERIFY(asked.isFinished());
        QCOMPARE(stateOf(*notifier), NotificationState::allowed);
        QCOMPARE(m_server->questions, 0);
    }

    void settingsAreOpened()
    {
        const auto notifier = made();
        QVERIFY(notifier->hasSettings());
        notifier->openSettings();
        QCOMPARE(m_started, (QStringList{ m_tree.text("bin/gnome-control-center"), u"notifications"_s }));
    }

    void settingsOfAnUnknownDesktopAreNot()
    {
        m_session.desktops = { u"sway"_s };
        const auto notifier = made();
        QVERIFY(!notifier->hasSettings());
        notifier->openSettings();
        QVERIFY(m_started.isEmpty());
    }

private:
    void enterFlatpak() { m_session.sandbox = { .kind = Sandbox::Kind::flatpak, .application = quillbrook }; }

    [[nodiscard]] std::unique_ptr<LinuxNotifier> made(std::chrono::milliseconds timeout = 10s)
    {
        return std::make_unique<LinuxNotifier>(
            LinuxNotifier::Services{ .processes = m_processes,
                .reading = m_files,
                .defaults = m_defaults,
                .session = m_session,
                .start = [this](const QString &program,
                             const QStringList &arguments) { m_started << program << arguments; } },
            m_client, timeout);
    }

    [[nodiscard]] static std::optional<NotificationState> stateOf(LinuxNotifier &notifier)
    {
        const auto state = notifier.state();
        [&state] { QTRY_VERIFY(state.isFinished()); }();
        if (!state.isFinished() || state.isCanceled())
            return std::nullopt;
        return state.result();
    }

    // Whatever was sent before has come when this returns.
    void settle()
    {
        const auto question = QDBusMessage::createMethodCall(
            u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s, u"GetId"_s);
        for (auto connection : { m_services, m_client, m_services })
            if (connection.isConnected())
                connection.call(question);
        QCoreApplication::processEvents();
    }

    TempTree m_tree;
    std::unique_ptr<PrivateBus> m_bus;
    QDBusConnection m_client{ u"not yet"_s };
    QDBusConnection m_services = m_client;
    std::unique_ptr<FakeServer> m_server;
    std::unique_ptr<FakePortal> m_portal;
    std::unique_ptr<FakePermissionStore> m_store;
    FakeUserDefaults m_defaults;
    FakeProcessRunner m_processes;
    MemoryFiles m_files;
    DesktopSession m_session;
    QStringList m_started;
};

QUILLBROOK_SUITE(TestLinuxNotifier, QCoreApplication)
#include "tst_LinuxNotifier.moc"

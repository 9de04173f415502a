#include "Platform/Linux/Session/ActivationToken.h"
#include "Platform/Linux/Session/LinuxAppInstance.h"
#include "Support/PrivateBus.h"
#include "Support/Suite.h"

#include <QDBusConnectionInterface>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <algorithm>
#include <memory>
#include <span>
#include <unistd.h>
#include <vector>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

constexpr auto refusal
    = "Quillbrook: is running already, where its window can't be brought forward from here";

namespace {

/// The one that runs, in an event loop of its own as another process would be.
class OtherInstance : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    enum class Manner { answers, isSilent, ends };

    OtherInstance(const QDBusConnection &bus, Manner manner)
        : m_bus(bus)
        , m_manner(manner)
    {
        m_bus.registerObject(LinuxAppInstance::objectPath(), this, QDBusConnection::ExportAllSlots);
        m_bus.registerService(LinuxAppInstance::name());
        moveToThread(&m_thread);
        m_thread.start();
    }
    ~OtherInstance() override
    {
        m_thread.quit();
        m_thread.wait();
    }

    /// To be read after the call has come to an end.
    QList<QVariantMap> platformData;

public Q_SLOTS:
    void Activate(const QVariantMap &data)
    {
        platformData.append(data);
        if (m_manner != Manner::answers)
            setDelayedReply(true);
        if (m_manner == Manner::ends) {
            const auto name = m_bus.name();
            m_bus = QDBusConnection(u"gone"_s);
            QDBusConnection::disconnectFromBus(name);
        }
    }

private:
    QDBusConnection m_bus;
    Manner m_manner;
    QThread m_thread;
};

} // namespace

class TestLinuxAppInstance : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_bus = std::make_unique<PrivateBus>();
        QVERIFY(m_bus->connection().isConnected());
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
    }

    void cleanup()
    {
        m_bus.reset();
        m_folder.reset();
    }

    void firstOneIsTheOne()
    {
        auto instance = make();
        const QSignalSpy activations(instance.get(), &AppInstance::activated);
        QVERIFY(instance->claim(withWindow));
        QVERIFY(m_bus->connection().interface()->isServiceRegistered(u"com.tarnwick.Quillbrook"_s));
        QCoreApplication::processEvents();
        QCOMPARE(activations.count(), 0);
    }

    void secondOneBringsTheFirstForward_data()
    {
        QTest::addColumn<QByteArray>("token");
        QTest::addColumn<QByteArray>("startupId");
        QTest::addColumn<QVariantMap>("expected");
        const auto token = u"activation-token"_s;
        const auto startupId = u"desktop-startup-id"_s;
        QTest::newRow("both") << QByteArray("abc") << QByteArray("x_TIME1")
                              << QVariantMap{ { token, u"abc"_s }, { startupId, u"x_TIME1"_s } };
        QTest::newRow("token") << QByteArray("abc") << QByteArray() << QVariantMap{ { token, u"abc"_s } };
        QTest::newRow("startup id") << QByteArray() << QByteArray("x_TIME1")
                                    << QVariantMap{ { startupId, u"x_TIME1"_s } };
        QTest::newRow("none") << QByteArray() << QByteArray() << QVariantMap();
    }

    void secondOneBringsTheFirstForward()
    {
        QFETCH(QByteArray, token);
        QFETCH(QByteArray, startupId);
        QFETCH(QVariantMap, expected);
        const OtherInstance first(m_bus->connection(), OtherInstance::Manner::answers);
        auto second = make({ .activationToken = token, .startupId = startupId });
        QVERIFY(!second->claim(withWindow));
        QCOMPARE(first.platformData, QList<QVariantMap>({ expected }));
    }

    void startInTheBackgroundLeavesTheFirstWhereItIs()
    {
        const OtherInstance first(m_bus->connection(), OtherInstance::Manner::answers);
        QVERIFY(!make()->claim(inBackground));
        QVERIFY(first.platformData.isEmpty());
    }

    void ownerThatHangsIsWaitedForSoLong()
    {
        const OtherInstance first(m_bus->connection(), OtherInstance::Manner::isSilent);
        LinuxAppInstance second(
            { .bus = m_bus->connection(), .lockFolder = lockFolder(), .patience = 300ms });
        QElapsedTimer time;
        time.start();
        QTest::ignoreMessage(QtWarningMsg, "Quillbrook: is running already, but does not answer");
        QVERIFY(!second.claim(withWindow));
        QVERIFY(time.elapsed() >= 200);
        QVERIFY(time.elapsed() < 5000);
        QCOMPARE(first.platformData.size(), 1);
    }

    void ownerThatEndsLeavesTheName()
    {
        const OtherInstance first(m_bus->connection(), OtherInstance::Manner::ends);
        auto second = make();
        QElapsedTimer time;
        time.start();
        QVERIFY(second->claim(withWindow));
        QVERIFY(time.elapsed() < 4000);
        QCOMPARE(first.platformData.size(), 1);
    }

    void nameIsFreeAfterTheFirst()
    {
        auto first = make();
        QVERIFY(first->claim(withWindow));
        first.reset();
        QVERIFY(make()->claim(withWindow));
    }

    void launcherActivates_data()
    {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QVariantList>("arguments");
        QTest::addColumn<QByteArray>("token");
        const QVariantMap data{ { u"activation-token"_s, u"abc"_s }, { u"desktop-startup-id"_s, u"x"_s } };
        QTest::newRow("Activate") << u"Activate"_s << QVariantList{ data } << QByteArray("abc");
        QTest::newRow("Activate by an older launcher")
            << u"Activate"_s << QVariantList{ QVariantMap{ { u"desktop-startup-id"_s, u"x"_s } } }
            << QByteArray("x");
        QTest::newRow("Activate without anything")
            << u"Activate"_s << QVariantList{ QVariantMap() } << QByteArray();
        QTest::newRow("Open") << u"Open"_s << QVariantList{ QStringList{ u"file:///tmp"_s }, data }
                              << QByteArray("abc");
        QTest::newRow("action") << u"ActivateAction"_s << QVariantList{ u"open"_s, QVariantList(), data }
                                << QByteArray("abc");
    }

    void launcherActivates()
    {
        QFETCH(QString, method);
        QFETCH(QVariantList, arguments);
        QFETCH(QByteArray, token);
        auto instance = make();
        QVERIFY(instance->claim(withWindow));
        const QSignalSpy activations(instance.get(), &AppInstance::activated);
        auto message = QDBusMessage::createMethodCall(u"com.tarnwick.Quillbrook"_s,
            u"/com/tarnwick/Quillbrook"_s, u"org.freedesktop.Application"_s, method);
        message.setArguments(arguments);
        const auto reply = m_bus->connection().call(message, QDBus::BlockWithGui, 5000);
        QVERIFY2(reply.type() == QDBusMessage::ReplyMessage, qPrintable(reply.errorMessage()));
        QCOMPARE(activations.count(), 1);
        QCOMPARE(activations[0][0].toByteArray(), token);
    }

    void otherActionsArePassedOver()
    {
        auto instance = make();
        QVERIFY(instance->claim(withWindow));
        const QSignalSpy activations(instance.get(), &AppInstance::activated);
        auto message = QDBusMessage::createMethodCall(LinuxAppInstance::name(),
            LinuxAppInstance::objectPath(), u"org.freedesktop.Application"_s, u"ActivateAction"_s);
        message << u"erase"_s << QVariantList{ 1 } << QVariantMap();
        QCOMPARE(
            m_bus->connection().call(message, QDBus::BlockWithGui, 5000).type(), QDBusMessage::ReplyMessage);
        QCOMPARE(activations.count(), 0);
    }

    void tokensAreTakenFromTheEnvironment()
    {
        qputenv("XDG_ACTIVATION_TOKEN", "abc");
        qputenv("DESKTOP_STARTUP_ID", "x_TIME1");
        const auto tokens = LinuxAppInstance::StartTokens::ofEnvironment();
        qunsetenv("XDG_ACTIVATION_TOKEN");
        qunsetenv("DESKTOP_STARTUP_ID");
        QCOMPARE(tokens.activationToken, QByteArray("abc"));
        QCOMPARE(tokens.startupId, QByteArray("x_TIME1"));
    }

    // Whichever of the two comes first, with a bus or without one: the stores have one writer.
    void lockHoldsWhateverTheBus_data()
    {
        QTest::addColumn<bool>("firstHasBus");
        QTest::addColumn<bool>("secondHasBus");
        QTest::newRow("neither") << false << false;
        QTest::newRow("first") << true << false;
        QTest::newRow("second") << false << true;
    }

    void lockHoldsWhateverTheBus()
    {
        QFETCH(bool, firstHasBus);
        QFETCH(bool, secondHasBus);
        auto first = firstHasBus ? make() : makeWithoutBus();
        QVERIFY(first->claim(withWindow));
        auto second = secondHasBus ? make() : makeWithoutBus();
        QTest::ignoreMessage(QtWarningMsg, refusal);
        QVERIFY(!second->claim(withWindow));
        QCOMPARE(m_bus->connection().interface()->isServiceRegistered(LinuxAppInstance::name()).value(),
            firstHasBus);
        first.reset();
        QVERIFY(second->claim(withWindow));
    }

    void lockOfAKilledProcessIsTakenOver()
    {
        QVERIFY(QDir().mkpath(QString::fromStdString(lockFolder())));
        const auto lock = QString::fromStdString(lockFolder()) + u"/lock"_s;
        QProcess holder;
        holder.start(u"flock"_s, { u"--no-fork"_s, lock, u"sh"_s, u"-c"_s, u"echo held; exec sleep 60"_s });
        QVERIFY(holder.waitForStarted(5000));
        QVERIFY(holder.waitForReadyRead(5000));
        auto instance = makeWithoutBus();
        QTest::ignoreMessage(QtWarningMsg, refusal);
        QVERIFY(!instance->claim(withWindow));
        holder.kill();
        QVERIFY(holder.waitForFinished(5000));
        QVERIFY(QFileInfo::exists(lock));
        QVERIFY(instance->claim(withWindow));
    }

    void placeThatCanNotBeLockedIsTold()
    {
        QFile file(m_folder->filePath(u"data"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QTest::ignoreMessage(
            QtWarningMsg, QRegularExpression(u"^Quillbrook: could not lock .*data/Quillbrook/lock"_s));
        QVERIFY(makeWithoutBus()->claim(withWindow));
    }

    void tokenReachesTheEnvironmentForOneRound()
    {
        qputenv("XDG_ACTIVATION_TOKEN", "of this start");
        ActivationToken::reserve();
        QCOMPARE(qgetenv("XDG_ACTIVATION_TOKEN"), QByteArray("of this start"));
        auto instance = make();
        // What other threads read while a token comes and goes: it must not move.
        std::vector<char *> before;
        for (auto **entry = environ; *entry != nullptr; ++entry)
            before.push_back(*entry);
        instance->useActivationToken("abc");
        QCOMPARE(qgetenv("XDG_ACTIVATION_TOKEN"), QByteArray("abc"));
        QVERIFY(std::ranges::equal(before, std::span(environ, before.size())));
        QCoreApplication::processEvents();
        QVERIFY(qgetenv("XDG_ACTIVATION_TOKEN").isEmpty());
        instance->useActivationToken(QByteArray(2000, 'x'));
        QVERIFY(qgetenv("XDG_ACTIVATION_TOKEN").isEmpty());
        // As the window system leaves it behind.
        qunsetenv("XDG_ACTIVATION_TOKEN");
        instance->useActivationToken("def");
        QCOMPARE(qgetenv("XDG_ACTIVATION_TOKEN"), QByteArray("def"));
    }

private:
    [[nodiscard]] std::unique_ptr<LinuxAppInstance> make(const LinuxAppInstance::StartTokens &tokens = {})
    {
        return std::make_unique<LinuxAppInstance>(LinuxAppInstance::Options{
            .bus = m_bus->connection(), .tokens = tokens, .lockFolder = lockFolder(), .patience = 5s });
    }

    [[nodiscard]] std::unique_ptr<LinuxAppInstance> makeWithoutBus() const
    {
        return std::make_unique<LinuxAppInstance>(LinuxAppInstance::Options{
            .bus = QDBusConnection(u"not connected"_s), .lockFolder = lockFolder() });
    }

    /// Not there at first, nor is the folder above.
    [[nodiscard]] std::string lockFolder() const
    {
        return m_folder->path().toStdString() + "/data/Quillbrook";
    }

    static constexpr auto withWindow = AppInstance::Start::withWindow;
    static constexpr auto inBackground = AppInstance::Start::inBackground;

    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<QTemporaryDir> m_folder;
};

QUILLBROOK_SUITE(TestLinuxAppInstance, QCoreApplication)
#include "tst_LinuxAppInstance.moc"

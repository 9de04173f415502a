#include "Platform/Linux/Opening/LinuxFileRevealer.h"
#include "Support/PrivateBus.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QDesktopServices>
#include <QTest>
#include <QUrl>

#include <fcntl.h>
#include <memory>
#include <sys/stat.h>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const auto fileManagerName = u"org.freedesktop.FileManager1"_s;
const auto portalName = u"org.freedesktop.portal.Desktop"_s;

enum class Answer { good, error, none };

class FakeFileManager : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    Answer answer = Answer::good;
    QStringList uris;
    QStringList startupIds;

public Q_SLOTS:
    void ShowItems(const QStringList &shown, const QString &startupId)
    {
        uris += shown;
        startupIds += startupId;
        if (answer == Answer::error)
            sendErrorReply(QDBusError::Failed, u"no"_s);
        if (answer == Answer::none)
            setDelayedReply(true);
    }
};

class FakePortal : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.OpenURI")

public:
    Answer answer = Answer::good;
    /// Of what the handles lead to.
    QList<quint64> inodes;
    /// Whether a handle could be read from.
    bool couldRead = false;

public Q_SLOTS:
    QDBusObjectPath OpenDirectory(
        const QString &parentWindow, const QDBusUnixFileDescriptor &file, const QVariantMap &options)
    {
        struct stat status = {};
        if (parentWindow.isEmpty() && options.isEmpty() && ::fstat(file.fileDescriptor(), &status) == 0)
            inodes.append(status.st_ino);
        couldRead |= (::fcntl(file.fileDescriptor(), F_GETFL) & O_PATH) == 0;
        if (answer == Answer::error)
            sendErrorReply(QDBusError::Failed, u"no"_s);
        if (answer == Answer::none)
            setDelayedReply(true);
        return QDBusObjectPath(u"/org/freedesktop/portal/desktop/request/1"_s);
    }
};

class FakeBrowser : public QObject
{
    Q_OBJECT

public:
    QList<QByteArray> urls;

public Q_SLOTS:
    void open(const QUrl &url) { urls.append(url.toEncoded()); }
};

} // namespace

class TestLinuxFileRevealer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_bus = std::make_unique<PrivateBus>();
        m_client = m_bus->connection();
        m_services = m_bus->connection();
        QVERIFY(m_client.isConnected());
        QVERIFY(m_services.isConnected());
        m_fileManager = std::make_unique<FakeFileManager>();
        m_portal = std::make_unique<FakePortal>();
        m_browser = std::make_unique<FakeBrowser>();
        QDesktopServices::setUrlHandler(u"file"_s, m_browser.get(), "open");
        m_tree = std::make_unique<TempTree>();
        m_tree->file("folder/file");
    }

    void cleanup()
    {
        QDesktopServices::unsetUrlHandler(u"file"_s);
        m_bus.reset();
    }

    void fileUriEncodesEveryByte_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QString>("uri");
        QTest::newRow("plain") << QByteArray("/home/someone/a-b_c.d~") << u"file:///home/someone/a-b_c.d~"_s;
        QTest::newRow("signs") << QByteArray("/a b#c?d%e;f&g=h")
                               << u"file:///a%20b%23c%3Fd%25e%3Bf%26g%3Dh"_s;
        QTest::newRow("line feed") << QByteArray("/a\nb") << u"file:///a%0Ab"_s;
        QTest::newRow("beyond ASCII") << QByteArray("/größe") << u"file:///gr%C3%B6%C3%9Fe"_s;
        QTest::newRow("not UTF-8") << QByteArray("/a\xff\xfe") << u"file:///a%FF%FE"_s;
        QTest::newRow("root") << QByteArray("/") << u"file:///"_s;
    }

    void fileUriEncodesEveryByte()
    {
        QFETCH(QByteArray, path);
        QTEST(fileUri(path.toStdString()), "uri");
    }

    void asksTheFileManager_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("plain") << QByteArray("plain");
        QTest::newRow("signs") << QByteArray("a b#c?d%e");
        QTest::newRow("not UTF-8") << QByteArray("a\xff\xfe");
    }

    void asksTheFileManager()
    {
        QFETCH(QByteArray, name);
        offerFileManager(Answer::good);
        offerPortal(Answer::good);
        const auto path = m_tree->path(name.toStdString());
        const auto revealing = revealer();
        revealing->reveal(path);
        QTRY_COMPARE(m_fileManager->uris, QStringList{ fileUri(path) });
        QCOMPARE(m_fileManager->startupIds, QStringList{ QString() });
        settle();
        QVERIFY(m_portal->inodes.isEmpty());
        QVERIFY(m_browser->urls.isEmpty());
    }

    void asksThePortalWhereTheFileManagerDoesNot_data()
    {
        QTest::addColumn<std::optional<Answer>>("fileManager");
        QTest::newRow("none") << std::optional<Answer>();
        QTest::newRow("fails") << std::optional(Answer::error);
        QTest::newRow("silent") << std::optional(Answer::none);
    }

    void asksThePortalWhereTheFileManagerDoesNot()
    {
        QFETCH(std::optional<Answer>, fileManager);
        if (fileManager)
            offerFileManager(*fileManager);
        offerPortal(Answer::good);
        const auto revealing = revealer(fileManager == Answer::none ? 500ms : 10s);
        revealing->reveal(m_tree->path("folder/file"));
        QTRY_COMPARE(m_portal->inodes, QList<quint64>{ inode(m_tree->path("folder/file")) });
        QCOMPARE(m_fileManager->uris.size(), fileManager ? 1 : 0);
        QVERIFY(!m_portal->couldRead);
        QVERIFY(m_browser->urls.isEmpty());
    }

    void opensTheFolderWhereThePortalDoesNot_data()
    {
        QTest::addColumn<std::optional<Answer>>("portal");
        QTest::newRow("none") << std::optional<Answer>();
        QTest::newRow("fails") << std::optional(Answer::error);
        QTest::newRow("silent") << std::optional(Answer::none);
    }

    void opensTheFolderWhereThePortalDoesNot()
    {
        QFETCH(std::optional<Answer>, portal);
        if (portal)
            offerPortal(*portal);
        const auto revealing = revealer(portal == Answer::none ? 500ms : 10s);
        revealing->reveal(m_tree->path("folder/file"));
        QTRY_COMPARE(m_browser->urls, QList<QByteArray>{ fileUri(m_tree->path("folder")).toLatin1() });
        QCOMPARE(m_portal->inodes.size(), portal ? 1 : 0);
    }

    void opensTheFolderOfWhatIsGone()
    {
        offerPortal(Answer::good);
        const auto revealing = revealer();
        revealing->reveal(m_tree->path("folder/gone"));
        QTRY_COMPARE(m_browser->urls, QList<QByteArray>{ fileUri(m_tree->path("folder")).toLatin1() });
        QVERIFY(m_portal->inodes.isEmpty());
    }

    void opensTheFolderWithoutABus()
    {
        LinuxFileRevealer revealing(QDBusConnection(u"none"_s), 10s);
        revealing.reveal(m_tree->path("folder/file"));
        QCOMPARE(m_browser->urls, QList<QByteArray>{ fileUri(m_tree->path("folder")).toLatin1() });
    }

    void folderKeepsItsBytes()
    {
        const auto revealing = revealer();
        revealing->reveal(m_tree->path("fol\xff"
                                       "der #/file"));
        QTRY_COMPARE(
            m_browser->urls, QList<QByteArray>{ fileUri(m_tree->path()).toLatin1() + "/fol%FFder%20%23" });
    }

    void rootItselfIsRevealed()
    {
        const auto revealing = revealer();
        revealing->reveal("/");
        QTRY_COMPARE(m_browser->urls, QList<QByteArray>{ "file:///" });
    }

    void revealerMayGoBeforeTheAnswer()
    {
        offerFileManager(Answer::error);
        revealer()->reveal(m_tree->path("folder/file"));
        QTRY_COMPARE(m_fileManager->uris.size(), 1);
        settle();
        QVERIFY(m_browser->urls.isEmpty());
    }

private:
    [[nodiscard]] std::unique_ptr<LinuxFileRevealer> revealer(std::chrono::milliseconds patience = 10s) const
    {
        return std::make_unique<LinuxFileRevealer>(m_client, patience);
    }

    // Waits until what the services have answered has come to the client and has been acted on. The bus keeps
    // the order of what it hands on, so that a question to it is answered after all that went before.
    void settle()
    {
        const auto question = QDBusMessage::createMethodCall(
            u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s, u"GetId"_s);
        for (const auto &connection : { m_services, m_client })
            QCOMPARE(connection.call(question).type(), QDBusMessage::ReplyMessage);
        QCoreApplication::processEvents();
    }

    void offerFileManager(Answer answer)
    {
        m_fileManager->answer = answer;
        QVERIFY(m_services.registerObject(
            u"/org/freedesktop/FileManager1"_s, m_fileManager.get(), QDBusConnection::ExportAllSlots));
        QVERIFY(m_services.registerService(fileManagerName));
    }

    void offerPortal(Answer answer)
    {
        m_portal->answer = answer;
        QVERIFY(m_services.registerObject(
            u"/org/freedesktop/portal/desktop"_s, m_portal.get(), QDBusConnection::ExportAllSlots));
        QVERIFY(m_services.registerService(portalName));
    }

    [[nodiscard]] static quint64 inode(const std::string &path)
    {
        struct stat status = {};
        return ::stat(path.c_str(), &status) == 0 ? status.st_ino : 0;
    }

    std::unique_ptr<PrivateBus> m_bus;
    QDBusConnection m_client{ u"not yet"_s };
    QDBusConnection m_services = m_client;
    std::unique_ptr<FakeFileManager> m_fileManager;
    std::unique_ptr<FakePortal> m_portal;
    std::unique_ptr<FakeBrowser> m_browser;
    std::unique_ptr<TempTree> m_tree;
};

QUILLBROOK_SUITE(TestLinuxFileRevealer, QGuiApplication)
#include "tst_LinuxFileRevealer.moc"

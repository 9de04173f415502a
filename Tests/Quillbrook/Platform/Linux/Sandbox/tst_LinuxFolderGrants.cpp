#include "Platform/Linux/Sandbox/FolderBookmark.h"
#include "Platform/Linux/Sandbox/LinuxFolderGrants.h"
#include "Support/PrivateBus.h"
#include "Support/RootGivenUp.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QDBusContext>
#include <QDBusMessage>
#include <QElapsedTimer>
#include <QTest>
#include <QThread>

#include <atomic>
#include <filesystem>
#include <memory>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

enum class Answer { good, error, none };

const auto portalName = u"org.freedesktop.portal.Documents"_s;

/// The document portal, on a thread of its own: who asks it waits for the answer.
class FakeDocuments : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Documents")

public:
    std::atomic<Answer> answer = Answer::good;
    /// To be set before it is asked.
    QByteArray mountPoint;
    std::atomic<int> questions = 0;

public Q_SLOTS:
    QByteArray GetMountPoint()
    {
        ++questions;
        if (answer == Answer::error)
            sendErrorReply(QDBusError::Failed, u"no"_s);
        if (answer == Answer::none)
            setDelayedReply(true);
        return mountPoint + '\0';
    }
};

} // namespace

class TestLinuxFolderGrants : public QObject
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
        m_portal = std::make_unique<FakeDocuments>();
        m_tree = std::make_unique<TempTree>();
        m_tree->folder("home");
        m_tree->folder("run/doc/ab12/someone");
    }

    void cleanup()
    {
        m_services.unregisterService(portalName);
        m_thread.quit();
        QVERIFY(m_thread.wait(5000));
        m_portal.reset();
        m_bus.reset();
        m_tree.reset();
    }

    void folderIsKeptAndFoundAgain_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("plain") << QByteArray("someone");
        QTest::newRow("not UTF-8") << QByteArray("some\xff\n\"one");
        QTest::newRow("beyond ASCII") << QByteArray("größe");
    }

    void folderIsKeptAndFoundAgain()
    {
        QFETCH(QByteArray, name);
        m_tree->folder(name.toStdString());
        const auto path = m_tree->path(name.toStdString());
        const auto kept = grants().bookmark(path);
        QVERIFY(kept);
        const FolderGrants::Resolved expected{ .path = path };
        QVERIFY(grants().resolve(*kept) == expected);
    }

    void whatIsNoFolderIsNotKept_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QString>("error");
        QTest::newRow("missing") << QByteArray("nothing") << "It is not there any more.";
        QTest::newRow("a file") << QByteArray("file") << "It is not there any more.";
        QTest::newRow("a pipe") << QByteArray("pipe") << "It is not there any more.";
        QTest::newRow("relative") << QByteArray() << "That is not a path Quillbrook can act on.";
    }

    void whatIsNoFolderIsNotKept()
    {
        QFETCH(QByteArray, name);
        m_tree->file("file");
        m_tree->pipe("pipe");
        const auto kept = grants().bookmark(name.isEmpty() ? "home" : m_tree->path(name.toStdString()));
        QVERIFY(!kept);
        QTEST(kept.error(), "error");
    }

    void folderThatCannotBeReadIsKept()
    {
        m_tree->permissions("home", 0);
        const auto kept = grants().bookmark(m_tree->path("home"));
        QVERIFY(kept);
        QVERIFY(!grants().resolve(*kept));
        m_tree->permissions("home", 0700);
        QVERIFY(grants().resolve(*kept));
    }

    void folderThatIsGoneIsNotFound_data()
    {
        QTest::addColumn<QByteArray>("replacement");
        QTest::newRow("nothing there") << QByteArray();
        QTest::newRow("a file there") << QByteArray("file");
        QTest::newRow("a link to nothing there") << QByteArray("link");
    }

    void folderThatIsGoneIsNotFound()
    {
        QFETCH(QByteArray, replacement);
        const auto kept = grants().bookmark(m_tree->path("home"));
        QVERIFY(kept);
        move("home", "elsewhere");
        if (replacement == "file")
            m_tree->file("home");
        if (replacement == "link")
            m_tree->link("home", m_tree->path("nothing"));
        QVERIFY(!grants().resolve(*kept));
    }

    void damagedDataAreNotFound()
    {
        QVERIFY(!grants().resolve({}));
        QVERIFY(!grants().resolve("bookmark data of another system"));
    }

    void plainFolderNeverAsksThePortal()
    {
        offerPortal(m_tree->path("run/doc"));
        const auto kept = grants().bookmark(m_tree->path("home"));
        QVERIFY(kept);
        QVERIFY(grants().resolve(*kept));
        move("home", "elsewhere");
        QVERIFY(!grants().resolve(*kept));
        QCOMPARE(m_portal->questions.load(), 0);
    }

    void documentInItsPlaceIsNotStale()
    {
        offerPortal(m_tree->path("run/doc"));
        const auto path = m_tree->path("run/doc/ab12/someone");
        const auto kept = grants().bookmark(path);
        QVERIFY(kept);
        const auto document = decodeFolderBookmark(*kept)->document;
        const PortalDocument expectedDocument{ .id = "ab12", .rest = "someone" };
        QVERIFY(document == expectedDocument);
        const FolderGrants::Resolved expected{ .path = path };
        QVERIFY(grants().resolve(*kept) == expected);
        QCOMPARE(m_portal->questions.load(), 0);
    }

    void documentUnderAnotherMountPointIsStale()
    {
        const auto kept = grants().bookmark(m_tree->path("run/doc/ab12/someone"));
        QVERIFY(kept);
        move("run", "later");
        offerPortal(m_tree->path("later/doc"));
        const FolderGrants::Resolved expected{ .path = m_tree->path("later/doc/ab12/someone"),
            .isStale = true };
        QVERIFY(grants().resolve(*kept) == expected);

        const auto afresh = grants().bookmark(expected.path);
        QVERIFY(afresh);
        const FolderGrants::Resolved inItsPlace{ .path = expected.path };
        QVERIFY(grants().resolve(*afresh) == inItsPlace);
    }

    void documentOfAToldMountPointIsKnown()
    {
        m_tree->folder("odd/doc/ab12/someone");
        offerPortal(m_tree->path("odd/doc"));
        const auto kept = grants().bookmark(m_tree->path("odd/doc/ab12/someone"));
        QVERIFY(kept);
        const PortalDocument expected{ .id = "ab12", .rest = "someone" };
        QVERIFY(decodeFolderBookmark(*kept)->document == expected);
        QCOMPARE(m_portal->questions.load(), 1);
    }

    void revokedDocumentIsNotFound()
    {
        offerPortal(m_tree->path("run/doc"));
        const auto kept = grants().bookmark(m_tree->path("run/doc/ab12/someone"));
        QVERIFY(kept);
        move("run/doc/ab12", "revoked");
        QVERIFY(!grants().resolve(*kept));
        QCOMPARE(m_portal->questions.load(), 1);
    }

    void portalThatFailsFindsNothing_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<QByteArray>("mountPoint");
        QTest::newRow("error") << int(Answer::error) << QByteArray("/later/doc");
        QTest::newRow("silence") << int(Answer::none) << QByteArray("/later/doc");
        QTest::newRow("no path") << int(Answer::good) << QByteArray("later");
        QTest::newRow("nothing") << int(Answer::good) << QByteArray();
    }

    void portalThatFailsFindsNothing()
    {
        QFETCH(int, answer);
        QFETCH(QByteArray, mountPoint);
        const auto kept = grants().bookmark(m_tree->path("run/doc/ab12/someone"));
        QVERIFY(kept);
        move("run", "later");
        const auto told = mountPoint.startsWith('/') ? m_tree->path() + mountPoint.toStdString()
                                                     : mountPoint.toStdString();
        offerPortal(told, Answer(answer));
        QElapsedTimer watch;
        watch.start();
        QVERIFY(!grants(200ms).resolve(*kept));
        QVERIFY(watch.elapsed() < 5000);
        QCOMPARE(m_portal->questions.load(), 1);
    }

    void withoutABusNothingIsAsked()
    {
        LinuxFolderGrants alone({ .runtimeFolder = m_tree->path("run") }, QDBusConnection(u"none"_s));
        const auto kept = alone.bookmark(m_tree->path("run/doc/ab12/someone"));
        QVERIFY(kept);
        QVERIFY(alone.resolve(*kept));
        move("run", "later");
        QVERIFY(!alone.resolve(*kept));
    }

    void accessNeedsAReadableFolder()
    {
        m_tree->file("file");
        m_tree->link("link", m_tree->path("home"));
        auto access = grants();
        QVERIFY(access.startAccessing(m_tree->path("home")));
        QVERIFY(access.startAccessing(m_tree->path("link")));
        QVERIFY(!access.startAccessing(m_tree->path("file")));
        QVERIFY(!access.startAccessing(m_tree->path("nothing")));
        QVERIFY(!access.startAccessing({}));
        access.stopAccessing(m_tree->path("home"));
        QVERIFY(access.startAccessing(m_tree->path("home")));
    }

    void placesOnTheStartupDisk_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<bool>("isOn");
        const auto newRow
            = [](const char *path, bool isOn) { QTest::newRow(path) << QByteArray(path) << isOn; };
        newRow("/home/someone", true);
        newRow("/home/some\xff", true);
        newRow("/var/home/someone", true);
        newRow("/srv/homes/someone", true);
        newRow("/srv/homes/another", true);
        newRow("/srv/homes/someone/src", true);
        newRow("/run/user/1000/doc/ab12/someone", true);
        newRow("/run/flatpak/doc/ab12/someone", true);
        newRow("/home", false);
        newRow("/srv/homes", false);
        newRow("/srv/other", false);
        newRow("/srv/homes2/someone", false);
        newRow("/run/user/1000/doc/ab12", false);
        newRow("/run/user/1000/gvfs/smb-share", false);
        newRow("/run/media/someone/backup", false);
        newRow("/media/someone/backup/home/someone", false);
        newRow("/mnt/backup", false);
        newRow("/Volumes/Backup/someone", false);
        newRow("/", false);
    }

    void placesOnTheStartupDisk()
    {
        QFETCH(QByteArray, path);
        QTEST(grants().isOnStartupDisk(path.toStdString()), "isOn");
    }

    void homeRightBelowTheRootStandsAlone()
    {
        const LinuxFolderGrants ofRoot({ .realHome = "/root" }, m_client);
        QVERIFY(ofRoot.isOnStartupDisk("/root"));
        QVERIFY(ofRoot.isOnStartupDisk("/root/src"));
        QVERIFY(!ofRoot.isOnStartupDisk("/mnt"));
        const LinuxFolderGrants unknown({}, m_client);
        QVERIFY(!unknown.isOnStartupDisk("/mnt"));
        QVERIFY(unknown.isOnStartupDisk("/home/someone"));
    }

private:
    [[nodiscard]] LinuxFolderGrants grants(std::chrono::milliseconds patience = 10s) const
    {
        return LinuxFolderGrants(
            { .realHome = "/srv/homes/someone", .runtimeFolder = m_tree->path("run"), .patience = patience },
            m_client);
    }

    void offerPortal(const std::string &mountPoint, Answer answer = Answer::good)
    {
        m_portal->mountPoint = QByteArray::fromStdString(mountPoint);
        m_portal->answer = answer;
        m_portal->moveToThread(&m_thread);
        m_thread.start();
        QVERIFY(m_services.registerObject(
            u"/org/freedesktop/portal/documents"_s, m_portal.get(), QDBusConnection::ExportAllSlots));
        QVERIFY(m_services.registerService(portalName));
    }

    void move(const char *from, const char *to) const
    {
        std::filesystem::rename(m_tree->path(from), m_tree->path(to));
    }

    std::unique_ptr<PrivateBus> m_bus;
    QDBusConnection m_client{ u"not yet"_s };
    QDBusConnection m_services = m_client;
    QThread m_thread;
    std::unique_ptr<FakeDocuments> m_portal;
    std::unique_ptr<TempTree> m_tree;
};

QUILLBROOK_SUITE(TestLinuxFolderGrants, QCoreApplication, giveUpRoot)
#include "tst_LinuxFolderGrants.moc"

// Deleting for good, on real files, as an ordinary user.

#include "Platform/Linux/Trash/LinuxFileRemoval.h"
#include "Platform/Linux/Trash/TreeEraser.h"
#include "Support/FailingFileCalls.h"
#include "Support/RootGivenUp.h"
#include "Support/Suite.h"
#include "Support/TrashFixture.h"

#include <QCoreApplication>
#include <QTest>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

QString errorOf(const std::expected<void, QString> &result)
{
    return result ? QString() : result.error();
}

// Folders in each other, made relative to open folders since the path grows too long; a file in the last.
void makeChain(const TempTree &tree, int depth, const std::string &name)
{
    FileDescriptor folder(::open(tree.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (int i = 0; i < depth; ++i) {
        if (::mkdirat(folder.number(), name.c_str(), 0700) != 0)
            qFatal("a folder could not be made");
        folder = FileDescriptor(::openat(folder.number(), name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    }
    ::close(::openat(folder.number(), "last", O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
}

} // namespace

class TestLinuxFileRemoval : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void deletesAnythingByItself_data()
    {
        QTest::addColumn<QByteArray>("name");
        for (const auto *name : { "file", "empty", "link", "dangling", "pipe", "closed" })
            QTest::newRow(name) << QByteArray(name);
    }

    void deletesAnythingByItself()
    {
        QFETCH(QByteArray, name);
        const TempTree tree;
        tree.file("file", 3);
        tree.folder("empty");
        tree.link("link", "file");
        tree.link("dangling", "nowhere");
        tree.pipe("pipe");
        tree.file("closed");
        tree.permissions("closed", 0);
        auto left = TrashFixture::names(tree.path());
        std::erase(left, name.toStdString());
        LinuxFileRemoval removal;
        QCOMPARE(errorOf(removal.remove(tree.path(name.toStdString()))), QString());
        QCOMPARE(TrashFixture::names(tree.path()), left);
    }

    void deletesATreeAndNothingBeside()
    {
        const TempTree tree;
        tree.file("folder/a/b/c");
        tree.file("folder/a/.hidden");
        tree.folder("folder/empty");
        tree.file("folder2/kept");
        LinuxFileRemoval removal;
        QCOMPARE(
            errorOf(removal.remove(tree.path("folder//./"))), u"That is not a path Quillbrook can act on."_s);
        QCOMPARE(errorOf(removal.remove(tree.path("folder//"))), QString());
        QCOMPARE(TrashFixture::names(tree.path()), std::vector<std::string>{ "folder2" });
        QVERIFY(TrashFixture::isThere(tree.path("folder2/kept")));
    }

    void followsNoLink()
    {
        const TempTree tree;
        tree.file("elsewhere/kept");
        tree.link("folder/to-folder", tree.path("elsewhere"));
        tree.link("folder/up", "..");
        tree.link("folder/to-file", "../elsewhere/kept");
        tree.hardLink("folder/hard", "elsewhere/kept");
        LinuxFileRemoval removal;
        QCOMPARE(errorOf(removal.remove(tree.path("folder"))), QString());
        QVERIFY(TrashFixture::isThere(tree.path("elsewhere/kept")));
        QVERIFY(!TrashFixture::isThere(tree.path("folder")));
    }

    void slashAtTheEndOfALinkDoesNotFollowIt()
    {
        const TempTree tree;
        tree.file("elsewhere/kept");
        tree.link("link", "elsewhere");
        LinuxFileRemoval removal;
        QCOMPARE(errorOf(removal.remove(tree.path("link/"))), QString());
        QVERIFY(TrashFixture::isThere(tree.path("elsewhere/kept")));
        QVERIFY(!TrashFixture::isThere(tree.path("link")));
    }

    void anyBytesMakeAName()
    {
        const TempTree tree;
        tree.file("fol\xff\nder/\xfe\t*");
        tree.file("fol\xff\nder/" + std::string(255, 'x'));
        tree.file("fol\xff\nder/-rf");
        LinuxFileRemoval removal;
        QCOMPARE(errorOf(removal.remove(tree.path("fol\xff\nder"))), QString());
        QVERIFY(TrashFixture::names(tree.path()).empty());
    }

    void wideFolder()
    {
        const TempTree tree;
        constexpr int count = 20'000;
        for (int i = 0; i < count; ++i)
            tree.file("wide/a-name-that-takes-some-room-" + std::to_string(i));
        const FileDescriptor folder(::open(tree.path().c_str(), O_PATH | O_CLOEXEC));
        const auto erasure = TreeEraser(FileCalls::system(), folder.number()).erase("wide");
        QVERIFY(erasure == Erasure{ .removed = count + 1 });
        QVERIFY(TrashFixture::names(tree.path()).empty());
    }

    void deepBeyondThePathLimitAndTheOpenFolders()
    {
        const TempTree tree;
        constexpr int depth = 3000;
        makeChain(tree, depth, "d");
        const FileDescriptor folder(::open(tree.path().c_str(), O_PATH | O_CLOEXEC));
        const auto erasure = TreeEraser(FileCalls::system(), folder.number()).erase("d");
        QVERIFY(erasure == Erasure{ .removed = depth + 1 });
        makeChain(tree, 100, std::string(255, 'd'));
        LinuxFileRemoval removal;
        QCOMPARE(errorOf(removal.remove(tree.path(std::string(255, 'd')))), QString());
        QVERIFY(TrashFixture::names(tree.path()).empty());
    }

    void startsBeyondThePathLimit()
    {
        const TempTree tree;
        constexpr int depth = 60;
        const std::string name(200, 'd');
        makeChain(tree, depth, name);
        auto path = tree.path();
        for (int i = 0; i < depth; ++i)
            path += '/' + name;
        LinuxFileRemoval removal;
        QCOMPARE(errorOf(removal.remove(path + "/last")), QString());
        QCOMPARE(errorOf(removal.remove(path + "/last")), u"It is not there any more."_s);
        QCOMPARE(errorOf(removal.remove(path)), QString());
        QCOMPARE(errorOf(removal.remove(path.substr(0, path.rfind('/')) + "/gone")),
            u"It is not there any more."_s);
        QVERIFY(TrashFixture::isThere(tree.path(name)));
    }

    void fewDescriptorsAreEnough()
    {
        const TempTree tree;
        makeChain(tree, 100, "d");
        rlimit limit = {};
        QCOMPARE(::getrlimit(RLIMIT_NOFILE, &limit), 0);
        const auto usual = limit;
        limit.rlim_cur = 16;
        QCOMPARE(::setrlimit(RLIMIT_NOFILE, &limit), 0);
        LinuxFileRemoval removal;
        const auto error = errorOf(removal.remove(tree.path("d")));
        QCOMPARE(::setrlimit(RLIMIT_NOFILE, &usual), 0);
        QCOMPARE(error, QString());
        QVERIFY(TrashFixture::names(tree.path()).empty());
    }

    void addsTheOwnersRights_data()
    {
        QTest::addColumn<unsigned>("mode");
        for (const unsigned mode : { 0555U, 0500U, 0400U, 0200U, 0100U, 0600U, 0300U, 0U })
            QTest::addRow("%03o", mode) << mode;
    }

    void addsTheOwnersRights()
    {
        QFETCH(unsigned, mode);
        const TempTree tree;
        tree.file("folder/a");
        tree.file("folder/inside/b");
        tree.folder("folder/empty");
        for (const auto *name : { "folder/inside", "folder/empty", "folder" })
            tree.permissions(name, mode);
        LinuxFileRemoval removal;
        QCOMPARE(errorOf(removal.remove(tree.path("folder"))), QString());
        QVERIFY(TrashFixture::names(tree.path()).empty());
    }

    // Where folders on the way are not kept open, the way up needs rights as well.
    void addsThemFarBelowToo()
    {
        constexpr int depth = 50;
        for (const unsigned mode : { 0400U, 0500U, 0U }) {
            const TempTree tree;
            makeChain(tree, depth, "d");
            std::string path;
            for (int i = 0; i < depth; ++i)
                path += i == 0 ? "d" : "/d";
            for (; !path.empty(); path = path.size() > 1 ? path.substr(0, path.size() - 2) : std::string())
                tree.permissions(path, mode);
            LinuxFileRemoval removal;
            QCOMPARE(errorOf(removal.remove(tree.path("d"))), QString());
            QVERIFY(TrashFixture::names(tree.path()).empty());
        }
    }

    void respectsTheFolderAroundIt()
    {
        const TempTree tree;
        tree.file("around/folder/kept");
        tree.file("around/file");
        tree.permissions("around", 0555);
        LinuxFileRemoval removal;
        for (const auto *name : { "around/folder", "around/file" })
            QCOMPARE(errorOf(removal.remove(tree.path(name))), u"You do not have permission."_s);
        QVERIFY(TrashFixture::isThere(tree.path("around/folder/kept")));
        tree.permissions("around", 0755);
    }

    void goesOnAfterAnError()
    {
        const TempTree tree;
        for (const auto *name :
            { "folder/a", "folder/deep/er/stays", "folder/deep/goes", "folder/stays", "folder/z/y" })
            tree.file(name);
        FailingFileCalls calls;
        calls.before = [](std::string_view call, const char *name) {
            return call == "unlinkat" && std::string_view(name) == "stays" ? EPERM : 0;
        };
        LinuxFileRemoval removal(calls);
        const auto error = errorOf(removal.remove(tree.path("folder")));
        QVERIFY2(
            error == u"\"deep/er/stays\" and 1 more could not be deleted. The system does not permit it."_s
                || error == u"\"stays\" and 1 more could not be deleted. The system does not permit it."_s,
            qPrintable(error));
        const std::map<std::string, std::string> left{ { "deep", "folder" }, { "deep/er", "folder" },
            { "deep/er/stays", "file: " }, { "stays", "file: " } };
        QVERIFY(TrashFixture::everything(tree.path("folder")) == left);
    }

    void rightsAreGivenBackToWhatStays()
    {
        const TempTree tree;
        tree.file("folder/stays");
        tree.file("folder/goes");
        tree.permissions("folder", 0555);
        FailingFileCalls calls;
        calls.before = [](std::string_view call, const char *name) {
            return call == "unlinkat" && std::string_view(name) == "stays" ? EBUSY : 0;
        };
        LinuxFileRemoval removal(calls);
        QCOMPARE(errorOf(removal.remove(tree.path("folder"))),
            u"\"stays\" could not be deleted. The system is using it."_s);
        struct stat status = {};
        QCOMPARE(::stat(tree.path("folder").c_str(), &status), 0);
        QCOMPARE(status.st_mode & 07777U, 0555U);
        QCOMPARE(TrashFixture::names(tree.path("folder")), std::vector<std::string>{ "stays" });
    }

    // As a subvolume, which is mounted nowhere.
    void volumeWithinTheVolumeIsLeftAlone()
    {
        TrashFixture f;
        f.home.file("folder/deep/volume/kept");
        f.home.file("folder/goes");
        f.calls.volume = "volume";
        LinuxFileRemoval removal(f.calls);
        QCOMPARE(errorOf(removal.remove(f.home.path("folder"))),
            u"\"deep/volume\" could not be deleted. It is on another volume."_s);
        QVERIFY(TrashFixture::isThere(f.home.path("folder/deep/volume/kept")));
        QVERIFY(!TrashFixture::isThere(f.home.path("folder/goes")));
        QVERIFY(!f.trash.move(f.home.path("folder/deep/volume")));
    }

    void refuses_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QString>("error");
        const auto odd = u"That is not a path Quillbrook can act on."_s;
        QTest::newRow("empty") << QByteArray() << odd;
        QTest::newRow("relative") << QByteArray("a") << odd;
        QTest::newRow("with a tilde") << QByteArray("~/a") << odd;
        QTest::newRow("the root") << QByteArray("/") << odd;
        QTest::newRow("dot") << QByteArray("HOME/.") << odd;
        QTest::newRow("dot dot") << QByteArray("HOME/a/..") << odd;
        QTest::newRow("NUL") << QByteArray("HOME/a\0b", 8) << odd;
        QTest::newRow("gone") << QByteArray("HOME/gone") << u"It is not there any more."_s;
        QTest::newRow("below a file") << QByteArray("HOME/a/b") << u"It is not there any more."_s;
        QTest::newRow("name too long")
            << QByteArray("HOME/") + QByteArray(300, 'x') << u"Its path is too long."_s;
        QTest::newRow("name beyond the path limit")
            << QByteArray("HOME/") + QByteArray(5000, 'x') + "/y" << u"Its path is too long."_s;
        QTest::newRow("a mount") << QByteArray("/proc") << u"You do not have permission."_s;
    }

    void refuses()
    {
        QFETCH(QByteArray, path);
        QFETCH(QString, error);
        const TempTree tree;
        tree.fileWith("a", "kept");
        LinuxFileRemoval removal;
        QCOMPARE(errorOf(removal.remove(path.replace("HOME", tree.path().c_str()).toStdString())), error);
        QCOMPARE(TrashFixture::content(tree.path("a")), std::string("kept"));
    }
};

QUILLBROOK_SUITE(TestLinuxFileRemoval, QCoreApplication, giveUpRoot)
#include "tst_LinuxFileRemoval.moc"

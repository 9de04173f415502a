// Deleting for good while somebody else changes what is being deleted, on real files.

#include "Platform/Linux/Trash/LinuxFileRemoval.h"
#include "Support/FailingFileCalls.h"
#include "Support/RootGivenUp.h"
#include "Support/Suite.h"
#include "Support/TrashFixture.h"

#include <QCoreApplication>
#include <QTest>

#include <fcntl.h>
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

class TestLinuxFileRemovalRaces : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Between the listing that tells of a folder and the opening of it.
    void folderExchangedForALinkIsNotEntered()
    {
        const TempTree tree;
        tree.file("elsewhere/kept");
        tree.file("folder/sub/a");
        FailingFileCalls calls;
        calls.before = [&](std::string_view call, const char *name) {
            if (call == "openat2" && std::string_view(name) == "sub") {
                std::filesystem::rename(tree.path("folder/sub"), tree.path("moved"));
                std::filesystem::create_symlink(tree.path("elsewhere"), tree.path("folder/sub"));
            }
            return 0;
        };
        LinuxFileRemoval removal(calls);
        QCOMPARE(errorOf(removal.remove(tree.path("folder"))), QString());
        QVERIFY(TrashFixture::isThere(tree.path("elsewhere/kept")));
        QVERIFY(TrashFixture::isThere(tree.path("moved/a")));
        QVERIFY(!TrashFixture::isThere(tree.path("folder")));
    }

    // A folder far below is moved elsewhere while what is in it goes: the way up from it then leads to
    // folders that are none of this deletion's business.
    void folderExchangedWhileInItIsNotLeftIntoAnother()
    {
        const TempTree tree;
        makeChain(tree, 40, "d");
        tree.file("d/kept-by-nobody");
        tree.file("elsewhere/kept");
        bool isMoved = false;
        FailingFileCalls calls;
        calls.before = [&](std::string_view call, const char *name) {
            if (call == "unlinkat" && std::string_view(name) == "last" && !isMoved) {
                isMoved = true;
                std::filesystem::rename(tree.path("d/d/d"), tree.path("elsewhere/moved"));
            }
            return 0;
        };
        LinuxFileRemoval removal(calls);
        std::ignore = removal.remove(tree.path("d"));
        QVERIFY(isMoved);
        QVERIFY(TrashFixture::isThere(tree.path("elsewhere/kept")));
    }

    void whatVanishesIsNoFailure()
    {
        const TempTree tree;
        tree.file("folder/a");
        tree.file("folder/sub/b");
        FailingFileCalls calls;
        calls.before = [&](std::string_view call, const char *name) {
            if (call == "unlinkat" && std::string_view(name) == "a")
                std::filesystem::remove(tree.path("folder/a"));
            if (call == "openat2" && std::string_view(name) == "sub")
                std::filesystem::remove_all(tree.path("folder/sub"));
            return 0;
        };
        LinuxFileRemoval removal(calls);
        QCOMPARE(errorOf(removal.remove(tree.path("folder"))), QString());
        QVERIFY(!TrashFixture::isThere(tree.path("folder")));
    }

    void whatIsPutInMeanwhileIsTold()
    {
        const TempTree tree;
        tree.file("folder/a");
        int made = 0;
        FailingFileCalls calls;
        calls.before = [&](std::string_view call, const char *name) {
            if (call == "unlinkat" && std::string_view(name) == "folder" && made < 1000)
                tree.file("folder/new" + std::to_string(made++));
            return 0;
        };
        LinuxFileRemoval removal(calls);
        QCOMPARE(errorOf(removal.remove(tree.path("folder"))),
            u"Something new was put into it in the meantime."_s);
        QVERIFY(made < 100);
    }

    // As some network file systems do while a folder shrinks.
    void entriesLeftOutOfAListingAreFoundAgain()
    {
        const TempTree tree;
        tree.file("folder/a");
        int listings = 0;
        FailingFileCalls calls;
        calls.before = [&](std::string_view call, const char *) {
            if (call == "getdents64" && ++listings == 2)
                for (int i = 0; i < 10; ++i)
                    tree.file("folder/late" + std::to_string(i));
            return 0;
        };
        LinuxFileRemoval removal(calls);
        QCOMPARE(errorOf(removal.remove(tree.path("folder"))), QString());
        QVERIFY(!TrashFixture::isThere(tree.path("folder")));
    }

    void worksWhereMountsCannotBeRefusedInOneCall()
    {
        const TempTree tree;
        tree.file("folder/a/b/c");
        for (const int error : { ENOSYS, EPERM }) {
            tree.file("folder/a/b/c");
            FailingFileCalls calls;
            calls.before = [&](std::string_view call, const char *) { return call == "openat2" ? error : 0; };
            LinuxFileRemoval removal(calls);
            QCOMPARE(errorOf(removal.remove(tree.path("folder"))), QString());
            QVERIFY(!TrashFixture::isThere(tree.path("folder")));
        }
    }

    void renameInBetweenIsTriedAgain()
    {
        const TempTree tree;
        tree.file("folder/a/b");
        int races = 0;
        FailingFileCalls calls;
        calls.before = [&](std::string_view call, const char *) {
            return call == "openat2" && ++races <= 3 ? EAGAIN : 0;
        };
        LinuxFileRemoval removal(calls);
        QCOMPARE(errorOf(removal.remove(tree.path("folder"))), QString());
        QVERIFY(races > 3);
    }
};

QUILLBROOK_SUITE(TestLinuxFileRemovalRaces, QCoreApplication, giveUpRoot)
#include "tst_LinuxFileRemovalRaces.moc"

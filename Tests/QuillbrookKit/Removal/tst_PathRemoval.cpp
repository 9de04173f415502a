#include "Removal/PathRemoval.h"
#include "Support/RootGivenUp.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QCoreApplication>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Quillbrook;
using PathRemoval::ItemCount;
using PathRemoval::itemCount;

namespace {

constexpr qsizetype cap = 5000;

} // namespace

class TestPathRemoval : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingThereCountsNothing_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("gone") << QByteArray("gone");
        QTest::newRow("below a file") << QByteArray("file/gone");
        QTest::newRow("too long") << QByteArray(10'000, 'x');
    }

    void nothingThereCountsNothing()
    {
        QFETCH(QByteArray, name);
        const TempTree tree;
        tree.file("file");
        QVERIFY(itemCount(tree.path(name.toStdString()), cap) == ItemCount{});
        QVERIFY(itemCount({}, cap) == ItemCount{});
    }

    void whatIsNotAFolderIsOne()
    {
        const TempTree tree;
        tree.file("file", 3);
        tree.file(".hidden");
        tree.pipe("pipe");
        for (const auto *name : { "file", ".hidden", "pipe" })
            QVERIFY(itemCount(tree.path(name), cap) == ItemCount{ .count = 1 });
    }

    void emptyFolderHoldsNothing()
    {
        const TempTree tree;
        QVERIFY(itemCount(tree.path(), cap) == ItemCount{});
    }

    void countsFilesAndFoldersDeep()
    {
        const TempTree tree;
        tree.file("a/b/c.txt");
        tree.file("a/d.txt");
        tree.folder("a/e");
        tree.file("f.txt");
        QVERIFY(itemCount(tree.path(), cap) == ItemCount{ .count = 6 });
        QVERIFY(itemCount(tree.path("a"), cap) == ItemCount{ .count = 4 });
        QVERIFY(itemCount(tree.path("a/"), cap) == ItemCount{ .count = 4 });
    }

    void hiddenEntriesAreLeftOutWithAllInThem()
    {
        const TempTree tree;
        tree.file("seen.txt");
        tree.file(".hidden.txt");
        tree.file(".folder/inside.txt");
        tree.file("..odd");
        QVERIFY(itemCount(tree.path(), cap) == ItemCount{ .count = 1 });
    }

    void folderOfHiddenFilesHoldsNothing()
    {
        const TempTree tree;
        tree.file(".a");
        tree.file(".b");
        QVERIFY(itemCount(tree.path(), 1) == ItemCount{});
    }

    void hiddenFolderItselfIsCountedInto()
    {
        const TempTree tree;
        tree.file(".folder/inside.txt");
        QVERIFY(itemCount(tree.path(".folder"), cap) == ItemCount{ .count = 1 });
    }

    void packagesAreCountedInto()
    {
        const TempTree tree;
        tree.file("Thing.app/Contents/thing");
        QVERIFY(itemCount(tree.path(), cap) == ItemCount{ .count = 3 });
    }

    void linksAreCountedAndNotFollowed()
    {
        const TempTree tree;
        tree.file("elsewhere/a");
        tree.file("elsewhere/b");
        tree.link("folder/to-folder", "../elsewhere");
        tree.link("folder/to-itself", "to-itself");
        tree.link("folder/up", "..");
        tree.link("folder/nowhere", "gone");
        QVERIFY(itemCount(tree.path("folder"), cap) == ItemCount{ .count = 4 });
    }

    void linkIsFollowedToSeeWhetherSomethingIsThere()
    {
        const TempTree tree;
        tree.file("elsewhere/a");
        tree.file("elsewhere/b");
        tree.link("to-file", "elsewhere/a");
        tree.link("to-folder", "elsewhere");
        tree.link("nowhere", "gone");
        QVERIFY(itemCount(tree.path("to-file"), cap) == ItemCount{ .count = 1 });
        QVERIFY(itemCount(tree.path("nowhere"), cap) == ItemCount{});
        // What lies in the folder it leads to would stay if the link went.
        QVERIFY(itemCount(tree.path("to-folder"), cap) == ItemCount{});
    }

    void namesThatAreNotTextAreCounted()
    {
        const TempTree tree;
        tree.file("folder\xff/\xfe\n");
        tree.file("folder\xff/b");
        QVERIFY(itemCount(tree.path("folder\xff"), cap) == ItemCount{ .count = 2 });
    }

    void countingStopsAtTheCap_data()
    {
        QTest::addColumn<qsizetype>("limit");
        QTest::addColumn<qsizetype>("count");
        QTest::addColumn<bool>("capped");
        QTest::newRow("above what is there") << qsizetype(11) << qsizetype(10) << false;
        QTest::newRow("exactly what is there") << qsizetype(10) << qsizetype(10) << true;
        QTest::newRow("below") << qsizetype(9) << qsizetype(9) << true;
        QTest::newRow("one") << qsizetype(1) << qsizetype(1) << true;
        QTest::newRow("none counts as one and is told as given") << qsizetype(0) << qsizetype(0) << true;
        QTest::newRow("negative likewise") << qsizetype(-3) << qsizetype(-3) << true;
    }

    void countingStopsAtTheCap()
    {
        QFETCH(qsizetype, limit);
        QFETCH(qsizetype, count);
        QFETCH(bool, capped);
        const TempTree tree;
        for (int i = 0; i < 10; ++i)
            tree.file("file" + std::to_string(i));
        const ItemCount expected{ .count = count, .capped = capped };
        QVERIFY(itemCount(tree.path(), limit) == expected);
    }

    void capIsReachedAmongSubfolders()
    {
        const TempTree tree;
        for (int i = 0; i < 10; ++i)
            tree.file("folder" + std::to_string(i) + "/file");
        const ItemCount capped{ .count = 15, .capped = true };
        QVERIFY(itemCount(tree.path(), 15) == capped);
        QVERIFY(itemCount(tree.path(), 21) == ItemCount{ .count = 20 });
    }

    void unreadableFolderIsCountedButNotEntered()
    {
        const TempTree tree;
        tree.file("closed/a");
        tree.file("b");
        tree.permissions("closed", 0);
        QVERIFY(itemCount(tree.path(), cap) == ItemCount{ .count = 2 });
        QVERIFY(itemCount(tree.path("closed"), cap) == ItemCount{});
        tree.permissions("closed", 0700);
    }

    void deepChainIsCountedBeyondThePathLimit()
    {
        const TempTree tree;
        constexpr int depth = 60;
        const std::string name(200, 'd');
        auto folder = ::open(tree.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        for (int i = 0; i < depth; ++i) {
            QCOMPARE(::mkdirat(folder, name.c_str(), 0700), 0);
            const auto next = ::openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
            QVERIFY(next >= 0);
            ::close(folder);
            folder = next;
        }
        ::close(folder);
        QVERIFY(itemCount(tree.path(), cap) == ItemCount{ .count = depth });
    }
};

QUILLBROOK_SUITE(TestPathRemoval, QCoreApplication, giveUpRoot)
#include "tst_PathRemoval.moc"

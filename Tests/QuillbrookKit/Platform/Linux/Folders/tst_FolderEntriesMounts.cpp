// Walking over names where other things are mounted. All mounts are seen by this program alone; where it may
// not have mounts of its own, its tests are skipped with the reason.

#include "Removal/PathRemoval.h"
#include "Support/PrivateMounts.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QCoreApplication>
#include <QTest>

#include <sys/mount.h>

using namespace Quillbrook;
using namespace Quillbrook::PrivateMounts;
using PathRemoval::ItemCount;
using PathRemoval::itemCount;

namespace {

constexpr qsizetype cap = 5000;

QString whyNotPermitted;

} // namespace

class TestFolderEntriesMounts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        if (!whyNotPermitted.isEmpty())
            QSKIP(qPrintable(whyNotPermitted));
    }

    void whatIsMountedIsCountedButNotEntered()
    {
        const TempTree tree;
        tree.folder("folder/mounted");
        tree.file("folder/beside");
        const Mounted mounted("none", tree.path("folder/mounted"), "tmpfs");
        QCOMPARE(mounted.failure(), QString());
        tree.file("folder/mounted/a");
        QVERIFY(itemCount(tree.path("folder"), cap) == ItemCount{ .count = 2 });
    }

    void bindMountIsCountedButNotEntered()
    {
        const TempTree tree;
        tree.file("elsewhere/a");
        tree.folder("folder/mounted");
        const Mounted mounted(tree.path("elsewhere"), tree.path("folder/mounted"), "", MS_BIND);
        QCOMPARE(mounted.failure(), QString());
        QVERIFY(itemCount(tree.path("folder"), cap) == ItemCount{ .count = 1 });
    }

    void mountItselfIsNotEntered()
    {
        const TempTree tree;
        tree.folder("mounted");
        const Mounted mounted("none", tree.path("mounted"), "tmpfs");
        QCOMPARE(mounted.failure(), QString());
        tree.file("mounted/a");
        QVERIFY(itemCount(tree.path("mounted"), cap) == ItemCount{});
    }

    void folderInsideAMountIsCounted()
    {
        const TempTree tree;
        tree.folder("mounted");
        const Mounted mounted("none", tree.path("mounted"), "tmpfs");
        QCOMPARE(mounted.failure(), QString());
        tree.file("mounted/folder/a");
        tree.file("mounted/folder/b/c");
        QVERIFY(itemCount(tree.path("mounted/folder"), cap) == ItemCount{ .count = 3 });
    }
};

QUILLBROOK_SUITE(TestFolderEntriesMounts, QCoreApplication, [] { whyNotPermitted = enter(); })
#include "tst_FolderEntriesMounts.moc"

#include "Platform/Linux/Files/LinuxSpaceReserve.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QTest>

#include <sys/stat.h>

using namespace Quillbrook;

namespace {

struct stat statusOf(const std::string &path)
{
    struct stat status = {};
    return ::lstat(path.c_str(), &status) == 0 ? status : (struct stat){};
}

} // namespace

class TestLinuxSpaceReserve : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsSpaceForTheUserAloneAndGivesItUpOnce()
    {
        const TempTree tree;
        const auto path = tree.path("share/Quillbrook/reserve");
        LinuxSpaceReserve reserve(path);
        QVERIFY(!reserve.release());
        reserve.replenish();
        reserve.replenish();
        const auto kept = statusOf(path);
        QVERIFY(S_ISREG(kept.st_mode));
        QCOMPARE(kept.st_mode & 07777U, 0600U);
        QCOMPARE(qint64{ kept.st_size }, qint64{ LinuxSpaceReserve::bytes });
        QVERIFY(qint64{ kept.st_blocks } * 512 >= LinuxSpaceReserve::bytes);
        QVERIFY(reserve.release());
        QCOMPARE(statusOf(path).st_mode, 0U);
        QVERIFY(!reserve.release());
    }

    void whatHasTakenItsPlaceIsNeitherWaitedForNorGivenUp()
    {
        const TempTree tree;
        tree.pipe("pipe");
        tree.folder("folder");
        tree.fileWith("kept", "kept");
        tree.link("link", tree.path("kept"));
        for (const auto *name : { "pipe", "folder", "link" }) {
            const auto before = statusOf(tree.path(name)).st_mode;
            LinuxSpaceReserve reserve(tree.path(name));
            reserve.replenish();
            QVERIFY(!reserve.release());
            QCOMPARE(statusOf(tree.path(name)).st_mode, before);
        }
        QCOMPARE(qint64{ statusOf(tree.path("kept")).st_size }, qint64{ 4 });
    }
};

QUILLBROOK_SUITE(TestLinuxSpaceReserve, QCoreApplication)
#include "tst_LinuxSpaceReserve.moc"

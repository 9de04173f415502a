// Deleting for good where other things are mounted, with mounts that this program alone sees. Where it may
// not have mounts of its own, its tests are skipped with the reason.

#include "Platform/Linux/Trash/LinuxFileRemoval.h"
#include "Support/PrivateMounts.h"
#include "Support/Suite.h"
#include "Support/TrashFixture.h"

#include <QCoreApplication>
#include <QTest>

#include <sys/mount.h>

using namespace Quillbrook;
using namespace Quillbrook::PrivateMounts;
using namespace Qt::StringLiterals;

namespace {

QString whyNotPermitted;

} // namespace

class TestLinuxFileRemovalMounts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        if (!whyNotPermitted.isEmpty())
            QSKIP(qPrintable(whyNotPermitted));
    }

    void deletingForGoodLeavesMountsAlone_data()
    {
        QTest::addColumn<int>("error");
        QTest::newRow("by the kernel") << 0;
        QTest::newRow("by looking") << ENOSYS;
    }

    void deletingForGoodLeavesMountsAlone()
    {
        QFETCH(int, error);
        TrashFixture f;
        f.home.folder("volume");
        f.home.folder("folder/a/mounted");
        f.home.file("folder/a/file");
        f.home.file("folder/b");
        f.home.fileWith("elsewhere/kept", "kept");
        const Mounted tmpfs("none", f.home.path("volume"), "tmpfs");
        const Mounted bind(f.home.path("elsewhere"), f.home.path("folder/a/mounted"), "", MS_BIND);
        QCOMPARE(tmpfs.failure() + bind.failure(), QString());
        f.calls.before = [&](std::string_view call, const char *) { return call == "openat2" ? error : 0; };
        LinuxFileRemoval removal(f.calls);
        const auto done = removal.remove(f.home.path("folder"));
        QVERIFY(!done);
        QCOMPARE(done.error(), u"\"a/mounted\" could not be deleted. The system is using it."_s);
        QCOMPARE(f.content(f.home.path("elsewhere/kept")), std::string("kept"));
        QCOMPARE(f.names(f.home.path("folder")), std::vector<std::string>{ "a" });
        QCOMPARE(f.names(f.home.path("folder/a")), std::vector<std::string>{ "mounted" });
    }

    void anotherFileSystemIsLeftAloneWhereNoMountIsTold()
    {
        TrashFixture f;
        f.home.folder("folder/drive");
        f.home.file("folder/file");
        const Mounted drive("none", f.home.path("folder/drive"), "tmpfs");
        QCOMPARE(drive.failure(), QString());
        f.home.fileWith("folder/drive/kept", "kept");
        f.calls.hidesMounts = true;
        f.calls.before = [](std::string_view call, const char *) { return call == "openat2" ? ENOSYS : 0; };
        LinuxFileRemoval removal(f.calls);
        const auto done = removal.remove(f.home.path("folder"));
        QVERIFY(!done);
        QCOMPARE(done.error(), u"\"drive\" could not be deleted. The system is using it."_s);
        QCOMPARE(f.content(f.home.path("folder/drive/kept")), std::string("kept"));
        QVERIFY(!f.isThere(f.home.path("folder/file")));
    }

    void deletingForGoodLeavesAMountItselfAlone()
    {
        TrashFixture f;
        f.home.folder("volume");
        const Mounted mounted("none", f.home.path("volume"), "tmpfs");
        QCOMPARE(mounted.failure(), QString());
        f.home.file("volume/kept");
        LinuxFileRemoval removal;
        const auto done = removal.remove(f.home.path("volume"));
        QVERIFY(!done);
        QCOMPARE(done.error(), u"The system is using it."_s);
        QVERIFY(f.isThere(f.home.path("volume/kept")));
    }
};

QUILLBROOK_SUITE(
    TestLinuxFileRemovalMounts, QCoreApplication, [] { whyNotPermitted = PrivateMounts::enter(); })
#include "tst_LinuxFileRemovalMounts.moc"

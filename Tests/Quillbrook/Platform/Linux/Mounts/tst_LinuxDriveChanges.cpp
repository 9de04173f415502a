// Mounts that come and go, which this program alone sees.

#include "Platform/Linux/Mounts/LinuxDriveChanges.h"
#include "Support/PrivateMounts.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QSignalSpy>
#include <QTest>

#include <optional>

using namespace Quillbrook;
using namespace Quillbrook::PrivateMounts;

class TestLinuxDriveChanges : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void changesAreToldOnceEachWhileTheyAreWatched()
    {
        const TempTree tree;
        tree.folder("drive");
        LinuxDriveChanges drives;
        QSignalSpy changed(&drives, &DriveChanges::changed);
        std::optional<Mounted> drive;
        const auto plug = [&] { drive.emplace("none", tree.path("drive"), "tmpfs"); };
        plug();
        drive.reset();
        drives.setWatched(true);
        QTest::qWait(300);
        QCOMPARE(changed.count(), 0);
        plug();
        QTRY_COMPARE(changed.count(), 1);
        drive.reset();
        QTRY_COMPARE(changed.count(), 2);
        drives.setWatched(false);
        plug();
        QTest::qWait(300);
        QCOMPARE(changed.count(), 2);
    }
};

QUILLBROOK_SUITE(TestLinuxDriveChanges, QCoreApplication, [] {
    if (const auto why = enter(); !why.isEmpty())
        qFatal("%s", qPrintable(why));
})
#include "tst_LinuxDriveChanges.moc"

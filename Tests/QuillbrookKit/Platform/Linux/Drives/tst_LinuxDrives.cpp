// Figures, names and file systems of real mounts, which this program alone sees.

#include "Support/Suite.h"
#include "Support/TwoVolumes.h"

#include <QTest>

#include <sys/mount.h>

using namespace Quillbrook;
using namespace Quillbrook::PrivateMounts;
using namespace Qt::StringLiterals;

class TestLinuxDrives : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aVolumeTellsWhatIsFree()
    {
        const TwoVolumes f("size=1m,mode=755");
        const auto facts = f.drives.facts(f.volume());
        QCOMPARE(facts.available, 1'048'576);
        QCOMPARE(facts.availableForImportantUsage, facts.available);
        QCOMPARE(facts.isRemovable, false);
        QCOMPARE(facts.isInternal, std::nullopt);
        QVERIFY(f.drives.facts(f.home.path("nothing")) == DriveFacts());
    }

    void oneFileSystemIsOneByWhicheverMount()
    {
        const TwoVolumes f;
        f.home.folder("bound");
        f.home.folder("folder");
        const Mounted bound(f.home.path("folder"), f.home.path("bound"), nullptr, MS_BIND);
        QCOMPARE(bound.failure(), QString());
        QCOMPARE(f.drives.areOnOneFileSystem(f.home.path(), f.home.path("bound")), true);
        QCOMPARE(f.drives.areOnOneFileSystem(f.home.path(), f.volume()), false);
        QCOMPARE(f.drives.areOnOneFileSystem(f.home.path("nothing"), f.volume()), std::nullopt);
    }

    void aDriveIsCalledAfterItsMount_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QString>("name");
        const auto row = [](const char *path, const char *name) {
            QTest::newRow(path) << QByteArray(path) << QString::fromUtf8(name);
        };
        row("/media/someone/Studio/a/b", "Studio");
        row("/run/media/someone/My Disk", "My Disk");
        row("/media/cdrom", "cdrom");
        row("/mnt/archive/a", "archive");
        row("/nowhere/else", "/nowhere/else");
    }

    void aDriveIsCalledAfterItsMount()
    {
        QFETCH(QByteArray, path);
        const TwoVolumes f;
        QTEST(f.drives.name(path.toStdString()), "name");
        QTEST(f.drives.likelyName(path.toStdString()), "name");
        QCOMPARE(f.drives.name(f.volume()), u"volume"_s);
        QCOMPARE(f.drives.likelyName(f.onVolume("nothing/at all")), u"volume"_s);
        QVERIFY(f.drives.likelyName(f.volume() + "s/a") != u"volume"_s);
    }
};

QUILLBROOK_SUITE(TestLinuxDrives, QCoreApplication, [] {
    if (const auto why = enter(); !why.isEmpty())
        qFatal("%s", qPrintable(why));
})
#include "tst_LinuxDrives.moc"

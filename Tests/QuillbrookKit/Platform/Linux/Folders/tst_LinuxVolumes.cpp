#include "Platform/Linux/Folders/LinuxVolumes.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QTest>

#include <sys/statvfs.h>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestLinuxVolumes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsWhatAnOrdinaryUserCanWrite()
    {
        const TempTree tree;
        tree.folder("caf\xE9");
        const auto folder = tree.path("caf\xE9");
        struct statvfs figures = {};
        QCOMPARE(::statvfs(folder.c_str(), &figures), 0);
        const auto capacity = LinuxVolumes().capacity(folder);
        QVERIFY(capacity);
        const auto blocks = [&](fsblkcnt_t count) { return qint64(count * figures.f_frsize); };
        QCOMPARE(capacity->total, std::optional(blocks(figures.f_blocks)));
        // Others write to the same disk meanwhile, so that the free figures agree only roughly.
        const auto free = double(*capacity->available);
        QVERIFY(qAbs(free - double(blocks(figures.f_bavail))) <= double(*capacity->total) * 0.05);
        QVERIFY(*capacity->available <= *capacity->total);
    }

    void nothingIsPurgeable()
    {
        const TempTree folder;
        const auto capacity = LinuxVolumes().capacity(folder.path());
        QCOMPARE(capacity->availableForImportantUsage, capacity->available);
    }

    void pathNotThereIsAbsent_data()
    {
        QTest::addColumn<QString>("path");
        const TempTree folder;
        QTest::newRow("gone") << folder.text("gone");
        QTest::newRow("empty") << QString();
        QTest::newRow("too long") << u'/' + QString(100'000, u'x');
    }

    void pathNotThereIsAbsent()
    {
        QFETCH(QString, path);
        QVERIFY(!LinuxVolumes().capacity(path.toStdString()));
    }

    void volumeWithoutBlocksHasNoRoom()
    {
        const auto capacity = LinuxVolumes().capacity("/proc");
        QVERIFY(capacity);
        QCOMPARE(capacity->available, std::optional<qint64>(0));
        QCOMPARE(capacity->total, std::optional<qint64>(0));
    }
};

QUILLBROOK_SUITE(TestLinuxVolumes, QCoreApplication)
#include "tst_LinuxVolumes.moc"

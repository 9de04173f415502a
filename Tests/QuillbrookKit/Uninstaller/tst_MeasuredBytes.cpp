#include "Platform/Linux/LinuxDisk.h"
#include "Support/FakeClock.h"
#include "Support/FakeProcessors.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"
#include "Uninstaller/MeasuredBytes.h"

#include <QTest>

using namespace Quillbrook;

class TestMeasuredBytes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void foldersAreScannedAndFilesAreAsLongAsTheyAre_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<qint64>("bytes");
        QTest::newRow("a file") << QByteArray("odd-length") << qint64{ 1234 };
        QTest::newRow("a folder") << QByteArray("folder") << qint64{ 12288 };
        QTest::newRow("a folder whose name is no text") << QByteArray("caf\xE9") << qint64{ 8192 };
        QTest::newRow("nothing") << QByteArray("nothing") << qint64{ 0 };
    }
    void foldersAreScannedAndFilesAreAsLongAsTheyAre()
    {
        QFETCH(QByteArray, name);
        TempTree tree;
        tree.file("odd-length", 1234);
        tree.file("folder/one", 4096);
        tree.file("folder/deep/two", 8192);
        tree.file("caf\xE9/file", 8192);
        FakeClock clock;
        LinuxDisk disk(tree.path("data"), { .homeTrash = tree.path("Trash") }, clock);
        const FakeProcessors processors;
        const auto measure = measureOnDisk(
            { .directories = disk.directories, .files = disk.files, .processors = processors });
        QTEST(measure(tree.path(name.toStdString())), "bytes");
    }
};

QUILLBROOK_SUITE(TestMeasuredBytes, QCoreApplication)
#include "tst_MeasuredBytes.moc"

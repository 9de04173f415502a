#include "MadeUpDirectories.h"
#include "Scan/FastScanner.h"
#include "Support/Suite.h"

#include <QTest>

#include <set>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

FastScanner::Result scanOf(std::uint64_t files, int threads)
{
    Benchmarks::MadeUpDirectories directories(files);
    FastScanner scanner(directories);
    return scanner.scan({ .rootPath = "/made up", .threads = threads });
}

} // namespace

class TestMadeUpDirectories : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aScanFindsAsManyFilesAsAskedFor_data()
    {
        QTest::addColumn<quint64>("files");
        QTest::addColumn<qsizetype>("folders");
        QTest::newRow("none") << quint64(0) << qsizetype(1);
        QTest::newRow("fewer than a folder's") << quint64(5) << qsizetype(1);
        QTest::newRow("not shared out evenly") << quint64(1003) << qsizetype(41);
        QTest::newRow("many") << quint64(100'000) << qsizetype(4166);
    }

    void aScanFindsAsManyFilesAsAskedFor()
    {
        QFETCH(const quint64, files);
        QFETCH(const qsizetype, folders);
        const auto result = scanOf(files, 2);
        QCOMPARE(result.tree->fileCount(), qsizetype(files));
        QCOMPARE(result.tree->dirCount(), folders);
        QCOMPARE(result.unreadableDirectories, qsizetype(0));
    }

    void namesAreUniqueInTheirFolder()
    {
        const auto result = scanOf(2000, 1);
        std::set<std::pair<qint32, std::string_view>> names;
        for (qint32 node = 0; node < result.tree->nodeCount(); ++node)
            names.emplace(result.tree->parent()[static_cast<size_t>(node)], result.tree->rawName(node));
        QCOMPARE(std::ssize(names), result.tree->nodeCount());
    }

    void everyScanFindsTheSame()
    {
        const auto once = scanOf(5000, 1);
        const auto again = scanOf(5000, 3);
        QVERIFY(once.tree->size(once.root) > 0);
        QCOMPARE(once.tree->size(once.root), again.tree->size(again.root));
        QCOMPARE(once.tree->nameArena().size(), again.tree->nameArena().size());
    }
};

QUILLBROOK_SUITE(TestMadeUpDirectories, QCoreApplication)
#include "tst_MadeUpDirectories.moc"

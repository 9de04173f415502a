#include "Platform/Linux/BareWalk.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"
#include "TreeMaker/Names.h"
#include "TreeMaker/Random.h"
#include "TreeMaker/TreeWriter.h"

#include <QTest>

#include <fstream>
#include <map>
#include <string>
#include <sys/stat.h>

using namespace Quillbrook;
using namespace Quillbrook::Benchmarks;
namespace fs = std::filesystem;

namespace {

struct Listed
{
    mode_t mode = 0;
    nlink_t links = 0;
    off_t size = 0;
    blkcnt_t blocks = 0;

    bool operator==(const Listed &) const = default;
};

// Every entry below `tree` by its path, which is raw bytes.
std::map<std::string, Listed> listing(const fs::path &tree)
{
    std::map<std::string, Listed> entries;
    for (const auto &entry : fs::recursive_directory_iterator(tree)) {
        struct stat status = {};
        ::lstat(entry.path().c_str(), &status);
        // How large a folder is depends on the file system's mood.
        const bool isFolder = S_ISDIR(status.st_mode);
        entries[entry.path().lexically_relative(tree).string()] = { .mode = status.st_mode,
            .links = isFolder ? 0 : status.st_nlink,
            .size = isFolder ? 0 : status.st_size,
            .blocks = isFolder ? 0 : status.st_blocks };
    }
    return entries;
}

qsizetype count(const std::map<std::string, Listed> &entries, auto &&wanted)
{
    return std::ranges::count_if(
        entries, [&](const auto &entry) { return wanted(entry.first, entry.second); });
}

void write(const fs::path &path, const std::string &text)
{
    std::ofstream(path) << text;
}

} // namespace

class TestBenchmarkTrees : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void holdsAsManyFilesAsAskedFor_data()
    {
        QTest::addColumn<TreeKind>("kind");
        QTest::addColumn<quint64>("files");
        QTest::addColumn<qsizetype>("folders");
        QTest::newRow("home") << TreeKind::home << quint64(2400) << qsizetype(100);
        QTest::newRow("home without files") << TreeKind::home << quint64(0) << qsizetype(1);
        QTest::newRow("home with one file") << TreeKind::home << quint64(1) << qsizetype(1);
        QTest::newRow("wide") << TreeKind::wide << quint64(500) << qsizetype(0);
        QTest::newRow("deep") << TreeKind::deep << quint64(95) << qsizetype(9);
    }

    void holdsAsManyFilesAsAskedFor()
    {
        QFETCH(const TreeKind, kind);
        QFETCH(const quint64, files);
        QFETCH(const qsizetype, folders);
        const auto entries = listing(make({ .kind = kind, .files = files }, directory()));
        const auto isFolder = [](const std::string &, const Listed &entry) { return S_ISDIR(entry.mode); };
        QCOMPARE(count(entries, isFolder), folders);
        QCOMPARE(std::ssize(entries) - folders, qsizetype(files));
    }

    void theSameSeedMakesTheSameTree()
    {
        const TempTree other;
        const TreeRequest request{ .files = 600, .seed = 7 };
        const auto first = listing(make(request, directory()));
        const auto second = listing(make(request, other.path()));
        QVERIFY(!first.empty());
        QVERIFY(first == second);
    }

    void anotherSeedMakesAnotherTree()
    {
        const auto first = listing(make({ .files = 600, .seed = 8 }, directory()));
        const auto second = listing(make({ .files = 600, .seed = 9 }, directory()));
        QVERIFY(first != second);
    }

    void aHomeTreeHoldsEveryKindOfEntry()
    {
        const auto entries = listing(make({ .files = 2000 }, directory()));
        QVERIFY(count(entries, [](auto &, auto &entry) { return S_ISLNK(entry.mode); }) > 5);
        QVERIFY(
            count(entries, [](auto &, auto &entry) { return S_ISREG(entry.mode) && entry.links > 1; }) > 5);
        QVERIFY(
            count(entries, [](auto &, auto &entry) { return S_ISREG(entry.mode) && entry.size == 0; }) > 400);
        QVERIFY(count(entries, [](auto &, auto &entry) { return entry.size > 0 && entry.blocks == 0; }) > 5);
        QVERIFY(count(entries, [](auto &, auto &entry) { return entry.blocks > 0; }) > 400);
        QVERIFY(count(entries, [](auto &path, auto &) { return path.contains('\n'); }) > 0);
        QVERIFY(count(entries, [](auto &path, auto &) {
            return !QString::fromUtf8(path).toUtf8().toStdString().ends_with(path);
        }) > 0);
    }

    void namesHoldTheSearchedWords()
    {
        Random random(1);
        int rare = 0;
        int common = 0;
        for (std::uint64_t serial = 0; serial < 2 * rareWordEvery; ++serial) {
            const auto name = makeFileName(NameStyle::source, serial, serial, random);
            rare += name.contains(rareWord) ? 1 : 0;
            common += name.contains(commonWord) ? 1 : 0;
        }
        QCOMPARE(rare, 2);
        QVERIFY(common > 4000);
        QVERIFY(common < 12'000);
    }

    void aFinishedTreeIsUsedAgain()
    {
        const TreeRequest request{ .files = 30, .seed = 20 };
        const auto tree = make(request, directory());
        write(tree / "put here later", "");
        QCOMPARE(make(request, directory()), tree);
        QVERIFY(fs::exists(tree / "put here later"));
    }

    void aTreeWithAnotherStampIsNotTaken()
    {
        const TreeRequest request{ .files = 30, .seed = 21 };
        const auto tree = make(request, directory());
        write(tree.string() + ".stamp", "quillbrook benchmark tree of some other making\n");
        QVERIFY(!ensureTree(makePlan(request), directory()));
        QVERIFY(fs::exists(tree));
    }

    void anUnfinishedTreeIsMadeAnew()
    {
        const TreeRequest request{ .files = 30, .seed = 22 };
        const auto tree = make(request, directory());
        fs::rename(tree.string() + ".stamp", tree.string() + ".unfinished");
        write(tree / "left over", "");
        QCOMPARE(make(request, directory()), tree);
        QVERIFY(!fs::exists(tree / "left over"));
        QVERIFY(fs::exists(tree.string() + ".stamp"));
        QVERIFY(!fs::exists(tree.string() + ".unfinished"));
    }

    void aFolderInTheWayIsNotTouched()
    {
        const TreeRequest request{ .files = 30, .seed = 23 };
        const auto tree = directory() / folderName(request);
        fs::create_directory(tree);
        write(tree / "somebody's", "");
        // A file of that ending that this program did not write is no mark.
        write(tree.string() + ".unfinished", "my own notes\n");
        QVERIFY(!ensureTree(makePlan(request), directory()));
        QVERIFY(fs::exists(tree / "somebody's"));
    }

    void removalTakesOnlyMarkedTrees()
    {
        const TempTree own;
        const fs::path place = own.path();
        const auto tree = make({ .files = 30 }, place);
        const auto chain = make({ .kind = TreeKind::deep, .files = 3000 }, place);
        fs::create_directory(place / "holiday");
        write(place / "holiday/picture", "");
        write(place / "holiday.stamp", "sent on Tuesday\n");
        const auto removed = removeTrees(place);
        QVERIFY(removed.has_value());
        QCOMPARE(*removed, 2);
        QVERIFY(!fs::exists(tree));
        QVERIFY(!fs::exists(chain));
        QVERIFY(!fs::exists(tree.string() + ".stamp"));
        QVERIFY(fs::exists(place / "holiday/picture"));
        QVERIFY(fs::exists(place / "holiday.stamp"));
    }

    void theBareWalkSeesEveryEntry_data()
    {
        QTest::addColumn<int>("threads");
        QTest::newRow("one thread") << 1;
        QTest::newRow("two threads") << 2;
        QTest::newRow("more threads than folders") << 200;
    }

    void theBareWalkSeesEveryEntry()
    {
        QFETCH(const int, threads);
        const auto tree = make({ .files = 600, .seed = 30 }, directory());
        struct stat root = {};
        QCOMPARE(::stat(tree.c_str(), &root), 0);
        std::uint64_t blocks = 0;
        std::uint64_t folders = 1;
        std::uint64_t files = 0;
        for (const auto &entry : fs::recursive_directory_iterator(tree)) {
            struct stat status = {};
            ::lstat(entry.path().c_str(), &status);
            blocks += static_cast<std::uint64_t>(status.st_blocks);
            ++(S_ISDIR(status.st_mode) ? folders : files);
        }
        const auto walked = bareWalk(tree.string(), threads);
        QCOMPARE(walked.folders, folders);
        QCOMPARE(walked.files, files);
        QCOMPARE(walked.blocks, blocks);
        QCOMPARE(walked.failures, std::uint64_t(0));
    }

private:
    fs::path make(const TreeRequest &request, const fs::path &directory)
    {
        const auto tree = ensureTree(makePlan(request), directory);
        if (!tree)
            qWarning("%s", tree.error().c_str());
        return tree ? tree->path : fs::path();
    }
    fs::path directory() const { return m_directory.path(); }

    TempTree m_directory;
};

QUILLBROOK_SUITE(TestBenchmarkTrees, QCoreApplication)
#include "tst_BenchmarkTrees.moc"

#include "Catalogue/TreeLookup.h"
#include "RawText.h"
#include "Support/Suite.h"

#include <QTest>

#include <array>
#include <random>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

// Names that are equal to some of the others only by canonical equivalence, or by nothing but their
// beginning.
const std::array<std::string, 13> names{ "a", "b", "ab", ".cache", "\ufeff.cache", "Cache", "cache", "\u00e9",
    "e\u0301", "K", "\u212a", "\xff", "\u30ad\u30e3\u30c3\u30b7\u30e5" };

// A tree in which siblings may share a name, which a disk can't hold but a look-up has to settle.
std::unique_ptr<FileTree> randomTree(std::mt19937 &random, const std::string &root)
{
    auto tree = std::make_unique<FileTree>(256);
    tree->addNode(FileTree::noNode, root, 0, FileTree::Flags::directory);
    while (tree->nodeCount() < 200) {
        const auto parent = static_cast<qint32>(random() % static_cast<size_t>(tree->nodeCount()));
        tree->addNode(parent, names[random() % names.size()], static_cast<qint64>(random() % 50),
            FileTree::Flags::directory);
    }
    tree->rollUp();
    tree->sortChildrenBySize();
    return tree;
}

QString randomPath(std::mt19937 &random, const QString &root)
{
    QString path = random() % 8 == 0 ? u"/else"_s : root;
    for (auto depth = random() % 5; depth > 0; --depth) {
        path += random() % 10 == 0 ? u"//"_s : u"/"_s;
        path += repairedText(names[random() % names.size()]);
    }
    return random() % 10 == 0 ? path + u'/' : path;
}

} // namespace

class TestTreeLookup : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answersWhatFindAnswersForEachPath_data()
    {
        QTest::addColumn<QString>("root");
        QTest::newRow("a home") << u"/home/ann"_s;
        QTest::newRow("the whole disk") << u"/"_s;
        QTest::newRow("a home in another normal form") << u"/home/Jose\u0301"_s;
    }
    void answersWhatFindAnswersForEachPath()
    {
        QFETCH(QString, root);
        std::mt19937 random(20240615);
        qsizetype found = 0;
        for (int round = 0; round < 60; ++round) {
            const auto tree = randomTree(random, root.toStdString());
            std::vector<QString> paths(60);
            for (auto &path : paths)
                path = randomPath(random, root == u"/" ? QString() : root);
            const auto from = random() % 3 == 0 ? static_cast<qint32>(random() % 4) : 0;
            const auto nodes = findAll(*tree, paths, from);
            QCOMPARE(nodes.size(), paths.size());
            for (size_t i = 0; i < paths.size(); ++i) {
                QVERIFY2(nodes[i] == tree->find(paths[i], from), qPrintable(paths[i]));
                found += nodes[i] != FileTree::noNode;
            }
        }
        QVERIFY2(found > 300, "the trees are too sparse to tell anything");
    }

    void invalidStartFindsNothing()
    {
        std::mt19937 random(1);
        const auto tree = randomTree(random, "/home/ann");
        const std::vector<QString> paths{ u"/home/ann"_s, u""_s, u"/"_s };
        for (const qint32 from : { -1, 200, 100000 })
            QCOMPARE(findAll(*tree, paths, from), std::vector<qint32>(3, FileTree::noNode));
    }

    void noPathsGiveNoNodes()
    {
        std::mt19937 random(1);
        QVERIFY(findAll(*randomTree(random, "/home/ann"), {}, 0).empty());
    }
};

QUILLBROOK_SUITE(TestTreeLookup, NoApplication)
#include "tst_TreeLookup.moc"

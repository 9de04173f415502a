#include "Scan/TreeQueries.h"

#include "Fatal.h"
#include "Scan/NameQuery.h"

#include <QTextBoundaryFinder>

#include <algorithm>

namespace Quillbrook::TreeQueries {

namespace {

constexpr int shortestQuery = 2;

struct Candidate
{
    qint32 node;
    qint64 size;
};

void sortLargestFirst(std::vector<Candidate> &candidates)
{
    std::ranges::stable_sort(candidates, std::ranges::greater(), &Candidate::size);
}

QList<NodeSnapshot> snapshots(const FileTree &tree, const std::vector<Candidate> &candidates)
{
    QList<NodeSnapshot> result;
    result.reserve(static_cast<qsizetype>(candidates.size()));
    for (const auto &candidate : candidates)
        result.append(*tree.snapshot(candidate.node));
    return result;
}

} // namespace

QList<NodeSnapshot> largestFiles(const FileTree &tree, qint32 root, qsizetype limit)
{
    qsizetype doubleLimit = 0;
    if (__builtin_mul_overflow(limit, 2, &doubleLimit))
        fatal("more files were asked for than can be counted");
    if (limit <= 0)
        return {};

    const auto flags = tree.flags();
    const auto sizes = tree.totalSize();
    std::vector<Candidate> candidates;
    qint64 threshold = 0;
    const auto keepLargest = [&] {
        sortLargestFirst(candidates);
        if (candidates.size() > static_cast<size_t>(limit))
            candidates.resize(static_cast<size_t>(limit));
    };
    tree.walk(root, [&](qint32 node, qint32) {
        const auto index = static_cast<size_t>(node);
        if (sizes[index] > threshold && !contains(flags[index], FileTree::Flags::directory)) {
            candidates.push_back({ node, sizes[index] });
            if (candidates.size() > static_cast<size_t>(doubleLimit)) {
                keepLargest();
                threshold = candidates.back().size;
            }
        }
        return true;
    });
    keepLargest();
    return snapshots(tree, candidates);
}

bool isLongEnough(const QString &query)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, query);
    int count = 0;
    while (count < shortestQuery && finder.toNextBoundary() != -1)
        ++count;
    return count == shortestQuery;
}

QList<NodeSnapshot> search(const FileTree &tree, qint32 root, const QString &query, qsizetype limit)
{
    if (!isLongEnough(query))
        return {};
    const NameQuery wanted(query);
    const auto marks = wanted.marks(tree.nameArena());
    if (marks.isEmpty())
        return {};
    const auto offsets = tree.nameOffset();
    const auto lengths = tree.nameLength();
    const auto holdsQuery = [&](qint32 node) {
        const auto index = static_cast<size_t>(node);
        return marks.holdsOneOf(static_cast<size_t>(offsets[index]), lengths[index])
            && wanted.isHeldBy(tree.rawName(node));
    };
    std::vector<Candidate> found;
    const auto hasRoom = [&] { return static_cast<qsizetype>(found.size()) < limit; };
    tree.walk(root, [&](qint32 node, qint32) {
        if (hasRoom() && holdsQuery(node))
            found.push_back({ node, tree.size(node) });
        return hasRoom();
    });
    sortLargestFirst(found);
    return snapshots(tree, found);
}

} // namespace Quillbrook::TreeQueries

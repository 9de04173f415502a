#include "Scan/FileTree.h"

#include "Fatal.h"
#include "RawText.h"
#include "Scan/WorkerThread.h"

#include <algorithm>
#include <limits>
#include <memory>

namespace Quillbrook {

namespace {

constexpr size_t longestNameLength = std::numeric_limits<quint16>::max();
constexpr size_t nameBytesPerExpectedNode = 16;
// Below this length moving elements along one by one beats any cleverer stable sort.
constexpr size_t insertionSortLimit = 40;

constexpr size_t at(qint32 node)
{
    return static_cast<size_t>(node);
}

// Below this a further thread costs more than it sorts.
constexpr size_t nodesWorthAThread = 65536;

// A node beside its size, so that sorting touches one small array instead of the whole tree.
struct SizedNode
{
    qint64 size;
    qint32 node;
};

void sortFromLargest(std::span<SizedNode> siblings)
{
    if (siblings.size() > insertionSortLimit) {
        std::ranges::stable_sort(siblings, std::ranges::greater{}, &SizedNode::size);
        return;
    }
    for (size_t i = 1; i < siblings.size(); ++i) {
        const auto moving = siblings[i];
        auto place = i;
        for (; place > 0 && siblings[place - 1].size < moving.size; --place)
            siblings[place] = siblings[place - 1];
        siblings[place] = moving;
    }
}

QString canonical(const QString &text)
{
    return text.normalized(QString::NormalizationForm_C);
}

// One piece of a wanted path, which is composed already. Comparing it with an ASCII name allocates nothing.
struct Piece
{
    explicit Piece(QStringView text)
        : composed(text)
        , utf8(text.toUtf8().toStdString())
    {
    }

    [[nodiscard]] bool equals(std::string_view name) const
    {
        // An ASCII name is its own composed form. Another name may compose to an ASCII text (U+212A to K).
        return name == utf8 || (!isAscii(name) && canonical(repairedText(name)) == composed);
    }

    QStringView composed;
    std::string utf8;
};

} // namespace

size_t qHash(const NodeSnapshot &snapshot, size_t seed) noexcept
{
    return qHashMulti(seed, snapshot.id, snapshot.name, snapshot.path, snapshot.bytes, snapshot.isDirectory);
}

FileTree::FileTree(qsizetype expectedNodes)
{
    const auto count = static_cast<size_t>(std::max<qsizetype>(expectedNodes, 0));
    reserve(count);
    m_nameArena.reserve(count * nameBytesPerExpectedNode);
}

void FileTree::reserve(size_t count)
{
    m_parent.reserve(count);
    m_firstChild.reserve(count);
    m_nextSibling.reserve(count);
    m_ownSize.reserve(count);
    m_totalSize.reserve(count);
    m_nameOffset.reserve(count);
    m_nameLength.reserve(count);
    m_flags.reserve(count);
}

qint32 FileTree::addNode(qint32 parentIndex, std::string_view name, qint64 size, Flags flags)
{
    const Entry entry{ .size = size, .flags = flags };
    return addNodes(parentIndex, std::span(&entry, 1), name);
}

qint32 FileTree::addNodes(qint32 parentIndex, std::span<const Entry> entries, std::string_view names)
{
    const auto count = entries.size();
    if (count == 0)
        return noNode;
    const auto arenaStart = m_nameArena.size();
    if (!hasIndicesFor(m_parent.size() + count, arenaStart + static_cast<size_t>(entries.back().nameStart)))
        fatal("a file tree grew past 2^31 nodes or name bytes");
    if (parentIndex != noNode && !isValid(parentIndex))
        fatal("a node was added below a node that does not exist");
    const auto node = static_cast<qint32>(m_parent.size());
    std::ranges::copy(names, m_nameArena.extend(names.size()));
    std::fill_n(m_parent.extend(count), count, parentIndex);
    std::fill_n(m_firstChild.extend(count), count, noNode);
    linkAtHead(parentIndex, node, count);
    auto *ownSize = m_ownSize.extend(count);
    auto *totalSize = m_totalSize.extend(count);
    auto *nameOffset = m_nameOffset.extend(count);
    auto *nameLength = m_nameLength.extend(count);
    auto *flags = m_flags.extend(count);
    qsizetype directories = 0;
    for (size_t i = 0; i < count; ++i) {
        const auto &entry = entries[i];
        ownSize[i] = entry.size;
        totalSize[i] = entry.size;
        nameOffset[i] = static_cast<qint32>(arenaStart + static_cast<size_t>(entry.nameStart));
        const auto nameEnd = i + 1 < count ? static_cast<size_t>(entries[i + 1].nameStart) : names.size();
        nameLength[i] = static_cast<quint16>(
            std::min(nameEnd - static_cast<size_t>(entry.nameStart), longestNameLength));
        flags[i] = entry.flags;
        directories += contains(entry.flags, Flags::directory) ? 1 : 0;
    }
    m_dirCount += directories;
    m_fileCount += static_cast<qsizetype>(count) - directories;
    return node;
}

void FileTree::linkAtHead(qint32 parentIndex, qint32 node, size_t count)
{
    auto *nextSibling = m_nextSibling.extend(count);
    if (parentIndex == noNode) {
        std::fill_n(nextSibling, count, noNode);
        return;
    }
    auto newest = m_firstChild[at(parentIndex)];
    for (size_t i = 0; i < count; ++i) {
        nextSibling[i] = newest;
        newest = node + static_cast<qint32>(i);
    }
    m_firstChild[at(parentIndex)] = newest;
}

void FileTree::rollUp()
{
    for (auto node = m_parent.size(); node-- > 1;) {
        const auto parent = m_parent[node];
        if (parent == noNode)
            continue;
        auto &sum = m_totalSize[at(parent)];
        if (__builtin_add_overflow(sum, m_totalSize[node], &sum))
            fatal("the sizes of a file tree add up to more than 2^63 bytes");
    }
}

// A node is in one child list only, so that threads with parents of their own never meet.
void FileTree::sortChildrenBySize(int threads)
{
    const auto count = m_firstChild.size();
    const auto parts
        = std::clamp<size_t>(count / nodesWorthAThread, 1, static_cast<size_t>(std::max(threads, 1)));
    std::vector<std::unique_ptr<WorkerThread>> others;
    for (size_t part = 1; part < parts; ++part) {
        const auto work = [=, this] { sortChildrenOf(count * part / parts, count * (part + 1) / parts); };
        others.push_back(std::make_unique<WorkerThread>(work));
        if (!others.back()->hasStarted())
            work();
    }
    sortChildrenOf(0, count / parts);
}

void FileTree::sortChildrenOf(size_t firstNode, size_t pastLastNode)
{
    std::vector<SizedNode> siblings;
    siblings.reserve(256);
    for (auto node = firstNode; node < pastLastNode; ++node) {
        auto &first = m_firstChild[node];
        if (first == noNode || m_nextSibling[at(first)] == noNode)
            continue;
        siblings.clear();
        bool inOrder = true;
        for (auto child = first; child != noNode; child = m_nextSibling[at(child)]) {
            const auto size = m_totalSize[at(child)];
            inOrder = inOrder && (siblings.empty() || siblings.back().size >= size);
            siblings.push_back({ size, child });
        }
        if (inOrder)
            continue;
        sortFromLargest(siblings);
        first = siblings.front().node;
        for (size_t i = 1; i < siblings.size(); ++i)
            m_nextSibling[at(siblings[i - 1].node)] = siblings[i].node;
        m_nextSibling[at(siblings.back().node)] = noNode;
    }
}

void FileTree::setUnreadable(qint32 node)
{
    if (!isValid(node))
        fatal("a node that does not exist was marked unreadable");
    m_flags[at(node)] |= Flags::unreadable;
}

QString FileTree::name(qint32 node) const
{
    return repairedText(rawName(node));
}

std::string_view FileTree::rawName(qint32 node) const
{
    if (!isValid(node))
        return {};
    return { m_nameArena.data() + m_nameOffset[at(node)], m_nameLength[at(node)] };
}

qint64 FileTree::size(qint32 node) const
{
    return isValid(node) ? m_totalSize[at(node)] : 0;
}

FileTree::Flags FileTree::nodeFlags(qint32 node) const
{
    return isValid(node) ? m_flags[at(node)] : Flags::none;
}

bool FileTree::isDirectory(qint32 node) const
{
    return contains(nodeFlags(node), Flags::directory);
}

QList<qint32> FileTree::children(qint32 node) const
{
    QList<qint32> result;
    if (!isValid(node))
        return result;
    for (auto child = m_firstChild[at(node)]; child != noNode; child = m_nextSibling[at(child)])
        result.append(child);
    return result;
}

std::vector<qint32> FileTree::lineage(qint32 node) const
{
    std::vector<qint32> nodes;
    for (; isValid(node); node = m_parent[at(node)])
        nodes.push_back(node);
    std::ranges::reverse(nodes);
    return nodes;
}

QString FileTree::path(qint32 node) const
{
    return repairedText(rawPath(node));
}

std::string FileTree::rawPath(qint32 node) const
{
    const auto nodes = lineage(node);
    if (nodes.empty())
        return {};
    std::string path{ rawName(nodes.front()) };
    if (path == "/" && nodes.size() > 1)
        path.clear();
    for (const auto component : std::span(nodes).subspan(1)) {
        path += '/';
        path += rawName(component);
    }
    return path;
}

qint32 FileTree::find(const QString &path, qint32 from) const
{
    const auto base = canonical(this->path(from));
    const auto wanted = canonical(path);
    if (wanted == base)
        return from;
    const auto prefix = base == u"/" ? base : base + u'/';
    if (!wanted.startsWith(prefix))
        return noNode;
    auto current = from;
    for (const auto text : QStringView(wanted).sliced(prefix.size()).tokenize(u'/', Qt::SkipEmptyParts)) {
        const Piece piece(text);
        auto child = isValid(current) ? m_firstChild[at(current)] : noNode;
        while (child != noNode && !piece.equals(rawName(child)))
            child = m_nextSibling[at(child)];
        if (child == noNode)
            return noNode;
        current = child;
    }
    return current;
}

std::optional<NodeSnapshot> FileTree::snapshot(qint32 node) const
{
    if (!isValid(node))
        return std::nullopt;
    return NodeSnapshot{ .id = node,
        .name = name(node),
        .path = path(node),
        .bytes = size(node),
        .isDirectory = isDirectory(node) };
}

} // namespace Quillbrook

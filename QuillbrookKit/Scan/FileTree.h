#pragma once

// The in-memory result of one scan: every file and folder that the scanner saw, as one node store of parallel
// arrays. A node costs 35 bytes of arrays plus its name and has no object or pointer of its own.
//
// A tree grows while its scan runs, then `rollUp` and `sortChildrenBySize` run once, and from then on it
// never changes. It has no lock: the scanner serialises the writes, and a finished tree may be read by any
// number of threads.
//
// Invariants:
//  1. A node's index is its place in the arrays; nodes are never removed, reordered or reused.
//  2. parent[i] < i for every node with a parent, because a folder is added before what is in it, in whatever
//     order workers deliver folders. `rollUp` depends on it.
//  3. The root has parent -1 and index 0, and its name is the whole absolute path of the scanned folder.
//     `path` depends on it.
//  4. Every other node's name is a single path component.
//  5. -1 means "no such node", in every link and as a result of `find`.

#include "Scan/GrowingArray.h"

#include <QByteArrayView>
#include <QHashFunctions>
#include <QList>
#include <QString>

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Quillbrook {

/// What a screen keeps of one node, without holding the tree. `bytes` is the node's rolled-up size.
struct NodeSnapshot
{
    qint32 id = -1;
    QString name{};
    QString path{};
    qint64 bytes = 0;
    bool isDirectory = false;

    bool operator==(const NodeSnapshot &) const = default;
};

size_t qHash(const NodeSnapshot &snapshot, size_t seed = 0) noexcept;

class FileTree
{
public:
    static constexpr qint32 noNode = -1;

    /// Bits of a node. `mountPoint` also marks what lies on another device while a scan stays on one: it is
    /// listed and never entered. `unreadable` marks a folder that could not be opened, `unmeasured` a file
    /// whose size the system did not tell: it counts as 0.
    enum class Flags : std::uint8_t {
        none = 0,
        directory = 1,
        symlink = 2,
        package = 4,
        mountPoint = 8,
        unreadable = 16,
        unmeasured = 32,
    };

    /// Reserves room for `expectedNodes` nodes and 16 name bytes for each.
    explicit FileTree(qsizetype expectedNodes);
    FileTree(const FileTree &) = delete;
    FileTree &operator=(const FileTree &) = delete;

    /// Adds a node at the head of its parent's child list and returns its index. `parentIndex` is -1 for a
    /// root. `name` is raw bytes as the file system gave them; the stored length is clipped at 65535, the
    /// bytes are not (kept on purpose). Growing past 2^31 nodes or name bytes ends the process.
    qint32 addNode(qint32 parentIndex, std::string_view name, qint64 size, Flags flags);

    /// Whether every node has an index and the last name an offset, which are 32 bits with a sign, once there
    /// are so many nodes and the last name begins there.
    [[nodiscard]] static constexpr bool hasIndicesFor(size_t nodes, size_t lastNameStart)
    {
        constexpr size_t indices = size_t{ 1 } << 31U;
        return nodes <= indices && lastNameStart < indices;
    }

    /// One of the nodes that are added together. Its name begins at `nameStart` of the bytes given along and
    /// ends where the next one's begins, the last one's with them.
    struct Entry
    {
        qint64 size = 0;
        qint32 nameStart = 0;
        Flags flags{};
    };

    /// The same as `addNode` for each entry in turn, at a fraction of the cost: the arrays grow once and are
    /// filled one after the other. Returns the first new node's index, -1 if there is none; the others
    /// follow it in order.
    qint32 addNodes(qint32 parentIndex, std::span<const Entry> entries, std::string_view names);

    /// Adds every node's size to its parent's, once, when all nodes are there. Overflow ends the process.
    void rollUp();

    /// Relinks every child list from the largest `totalSize` to the smallest; equal sizes keep their link
    /// order. Large trees are shared out to up to `threads` threads. REQUIRES: `rollUp` has run.
    void sortChildrenBySize(int threads = 1);

    /// Marks a folder that could not be opened. An invalid index ends the process.
    void setUnreadable(qint32 node);

    [[nodiscard]] bool isValid(qint32 node) const { return node >= 0 && node < nodeCount(); }
    [[nodiscard]] qsizetype nodeCount() const { return static_cast<qsizetype>(m_parent.size()); }
    /// Nodes added without the `directory` flag, and with it (the root included).
    [[nodiscard]] qsizetype fileCount() const { return m_fileCount; }
    [[nodiscard]] qsizetype dirCount() const { return m_dirCount; }

    /// The raw arrays, one element a node; `nameArena` holds all names back to back without terminators.
    [[nodiscard]] std::span<const qint32> parent() const { return m_parent; }
    [[nodiscard]] std::span<const qint32> firstChild() const { return m_firstChild; }
    [[nodiscard]] std::span<const qint32> nextSibling() const { return m_nextSibling; }
    [[nodiscard]] std::span<const qint64> ownSize() const { return m_ownSize; }
    [[nodiscard]] std::span<const qint64> totalSize() const { return m_totalSize; }
    [[nodiscard]] std::span<const qint32> nameOffset() const { return m_nameOffset; }
    [[nodiscard]] std::span<const quint16> nameLength() const { return m_nameLength; }
    [[nodiscard]] std::span<const Flags> flags() const { return m_flags; }
    [[nodiscard]] std::span<const char> nameArena() const { return m_nameArena; }

    /// A node's name with invalid UTF-8 repaired, for reading; empty for an invalid index.
    [[nodiscard]] QString name(qint32 node) const;
    /// The name's bytes as the file system gave them; valid as long as the tree. Empty for an invalid index.
    [[nodiscard]] std::string_view rawName(qint32 node) const;
    /// Rolled-up bytes; 0 for an invalid index.
    [[nodiscard]] qint64 size(qint32 node) const;
    [[nodiscard]] Flags nodeFlags(qint32 node) const;
    [[nodiscard]] bool isDirectory(qint32 node) const;
    /// The child list in link order; empty for an invalid index.
    [[nodiscard]] QList<qint32> children(qint32 node) const;
    /// The absolute path, repaired for reading; empty for an invalid index.
    [[nodiscard]] QString path(qint32 node) const;
    /// The absolute path in raw bytes, for system calls; empty for an invalid index.
    [[nodiscard]] std::string rawPath(qint32 node) const;

    /// The node with this absolute path at or below `from`, or -1. Doubled and trailing slashes have no
    /// effect; texts compare by Unicode canonical equivalence. Linear in the siblings of each level.
    [[nodiscard]] qint32 find(const QString &path, qint32 from) const;

    /// Depth-first walk without recursion. The visitor takes a node and its depth below `from` (0 for `from`)
    /// and returns whether to go into its children. Siblings come last to first in link order, and a subtree
    /// is finished before the next sibling. An invalid start calls nothing.
    template <typename Visitor>
    void walk(qint32 from, Visitor &&visitor) const;

    /// Copy of one node for the screens; absent for an invalid index.
    [[nodiscard]] std::optional<NodeSnapshot> snapshot(qint32 node) const;

private:
    void reserve(size_t count);
    void sortChildrenOf(size_t firstNode, size_t pastLastNode);
    void linkAtHead(qint32 parentIndex, qint32 node, size_t count);
    std::vector<qint32> lineage(qint32 node) const;

    GrowingArray<qint32> m_parent;
    GrowingArray<qint32> m_firstChild;
    GrowingArray<qint32> m_nextSibling;
    GrowingArray<qint64> m_ownSize;
    GrowingArray<qint64> m_totalSize;
    GrowingArray<qint32> m_nameOffset;
    GrowingArray<quint16> m_nameLength;
    GrowingArray<Flags> m_flags;
    GrowingArray<char> m_nameArena;
    qsizetype m_fileCount = 0;
    qsizetype m_dirCount = 0;
};

constexpr FileTree::Flags operator|(FileTree::Flags a, FileTree::Flags b)
{
    return static_cast<FileTree::Flags>(static_cast<std::uint8_t>(a) | static_cast<std::uint8_t>(b));
}

constexpr FileTree::Flags &operator|=(FileTree::Flags &a, FileTree::Flags b)
{
    return a = a | b;
}

/// Whether all bits of `wanted` are set in `flags`.
constexpr bool contains(FileTree::Flags flags, FileTree::Flags wanted)
{
    return (static_cast<std::uint8_t>(flags) & static_cast<std::uint8_t>(wanted))
        == static_cast<std::uint8_t>(wanted);
}

template <typename Visitor>
void FileTree::walk(qint32 from, Visitor &&visitor) const
{
    if (!isValid(from))
        return;
    struct Pending
    {
        qint32 node;
        qint32 depth;
    };
    std::vector<Pending> stack{ { from, 0 } };
    while (!stack.empty()) {
        const auto [node, depth] = stack.back();
        stack.pop_back();
        if (!visitor(node, depth))
            continue;
        for (auto child = m_firstChild[static_cast<size_t>(node)]; child != noNode;
             child = m_nextSibling[static_cast<size_t>(child)])
            stack.push_back({ child, depth + 1 });
    }
}

} // namespace Quillbrook

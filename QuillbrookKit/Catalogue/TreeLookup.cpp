#include "Catalogue/TreeLookup.h"

#include "RawText.h"

#include <algorithm>
#include <bitset>
#include <string>
#include <unordered_map>

namespace Quillbrook {

namespace {

QString canonical(const QString &text)
{
    return text.normalized(QString::NormalizationForm_C);
}

struct NameHash
{
    using is_transparent = void;
    size_t operator()(std::string_view name) const { return std::hash<std::string_view>()(name); }
};

// One folder on the way to some of the wanted paths. `children` are keyed by composed UTF-8, so that names
// which are canonically equivalent are the same key.
struct Step
{
    std::unordered_map<std::string, size_t, NameHash, std::equal_to<>> children{};
    std::bitset<256> lengths{};
    std::vector<size_t> wantedHere{};
};

class Lookup
{
public:
    explicit Lookup(const FileTree &tree)
        : m_tree(tree)
        , m_steps(1)
    {
    }

    void want(QStringView relativePath, size_t index)
    {
        size_t step = 0;
        for (const auto piece : relativePath.tokenize(u'/', Qt::SkipEmptyParts))
            step = childStep(step, piece.toUtf8().toStdString());
        m_steps[step].wantedHere.push_back(index);
    }

    void resolve(qint32 from, std::vector<qint32> &nodes) const
    {
        struct Pending
        {
            size_t step;
            qint32 node;
        };
        std::vector<Pending> pending{ { 0, from } };
        while (!pending.empty()) {
            const auto [index, node] = pending.back();
            pending.pop_back();
            const auto &step = m_steps[index];
            for (const auto wanted : step.wantedHere)
                nodes[wanted] = node;
            std::vector<size_t> found;
            for (auto child = m_tree.firstChild()[static_cast<size_t>(node)];
                 child != FileTree::noNode && found.size() < step.children.size();
                 child = m_tree.nextSibling()[static_cast<size_t>(child)]) {
                const auto next = match(step, m_tree.rawName(child));
                // Of siblings that differ only in normal form, the first is the one.
                if (next == 0 || std::ranges::find(found, next) != found.end())
                    continue;
                found.push_back(next);
                pending.push_back({ next, child });
            }
        }
    }

private:
    size_t childStep(size_t parent, std::string name)
    {
        auto &known = m_steps[parent];
        known.lengths.set(std::min<size_t>(name.size(), 255));
        const auto [place, isNew] = known.children.try_emplace(std::move(name), m_steps.size());
        const auto child = place->second;
        if (isNew)
            m_steps.emplace_back();
        return child;
    }

    // The step that a child's name leads to; 0, which is nobody's child, for none.
    static size_t match(const Step &step, std::string_view name)
    {
        if (isAscii(name)) {
            if (!step.lengths.test(std::min<size_t>(name.size(), 255)))
                return 0;
            const auto place = step.children.find(name);
            return place == step.children.end() ? 0 : place->second;
        }
        const auto text = canonical(repairedText(name)).toStdString();
        const auto place = step.children.find(text);
        return place == step.children.end() ? 0 : place->second;
    }

    const FileTree &m_tree;
    std::vector<Step> m_steps;
};

} // namespace

std::vector<qint32> findAll(const FileTree &tree, std::span<const QString> paths, qint32 from)
{
    std::vector<qint32> nodes(paths.size(), FileTree::noNode);
    if (!tree.isValid(from))
        return nodes;
    const auto base = canonical(tree.path(from));
    const auto prefix = base == u"/" ? base : base + u'/';
    Lookup lookup(tree);
    for (size_t index = 0; index < paths.size(); ++index) {
        const auto wanted = canonical(paths[index]);
        if (wanted == base)
            lookup.want({}, index);
        else if (wanted.startsWith(prefix))
            lookup.want(QStringView(wanted).sliced(prefix.size()), index);
    }
    lookup.resolve(from, nodes);
    return nodes;
}

} // namespace Quillbrook

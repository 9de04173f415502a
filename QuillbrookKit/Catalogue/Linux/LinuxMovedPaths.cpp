#include "Catalogue/Linux/LinuxMovedPaths.h"

#include "StandardisedPath.h"

#include <algorithm>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

bool meet(const QString &a, const QString &b)
{
    return isAtOrBelow(a, b) || isAtOrBelow(b, a);
}

// Where a base really is, relative to home; absent outside of it. The home folder itself is no base: what the
// user keeps there would be taken for a program's.
std::optional<QString> belowHome(
    const std::optional<QString> &told, const QString &usual, const QString &home)
{
    if (!told)
        return usual;
    return told->startsWith(home + u'/') ? std::optional(told->sliced(home.size() + 1)) : std::nullopt;
}

} // namespace

LinuxMovedPaths::LinuxMovedPaths(const LinuxBaseFolders &bases, const QString &home)
    : m_bases{ { { u".cache"_s, belowHome(bases.cache, u".cache"_s, home) },
        { u".config"_s, belowHome(bases.config, u".config"_s, home) },
        { u".local/share"_s, belowHome(bases.data, u".local/share"_s, home) },
        { u".local/state"_s, belowHome(bases.state, u".local/state"_s, home) } } }
{
    const auto told = m_bases;
    for (auto &base : m_bases) {
        if (!base.actual || *base.actual == base.usual)
            continue;
        const auto clashes = [&base](const Base &other) {
            return other.usual != base.usual && other.actual && meet(*other.actual, *base.actual);
        };
        if (std::ranges::any_of(told, clashes))
            base.actual.reset();
    }
}

void LinuxMovedPaths::keepClearOf(const QString &place)
{
    if (std::ranges::any_of(m_bases, [&place](const Base &base) { return isAtOrBelow(place, base.usual); }))
        return;
    for (auto &base : m_bases)
        if (base.actual && *base.actual != base.usual && meet(place, *base.actual))
            base.actual.reset();
}

std::optional<QString> LinuxMovedPaths::of(const QString &path) const
{
    for (const auto &[usual, actual] : m_bases)
        if (isAtOrBelow(path, usual))
            return actual ? std::optional(*actual + path.sliced(usual.size())) : std::nullopt;
    return path;
}

QStringList LinuxMovedPaths::moved() const
{
    QStringList paths;
    for (const auto &[usual, actual] : m_bases)
        if (actual && *actual != usual)
            paths.append(*actual);
    return paths;
}

} // namespace Quillbrook

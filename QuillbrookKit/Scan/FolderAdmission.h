#pragma once

// Which folders a scan may enter, by the two lists it was given. Texts compare by Unicode canonical
// equivalence, the raw names of the disk in their repaired form. Read-only after construction, so that all
// workers may ask at once. Asking allocates nothing for names that are ASCII.

#include <QHash>
#include <QSet>
#include <QString>

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace Quillbrook {

/// Texts that raw bytes can be looked up in.
class CanonicalTextSet
{
public:
    CanonicalTextSet() = default;
    explicit CanonicalTextSet(const QSet<QString> &texts);

    [[nodiscard]] bool contains(std::string_view raw) const;
    [[nodiscard]] bool isEmpty() const { return m_texts.empty(); }

    struct Hash
    {
        using is_transparent = void;
        size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
    };

private:
    std::unordered_set<std::string, Hash, std::equal_to<>> m_texts;
    size_t m_longest = 0;
};

class FolderAdmission
{
public:
    FolderAdmission() = default;
    /// `exclusions` are absolute paths that are not entered. `allowlist` maps a parent's absolute path to the
    /// names that may be entered there; a parent that is not a key is unrestricted.
    FolderAdmission(const QSet<QString> &exclusions, const QHash<QString, QSet<QString>> &allowlist);

    /// The names that may be entered in the folder at `path`, or null where any may.
    [[nodiscard]] const CanonicalTextSet *namesAllowedIn(std::string_view path) const;
    [[nodiscard]] bool isExcluded(std::string_view path) const;

private:
    CanonicalTextSet m_exclusions;
    std::unordered_map<std::string, CanonicalTextSet, CanonicalTextSet::Hash, std::equal_to<>> m_allowlist;
    size_t m_longestParent = 0;
};

} // namespace Quillbrook

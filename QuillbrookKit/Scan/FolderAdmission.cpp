#include "Scan/FolderAdmission.h"

#include "RawText.h"

#include <algorithm>

namespace Quillbrook {

namespace {

// Equal for two texts exactly when they are canonically equivalent; an ASCII text is its own canonical form.
std::string canonicalBytes(const QString &text)
{
    return text.normalized(QString::NormalizationForm_C).toStdString();
}

std::string canonicalBytes(std::string_view raw)
{
    return canonicalBytes(repairedText(raw));
}

// Decomposing takes a text to at most three times its bytes, so that what is far longer than every listed
// text equals none of them. This keeps very long paths cheap.
bool isFarLonger(std::string_view raw, size_t longest)
{
    constexpr size_t mostGrowth = 4;
    return raw.size() > longest * mostGrowth;
}

} // namespace

CanonicalTextSet::CanonicalTextSet(const QSet<QString> &texts)
{
    for (const auto &text : texts)
        m_longest = std::max(m_longest, m_texts.insert(canonicalBytes(text)).first->size());
}

bool CanonicalTextSet::contains(std::string_view raw) const
{
    if (isFarLonger(raw, m_longest))
        return false;
    return isAscii(raw) ? m_texts.contains(raw) : m_texts.contains(canonicalBytes(raw));
}

FolderAdmission::FolderAdmission(
    const QSet<QString> &exclusions, const QHash<QString, QSet<QString>> &allowlist)
    : m_exclusions(exclusions)
{
    for (auto entry = allowlist.cbegin(); entry != allowlist.cend(); ++entry) {
        const auto parent = canonicalBytes(entry.key());
        m_longestParent = std::max(m_longestParent, parent.size());
        m_allowlist.insert_or_assign(parent, CanonicalTextSet(entry.value()));
    }
}

const CanonicalTextSet *FolderAdmission::namesAllowedIn(std::string_view path) const
{
    if (isFarLonger(path, m_longestParent))
        return nullptr;
    const auto found = isAscii(path) ? m_allowlist.find(path) : m_allowlist.find(canonicalBytes(path));
    return found == m_allowlist.end() ? nullptr : &found->second;
}

bool FolderAdmission::isExcluded(std::string_view path) const
{
    return m_exclusions.contains(path);
}

} // namespace Quillbrook

#include "Scan/FolderAdmission.h"

#include <algorithm>

namespace Quillbrook {

namespace {

bool isAscii(std::string_view bytes)
{
    return std::ranges::none_of(bytes, [](char byte) { return static_cast<unsigned char>(byte) >= 0x80; });
}

// Equal for two texts exactly when they are canonically equivalent; an ASCII text is its own canonical form.
std::string canonicalBytes(const QString &text)
{
    return text.normalized(QString::NormalizationForm_C).toStdString();
}

std::string canonicalBytes(std::string_view raw)
{
    return canonicalBytes(QString::fromUtf8(raw.data(), static_cast<qsizetype>(raw.size())));
}

} // namespace

CanonicalTextSet::CanonicalTextSet(const QSet<QString> &texts)
{
    for (const auto &text : texts)
        m_texts.insert(canonicalBytes(text));
}

bool CanonicalTextSet::contains(std::string_view raw) const
{
    if (m_texts.empty())
        return false;
    return isAscii(raw) ? m_texts.contains(raw) : m_texts.contains(canonicalBytes(raw));
}

FolderAdmission::FolderAdmission(
    const QSet<QString> &exclusions, const QHash<QString, QSet<QString>> &allowlist)
    : m_exclusions(exclusions)
{
    for (auto entry = allowlist.cbegin(); entry != allowlist.cend(); ++entry)
        m_allowlist.insert_or_assign(canonicalBytes(entry.key()), CanonicalTextSet(entry.value()));
}

const CanonicalTextSet *FolderAdmission::namesAllowedIn(std::string_view path) const
{
    if (m_allowlist.empty())
        return nullptr;
    const auto found = isAscii(path) ? m_allowlist.find(path) : m_allowlist.find(canonicalBytes(path));
    return found == m_allowlist.end() ? nullptr : &found->second;
}

bool FolderAdmission::isExcluded(std::string_view path) const
{
    return m_exclusions.contains(path);
}

} // namespace Quillbrook

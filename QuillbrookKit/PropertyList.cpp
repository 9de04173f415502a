#include "PropertyList.h"

#include "PropertyListBounds.h"

#include <cstdlib>
#include <plist/plist.h>

namespace Quillbrook {

void PropertyList::Release::operator()(void *root) const
{
    plist_free(root);
}

PropertyList::PropertyList(void *root)
    : m_root(root)
{
}

std::optional<PropertyList> PropertyList::dictionary(const QByteArray &data)
{
    if (data.isEmpty() || data.size() > maximumBytes || !isWithinPropertyListBounds(data))
        return std::nullopt;
    plist_t root = nullptr;
    plist_from_memory(data.constData(), static_cast<uint32_t>(data.size()), &root);
    if (!root)
        return std::nullopt;
    PropertyList list(root);
    if (plist_get_node_type(root) != PLIST_DICT)
        return std::nullopt;
    return list;
}

std::optional<QString> PropertyList::text(const char *key) const
{
    auto *const node = plist_dict_get_item(m_root.get(), key);
    if (!node || plist_get_node_type(node) != PLIST_STRING)
        return std::nullopt;
    // Not plist_get_string_val: that ends the process at a text with a zero byte in it.
    uint64_t length = 0;
    const auto *bytes = plist_get_string_ptr(node, &length);
    if (!bytes)
        return std::nullopt;
    return QString::fromUtf8(bytes, static_cast<qsizetype>(length));
}

} // namespace Quillbrook

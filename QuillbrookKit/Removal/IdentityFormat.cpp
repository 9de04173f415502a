#include "Removal/IdentityFormat.h"

namespace Quillbrook::IdentityFormat {

using namespace JsonValues;

Json encodeOne(const ThingIdentity &identity)
{
    Json json;
    if (identity.born != 0) {
        json["inode"] = identity.inode;
        json["born"] = identity.born;
    }
    json["note"] = identity.note;
    if (identity.mode)
        json["mode"] = *identity.mode;
    return json;
}

std::optional<ThingIdentity> decodeOne(const Json &json)
{
    const auto *inode = member(json, "inode");
    const auto *born = member(json, "born");
    const auto note = text(json, "note");
    const auto mode = wholeNumber(json, "mode");
    constexpr qint64 modeBits = 07777;
    const auto lent = mode && *mode >= 0 && *mode <= modeBits ? std::optional(static_cast<unsigned>(*mode))
                                                              : std::nullopt;
    if (inode != nullptr && born != nullptr && inode->is_number_unsigned() && born->is_number_integer())
        return ThingIdentity{ .inode = inode->get<std::uint64_t>(),
            .born = born->get<qint64>(),
            .note = note.value_or(std::string()),
            .mode = lent };
    return note ? std::optional(ThingIdentity{ .note = *note, .mode = lent }) : std::nullopt;
}

// Each id is written as it comes: an object in the order of its insertion would compare it with all before
// it, and takes a hundred times as long for ten times as many.
QByteArray encode(const std::vector<TrashedItem> &items)
{
    std::string text;
    for (const auto &item : items)
        if (item.identity)
            text += (text.empty() ? "" : ",") + Json(item.id.toStdString()).dump() + ':'
                + encodeOne(*item.identity).dump();
    return QByteArray::fromStdString('{' + text + '}');
}

// Into an object sorted by its names, for the same reason.
QHash<QString, ThingIdentity> decode(QByteArrayView json)
{
    QHash<QString, ThingIdentity> identities;
    const auto parsed = nlohmann::json::parse(json.begin(), json.end(), nullptr, false);
    if (!parsed.is_object())
        return identities;
    for (const auto &[id, value] : parsed.items())
        if (const auto identity = decodeOne(Json(value)))
            identities.insert(QString::fromStdString(id), *identity);
    return identities;
}

} // namespace Quillbrook::IdentityFormat

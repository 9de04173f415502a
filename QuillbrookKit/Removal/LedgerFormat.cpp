#include "Removal/LedgerFormat.h"

#include <QUtf8StringView>

#include <algorithm>
#include <array>
#include <cmath>

namespace Quillbrook::LedgerFormat {

using namespace JsonValues;

namespace {

// 2001-01-01 00:00:00 UTC, after 1970.
constexpr qint64 referenceMilliseconds = qint64{ 978'307'200 } * 1000;
// Far beyond any date that means something, well within what a QDateTime holds, and exact as a double.
constexpr double furthestMilliseconds = 8.64e15;

struct PathKeys
{
    const char *text;
    const char *bytes;
    std::string TrashedItem::*path;
};

constexpr std::array<PathKeys, 2> pathKeys{ {
    { "originalPath", "originalPathBytes", &TrashedItem::originalPath },
    { "trashPath", "trashPathBytes", &TrashedItem::trashPath },
} };

std::string repaired(const std::string &bytes)
{
    return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size())).toStdString();
}

bool isText(const std::string &bytes)
{
    return QUtf8StringView(bytes.data(), static_cast<qsizetype>(bytes.size())).isValidUtf8();
}

Json seconds(const QDateTime &moment)
{
    const auto milliseconds = moment.toMSecsSinceEpoch() - referenceMilliseconds;
    if (milliseconds % 1000 == 0)
        return milliseconds / 1000;
    return static_cast<double>(milliseconds) / 1000;
}

QDateTime moment(double seconds)
{
    const auto milliseconds
        = std::llround(std::clamp(seconds * 1000, -furthestMilliseconds, furthestMilliseconds));
    return QDateTime::fromMSecsSinceEpoch(milliseconds + referenceMilliseconds, Qt::UTC);
}

// The bytes count only where they are those of the text beside them; else somebody has changed the text, and
// means it.
std::optional<std::string> path(const Json &row, const PathKeys &keys)
{
    auto readable = text(row, keys.text);
    const auto encoded = text(row, keys.bytes);
    if (!readable || !encoded)
        return readable;
    const auto decoded = QByteArray::fromBase64Encoding(
        QByteArray::fromStdString(*encoded), QByteArray::AbortOnBase64DecodingErrors);
    const auto bytes = decoded ? (*decoded).toStdString() : std::string();
    return repaired(bytes) == *readable ? bytes : *readable;
}

} // namespace

Json encodeRow(const TrashedItem &item)
{
    Json row;
    row["id"] = item.id.toStdString();
    row["label"] = item.label.toStdString();
    for (const auto &keys : pathKeys) {
        const auto &path = item.*keys.path;
        row[keys.text] = isText(path) ? path : repaired(path);
        if (!isText(path))
            row[keys.bytes] = QByteArray::fromStdString(path).toBase64().toStdString();
    }
    row["bytes"] = item.bytes;
    row["movedAt"] = seconds(item.movedAt);
    if (item.byRule)
        row["byRule"] = *item.byRule;
    return row;
}

std::optional<TrashedItem> decodeRow(const Json &row)
{
    if (!row.is_object())
        return std::nullopt;
    const auto id = text(row, "id");
    const auto label = text(row, "label");
    const auto bytes = wholeNumber(row, "bytes");
    const auto movedAt = number(row, "movedAt");
    const auto *byRule = member(row, "byRule");
    if (!id || !label || !bytes || !movedAt)
        return std::nullopt;
    TrashedItem item{ .id = QString::fromStdString(*id),
        .label = QString::fromStdString(*label),
        .bytes = *bytes,
        .movedAt = moment(*movedAt) };
    for (const auto &keys : pathKeys) {
        const auto read = path(row, keys);
        if (!read)
            return std::nullopt;
        item.*keys.path = *read;
    }
    if (byRule != nullptr && !byRule->is_null()) {
        item.byRule = boolean(row, "byRule");
        if (!item.byRule)
            return std::nullopt;
    }
    return item;
}

QByteArray encode(const std::vector<TrashedItem> &items)
{
    auto rows = Json::array();
    for (const auto &item : items)
        rows.push_back(encodeRow(item));
    // A slash stands nowhere but in texts, where it means the same with a backslash before it.
    return QByteArray::fromStdString(rows.dump()).replace('/', "\\/");
}

std::optional<std::vector<TrashedItem>> decode(QByteArrayView json)
{
    const auto rows = Json::parse(json.begin(), json.end(), nullptr, false);
    if (!rows.is_array())
        return std::nullopt;
    std::vector<TrashedItem> items;
    items.reserve(rows.size());
    for (const auto &row : rows) {
        auto read = decodeRow(row);
        if (!read)
            return std::nullopt;
        items.push_back(*std::move(read));
    }
    return items;
}

} // namespace Quillbrook::LedgerFormat

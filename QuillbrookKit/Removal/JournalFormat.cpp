#include "Removal/JournalFormat.h"

#include "JsonValues.h"
#include "Removal/IdentityFormat.h"
#include "Removal/LedgerFormat.h"

#include <algorithm>

namespace Quillbrook::JournalFormat {

using namespace JsonValues;

namespace {

QByteArray line(const Json &json)
{
    return QByteArray::fromStdString(json.dump()) + '\n';
}

std::optional<JournalUnit> unit(const Json &json)
{
    const auto title = text(json, "title");
    const auto bytes = wholeNumber(json, "bytes");
    const auto planned = wholeNumber(json, "planned");
    if (!title || !bytes || !planned)
        return std::nullopt;
    return JournalUnit{ .title = QString::fromStdString(*title),
        .bytes = *bytes,
        .planned = std::max<qint64>(*planned, 1),
        .byRule = boolean(json, "byRule").value_or(false) };
}

// What the thing is known by stands beside its row.
std::optional<TrashedItem> readRow(const Json &row, const Json &beside)
{
    auto item = LedgerFormat::decodeRow(row);
    const auto identity = IdentityFormat::decodeOne(beside);
    if (!item || !identity)
        return std::nullopt;
    item->identity = identity;
    return item;
}

QByteArray rowLine(const char *key, const TrashedItem &item)
{
    auto json = IdentityFormat::encodeOne(item.identity.value_or(ThingIdentity()));
    json[key] = LedgerFormat::encodeRow(item);
    return line(json);
}

// Where the line of its finding can't be understood, what it names is not lost with that.
void readMove(std::vector<JournalUnit> &units, const Json &row, const Json &beside)
{
    auto item = readRow(row, beside);
    if (!item)
        return;
    if (units.empty() || units.back().state == JournalUnit::State::whole)
        units.push_back({ .title = item->label });
    units.back().moves.push_back(*std::move(item));
}

void readEnd(JournalUnit &unit, const Json &json)
{
    if (text(json, "failed")) {
        unit.state = JournalUnit::State::failed;
    } else if (boolean(json, "whole").value_or(false) && unit.state == JournalUnit::State::open) {
        unit.state = JournalUnit::State::whole;
    }
}

void readLine(Content &content, const Json &json)
{
    if (!json.is_object())
        return;
    if (const auto total = wholeNumber(json, "batch")) {
        content.total = content.total.value_or(*total);
    } else if (const auto *begun = member(json, "begin")) {
        if (auto read = unit(*begun))
            content.units.push_back(*std::move(read));
    } else if (const auto *moved = member(json, "move")) {
        readMove(content.units, *moved, json);
    } else if (const auto *left = member(json, "leave")) {
        if (auto item = readRow(*left, json))
            content.leaving.push_back(*std::move(item));
    } else if (!content.units.empty()) {
        readEnd(content.units.back(), json);
    }
}

} // namespace

QByteArray batch(qint64 total)
{
    return '\n' + line({ { "batch", total } });
}

QByteArray begin(const JournalUnit &unit)
{
    Json json{ { "title", unit.title.toStdString() }, { "bytes", unit.bytes }, { "planned", unit.planned } };
    if (unit.byRule)
        json["byRule"] = true;
    return '\n' + line({ { "begin", std::move(json) } });
}

QByteArray move(const TrashedItem &item)
{
    return rowLine("move", item);
}

QByteArray leave(const TrashedItem &item)
{
    return rowLine("leave", item);
}

QByteArray failed(const QString &id)
{
    return line({ { "failed", id.toStdString() } });
}

QByteArray whole()
{
    return line({ { "whole", true } });
}

QByteArray encode(const std::vector<JournalUnit> &units)
{
    QByteArray lines;
    for (const auto &unit : units) {
        lines += begin(unit);
        for (const auto &item : unit.moves)
            lines += move(item);
        if (unit.state != JournalUnit::State::open)
            lines += unit.state == JournalUnit::State::whole ? whole() : failed({});
    }
    return lines;
}

Content decode(QByteArrayView lines)
{
    Content content;
    while (!lines.isEmpty()) {
        const auto end = lines.indexOf('\n');
        const auto length = end < 0 ? lines.size() : end;
        const auto one = lines.first(length);
        if (!one.isEmpty())
            readLine(content, Json::parse(one.begin(), one.end(), nullptr, false));
        lines = lines.sliced(std::min(length + 1, lines.size()));
    }
    return content;
}

} // namespace Quillbrook::JournalFormat

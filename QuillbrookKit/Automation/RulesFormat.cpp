#include "Automation/RulesFormat.h"

#include "JsonValues.h"

#include <QUuid>

#include <algorithm>
#include <cmath>

namespace Quillbrook::RulesFormat {

using namespace JsonValues;

namespace {

// 2001-01-01 00:00:00 UTC, after 1970.
constexpr qint64 referenceMilliseconds = qint64{ 978'307'200 } * 1000;
// Far beyond any date that means something, well within what a QDateTime holds, and exact as a double.
constexpr double furthestMilliseconds = 8.64e15;
// Whole numbers up to here are exact as doubles.
constexpr double mostWhole = 9007199254740992.0;

Json numberJson(double number)
{
    if (std::trunc(number) == number && std::abs(number) <= mostWhole)
        return static_cast<qint64>(number);
    return number;
}

Json seconds(const QDateTime &moment)
{
    return numberJson(static_cast<double>(moment.toMSecsSinceEpoch() - referenceMilliseconds) / 1000);
}

QDateTime moment(double seconds)
{
    const auto milliseconds
        = std::llround(std::clamp(seconds * 1000, -furthestMilliseconds, furthestMilliseconds));
    return QDateTime::fromMSecsSinceEpoch(milliseconds + referenceMilliseconds, Qt::UTC);
}

// In capitals, whichever way it is written.
std::optional<QString> uuid(const Json &row)
{
    constexpr qsizetype length = 36;
    const auto text = QString::fromStdString(JsonValues::text(row, "id").value_or(std::string()));
    if (text.size() != length || QUuid::fromString(text).toString(QUuid::WithoutBraces) != text.toLower())
        return std::nullopt;
    return text.toUpper();
}

Json row(const AutomationRule &rule)
{
    Json row;
    row["id"] = rule.id.toStdString();
    row["ruleID"] = rule.ruleId.toStdString();
    row["path"] = rule.path.toStdString();
    row["triggerUsedPercent"] = numberJson(rule.triggerUsedPercent);
    row["cadence"] = rawValue(rule.cadence).toStdString();
    row["enabled"] = rule.enabled;
    if (rule.lastFiredAt)
        row["lastFiredAt"] = seconds(*rule.lastFiredAt);
    row["timesFired"] = rule.timesFired;
    return row;
}

std::optional<AutomationRule> rule(const Json &row)
{
    if (!row.is_object())
        return std::nullopt;
    const auto id = uuid(row);
    const auto ruleId = text(row, "ruleID");
    const auto path = text(row, "path");
    const auto trigger = number(row, "triggerUsedPercent");
    const auto cadence = cadenceOf(QString::fromStdString(text(row, "cadence").value_or(std::string())));
    const auto enabled = boolean(row, "enabled");
    const auto timesFired = wholeNumber(row, "timesFired");
    if (!id || !ruleId || !path || !trigger || !cadence || !enabled || !timesFired)
        return std::nullopt;
    AutomationRule rule{ .id = *id,
        .ruleId = QString::fromStdString(*ruleId),
        .path = QString::fromStdString(*path),
        .triggerUsedPercent = *trigger,
        .cadence = *cadence,
        .enabled = *enabled,
        .timesFired = *timesFired };
    const auto *fired = member(row, "lastFiredAt");
    if (fired != nullptr && !fired->is_null()) {
        const auto firedAt = number(row, "lastFiredAt");
        if (!firedAt)
            return std::nullopt;
        rule.lastFiredAt = moment(*firedAt);
    }
    return rule;
}

QByteArray written(const Json &array)
{
    // A slash stands nowhere but in texts, where it means the same with a backslash before it.
    return QByteArray::fromStdString(array.dump()).replace('/', "\\/");
}

} // namespace

QByteArray encode(const QList<AutomationRule> &rules)
{
    auto rows = Json::array();
    for (const auto &rule : rules)
        rows.push_back(row(rule));
    return written(rows);
}

std::optional<QList<AutomationRule>> decode(QByteArrayView json)
{
    const auto rows = Json::parse(json.begin(), json.end(), nullptr, false);
    if (!rows.is_array())
        return std::nullopt;
    QList<AutomationRule> rules;
    rules.reserve(static_cast<qsizetype>(rows.size()));
    for (const auto &row : rows) {
        auto read = rule(row);
        if (!read)
            return std::nullopt;
        rules.append(*std::move(read));
    }
    return rules;
}

QByteArray encodePresets(const QSet<QString> &ids)
{
    auto sorted = ids.values();
    std::ranges::sort(sorted);
    auto texts = Json::array();
    for (const auto &id : sorted)
        texts.push_back(id.toStdString());
    return written(texts);
}

std::optional<QSet<QString>> decodePresets(QByteArrayView json)
{
    const auto texts = Json::parse(json.begin(), json.end(), nullptr, false);
    if (!texts.is_array())
        return std::nullopt;
    QSet<QString> ids;
    for (const auto &text : texts) {
        if (!text.is_string())
            return std::nullopt;
        ids.insert(QString::fromStdString(text.get<std::string>()));
    }
    return ids;
}

} // namespace Quillbrook::RulesFormat

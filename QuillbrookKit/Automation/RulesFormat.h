#pragma once

// The automation rules and the presets that are on as files: JSON arrays, compact, with "/" written as "\/",
// and points in time as seconds since 2001-01-01 00:00:00 UTC. "lastFiredAt" is left out where it is absent.

#include "Automation/AutomationRule.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QSet>

#include <optional>

namespace Quillbrook::RulesFormat {

[[nodiscard]] QByteArray encode(const QList<AutomationRule> &rules);
/// Absent when `json` is anything else than an array of whole rules. Keys that are not known are passed over;
/// a moment is rounded to the millisecond, and one beyond 270,000 years is taken as that.
[[nodiscard]] std::optional<QList<AutomationRule>> decode(QByteArrayView json);

/// In ascending order.
[[nodiscard]] QByteArray encodePresets(const QSet<QString> &ids);
/// Absent when `json` is anything else than an array of texts.
[[nodiscard]] std::optional<QSet<QString>> decodePresets(QByteArrayView json);

} // namespace Quillbrook::RulesFormat

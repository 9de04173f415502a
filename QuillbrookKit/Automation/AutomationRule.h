#pragma once

// A standing instruction to clear one thing that rebuilds itself when the disk fills up: one rule of the
// catalogue at one path. A plain value.

#include <QDateTime>
#include <QString>

#include <cstdint>
#include <optional>

namespace Quillbrook {

enum class Cadence : std::uint8_t { everyTime, once };

/// How it is stored.
[[nodiscard]] QString rawValue(Cadence cadence);
[[nodiscard]] std::optional<Cadence> cadenceOf(const QString &rawValue);
/// In the person's language.
[[nodiscard]] QString label(Cadence cadence);

/// A percentage cut to a whole number; what is no number is 0.
[[nodiscard]] QString wholePercent(double percent);

struct AutomationRule
{
    /// A UUID in capitals, without braces.
    QString id{};
    /// Of the catalogue's rule.
    QString ruleId{};
    /// Of the finding that it was made for; compared to the letter.
    QString path{};
    /// It fires at this percentage of the disk used, or above.
    double triggerUsedPercent = 0;
    Cadence cadence = Cadence::everyTime;
    bool enabled = true;
    std::optional<QDateTime> lastFiredAt{};
    qint64 timesFired = 0;

    bool operator==(const AutomationRule &) const = default;

    /// When it fires and how often, in the person's language.
    [[nodiscard]] QString summary() const;
};

} // namespace Quillbrook

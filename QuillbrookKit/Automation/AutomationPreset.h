#pragma once

// A named bundle of catalogue rules that a person switches on as one. It becomes rules wherever a report
// shows something that it covers. A plain value.

#include "Catalogue/HostCatalogue.h"

namespace Quillbrook {

struct AutomationPreset
{
    /// Stable key, lower case with dots.
    QString id{};
    QString title{};
    /// What it covers and what clearing it costs.
    QString blurb{};
    QStringList ruleIds{};
    double triggerUsedPercent = 0;

    bool operator==(const AutomationPreset &) const = default;

    /// The four built-in ones.
    [[nodiscard]] static const QList<AutomationPreset> &builtIn();
    /// Those with what the host adds to them, and after them the host's own.
    [[nodiscard]] static QList<AutomationPreset> all(const HostCatalogue &host);
};

} // namespace Quillbrook

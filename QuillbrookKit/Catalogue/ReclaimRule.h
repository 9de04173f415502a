#pragma once

// One row of what is known about what may be cleared. A plain value, copied freely between threads.

#include "Catalogue/Safety.h"

#include <QStringList>

#include <optional>

namespace Quillbrook {

struct ReclaimRule
{
    /// Stable key, lower case with dots.
    QString id{};
    QString title{};
    /// What it is, in one or two sentences.
    QString what{};
    /// What happens after removal: how it comes back, or that it does not.
    QString regenerates{};
    Safety safety = Safety::reportOnly;
    /// Literal locations, without wildcards; one that does not begin with "/" hangs under the home folder.
    QStringList paths{};
    /// When present, a finding counts as deletable only after so many days untouched.
    std::optional<int> staleDays{};
    /// Clearing removes what is inside the folder and keeps the folder itself.
    bool emptyContentsOnly = true;

    bool operator==(const ReclaimRule &) const = default;
};

} // namespace Quillbrook

#pragma once

// Whether what a rule of the catalogue finds may leave the startup disk.

#include "Catalogue/Finding.h"

#include <QList>
#include <QString>

#include <optional>

namespace Quillbrook {

struct HostCatalogue;
struct ReclaimReport;

/// Never with a reason, always without.
struct Suitability
{
    std::optional<QString> hotReason{};

    bool operator==(const Suitability &) const = default;

    [[nodiscard]] bool isCold() const { return !hotReason; }
};

namespace Offload {

/// By the built-in table, and after it the host's where one is given. Ids are compared exactly; one that
/// neither knows is hot.
[[nodiscard]] Suitability suitability(const QString &ruleId, const HostCatalogue *host = nullptr);
/// The findings that may be offered for moving, in the report's order: no links, and nothing small.
[[nodiscard]] QList<Finding> candidates(const ReclaimReport &report, const HostCatalogue *host = nullptr);

} // namespace Offload

} // namespace Quillbrook

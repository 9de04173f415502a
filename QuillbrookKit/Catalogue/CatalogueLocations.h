#pragma once

// The walk over all tables that quick scan, step count and evaluation share, and the search for what was
// moved away; and the findings made on it.

#include "Catalogue/StorageCatalogue.h"

#include <vector>

namespace Quillbrook {

/// One place to look at.
struct CatalogueLocation
{
    /// Lives as long as the tables.
    const ReclaimRule *rule = nullptr;
    /// Absolute.
    QString path{};
    /// The path in raw bytes, for system calls.
    std::string rawPath{};
    /// Only where the host names it.
    std::optional<QString> label{};
    QString applicationId{};
};

/// Every location of every table, in table order and path order, without those that `places` skips. The
/// built-in rules come first, each with its own paths and then the host's for it, and the host's rules last.
[[nodiscard]] std::vector<CatalogueLocation> catalogueLocations(const StorageCatalogue::Places &places);

/// Gathers the findings of one walk. The rule of a lone place shows its bare title as long as only one of its
/// findings is there, so a label waits for the second.
class FindingList
{
public:
    explicit FindingList(const CatalogueServices &services);

    /// Makes the finding of a location that holds `bytes`, reads its dates and keeps it. What is safe is
    /// careful where its application runs, or where that can't be told.
    const Finding &add(const CatalogueLocation &location, qint64 bytes, bool isLink);
    /// All findings, largest first, with the figures of the volume that holds `home` (raw bytes).
    [[nodiscard]] ReclaimReport report(const Volumes &volumes, const std::string &home) &&;

private:
    struct Entry
    {
        Finding finding{};
        std::optional<QString> label{};
    };

    void settleLabels();

    const FileFacts &m_files;
    const Clock &m_clock;
    const RunningApps &m_runningApps;
    std::vector<Entry> m_entries;
};

} // namespace Quillbrook

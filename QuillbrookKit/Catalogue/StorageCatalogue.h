#pragma once

// What is known, by name, about what may be cleared: a fixed table of rules, the evaluation of a disk against
// it, and the listing of a finding's members. Nothing here removes anything or reads the content of a file
// that it measures. Operations are synchronous, may take long, and may be called from any thread.
//
// What the host adds is handed in beside the built-in tables; without it they work alone.

#include "Catalogue/CatalogueServices.h"
#include "Catalogue/HostCatalogue.h"
#include "Catalogue/ReclaimReport.h"
#include "Catalogue/StorageItem.h"

#include <QSet>

#include <functional>
#include <span>
#include <stop_token>
#include <string>

namespace Quillbrook {

class FileTree;

namespace StorageCatalogue {

/// The thirty built-in rules in the order of evaluation. Built once, never changed afterwards.
[[nodiscard]] std::span<const ReclaimRule> rules();

/// The rule of an id, the host's among them; null for an id without one. Lives as long as `host`.
[[nodiscard]] const ReclaimRule *rule(const QString &ruleId, const HostCatalogue *host = nullptr);

/// Where to look.
struct Places
{
    /// Absolute; what a relative location hangs under.
    QString homeDirectory{};
    /// The same in raw bytes; empty where the text is all that they say.
    std::string rawHome{};
    /// Absolute paths; a location that equals one or lies below one, by its text, is passed over.
    QSet<QString> skipping{};
    /// Null: the built-in tables alone. Outlives the call.
    const HostCatalogue *host = nullptr;

    /// The home folder for system calls.
    [[nodiscard]] std::string home() const { return rawHome.empty() ? homeDirectory.toStdString() : rawHome; }
};

struct QuickScanRequest
{
    Places places{};
    /// Gets each finding the moment it is made, on the calling thread; must be quick. May be empty.
    std::function<void(const Finding &)> onFinding{};
    /// After a stop, the location that is being measured gives no finding, and no further one is measured.
    std::stop_token stop{};
};

/// Measures each existing location by a small scan of its own, one after the other. A location that is a
/// link, lies behind one, or holds nothing gives no finding. After a stop, the report holds what was found
/// before.
[[nodiscard]] ReclaimReport quickScan(const CatalogueServices &services, const QuickScanRequest &request);

/// How many locations `quickScan` would find something at, links and empty ones counted too: an upper
/// bound on its findings.
[[nodiscard]] qsizetype quickScanStepCount(const CatalogueServices &services, const Places &places);

struct EvaluateRequest
{
    const FileTree &tree;
    /// The node under which to look.
    qint32 root = -1;
    Places places{};
    /// A stop ends the evaluation before the next location.
    std::stop_token stop{};
};

/// Reads the same findings out of a finished tree, which already holds every size. A location that is a
/// link gives a finding that is marked so. After a stop, the report holds what was found before.
[[nodiscard]] ReclaimReport evaluate(const CatalogueServices &services, const EvaluateRequest &request);

/// Rules worth mentioning beside one, in order; empty for an id without any. Not filtered against what
/// was found.
[[nodiscard]] QStringList related(const QString &ruleId, const HostCatalogue *host = nullptr);

/// The built-in rules whose findings open into items.
[[nodiscard]] const QSet<QString> &itemisedRules();
/// Whether findings of a rule, the host's among them, may open into items.
[[nodiscard]] bool supportsItems(const QString &ruleId, const HostCatalogue *host = nullptr);

/// The members of a finding that are larger than one mebibyte, largest first. Empty for a rule that has
/// none and for a finding that the tree does not hold. Reads small files in which other programs note what
/// theirs are called, and asks a tool which simulators run, and waits for it. Of `places` what to skip plays
/// no part.
[[nodiscard]] QList<StorageItem> items(const CatalogueServices &services, const Finding &finding,
    const FileTree &tree, qint32 root, const Places &places = {});
/// How many they are, without reading or asking anything beyond the tree.
[[nodiscard]] qsizetype itemCount(
    const Finding &finding, const FileTree &tree, qint32 root, const Places &places = {});

} // namespace StorageCatalogue

} // namespace Quillbrook

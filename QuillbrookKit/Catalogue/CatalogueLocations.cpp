#include "Catalogue/CatalogueLocations.h"

#include "Platform/Clock.h"
#include "Platform/FileFacts.h"
#include "Platform/RunningApps.h"
#include "Platform/Volumes.h"
#include "RawText.h"
#include "Scan/WholeDays.h"

#include <QHash>

#include <algorithm>

namespace Quillbrook {

namespace {

QString canonical(const QString &text)
{
    return text.normalized(QString::NormalizationForm_C);
}

class SkipSet
{
public:
    explicit SkipSet(const QSet<QString> &paths)
    {
        for (const auto &path : paths)
            m_paths.insert(canonical(path));
    }

    [[nodiscard]] bool covers(const QString &location) const
    {
        if (m_paths.isEmpty())
            return false;
        const auto path = canonical(location);
        if (m_paths.contains(path))
            return true;
        for (auto slash = path.indexOf(u'/'); slash >= 0; slash = path.indexOf(u'/', slash + 1))
            if (m_paths.contains(path.first(slash)))
                return true;
        return false;
    }

private:
    QSet<QString> m_paths;
};

class Walk
{
public:
    explicit Walk(const StorageCatalogue::Places &places)
        : m_home(places.homeDirectory)
        , m_rawHome(places.home())
        , m_skipping(places.skipping)
        , m_host(places.host)
    {
    }

    void visit(const ReclaimRule &rule)
    {
        for (const auto &path : rule.paths)
            visit({ .rule = &rule, .path = expanded(path) });
        visitHostLocations(rule);
    }

    void visit(const HostRule &row)
    {
        for (const auto &location : row.locations)
            visit(row.rule, location);
        visitHostLocations(row.rule);
    }

    [[nodiscard]] std::vector<CatalogueLocation> finish() && { return std::move(m_locations); }

private:
    [[nodiscard]] QString expanded(const QString &path) const
    {
        return path.startsWith(u'/') ? path : m_home + u'/' + path;
    }

    void visit(const ReclaimRule &rule, const HostLocation &location)
    {
        visit({ .rule = &rule,
            .path = expanded(location.path),
            .label = location.label,
            .applicationId = location.applicationId });
    }

    void visit(CatalogueLocation location)
    {
        if (m_skipping.covers(location.path))
            return;
        location.rawPath = rawPathBelow(m_rawHome, location.path);
        m_locations.push_back(std::move(location));
    }

    void visitHostLocations(const ReclaimRule &rule)
    {
        if (!m_host)
            return;
        for (const auto &row : m_host->locations)
            if (row.ruleId == rule.id)
                for (const auto &location : row.locations)
                    visit(rule, location);
    }

    QString m_home;
    std::string m_rawHome;
    SkipSet m_skipping;
    const HostCatalogue *m_host;
    std::vector<CatalogueLocation> m_locations;
};

bool isStale(const ReclaimRule &rule, const std::optional<QDateTime> &lastModified, const Clock &clock)
{
    if (!rule.staleDays)
        return true;
    const auto now = clock.now();
    return wholeDays(lastModified.value_or(now), now) >= *rule.staleDays;
}

// Whether a finding of the rule goes without a label as long as it is the only one. A rule without paths of
// its own has places that only the machine knows, so that each of them shows its label.
bool isLonePlace(const ReclaimRule &rule)
{
    return rule.paths.size() == 1;
}

// Whether no application is using the place, as far as one is known that could.
bool isUnused(const CatalogueLocation &location, const RunningApps &apps)
{
    return location.applicationId.isEmpty() || !apps.isRunning(location.applicationId).value_or(true);
}

QString lastComponent(const QString &path)
{
    return path.section(u'/', -1, -1, QString::SectionSkipEmpty);
}

} // namespace

std::vector<CatalogueLocation> catalogueLocations(const StorageCatalogue::Places &places)
{
    Walk walk(places);
    for (const auto &rule : StorageCatalogue::rules())
        walk.visit(rule);
    if (places.host)
        for (const auto &row : places.host->rules)
            walk.visit(row);
    return std::move(walk).finish();
}

FindingList::FindingList(const CatalogueServices &services)
    : m_files(services.files)
    , m_clock(services.clock)
    , m_runningApps(services.runningApps)
{
}

const Finding &FindingList::add(const CatalogueLocation &location, qint64 bytes, bool isLink)
{
    const auto &rule = *location.rule;
    const bool isFirst = std::ranges::none_of(
        m_entries, [&rule](const Entry &entry) { return entry.finding.rule.id == rule.id; });
    Finding finding{ .id = Finding::idFor(rule.id, location.path),
        .rule = rule,
        .path = location.path,
        .rawPath = location.rawPath,
        .bytes = bytes,
        .redirectedOffVolume = isLink,
        .applicationId = location.applicationId };
    if (rule.safety == Safety::safe && !isUnused(location, m_runningApps))
        finding.rule.safety = Safety::careful;
    if (const auto dates = m_files.dates(location.rawPath)) {
        finding.created = dates->created;
        finding.lastModified = dates->lastModified;
    }
    finding.meetsStalenessForDeletion = isStale(rule, finding.lastModified, m_clock);
    if (!isLonePlace(rule) || !isFirst)
        finding.locationLabel = location.label;
    m_entries.push_back({ .finding = std::move(finding), .label = location.label });
    return m_entries.back().finding;
}

void FindingList::settleLabels()
{
    QHash<QString, int> counts;
    for (const auto &[finding, label] : m_entries)
        ++counts[finding.rule.id];
    for (auto &[finding, label] : m_entries)
        if (isLonePlace(finding.rule) && counts.value(finding.rule.id) > 1)
            finding.locationLabel = label.value_or(lastComponent(finding.path));
}

ReclaimReport FindingList::report(const Volumes &volumes, const std::string &home) &&
{
    settleLabels();
    ReclaimReport report;
    for (auto &entry : m_entries)
        report.findings.append(std::move(entry.finding));
    std::ranges::stable_sort(
        report.findings, [](const Finding &a, const Finding &b) { return a.bytes > b.bytes; });
    if (const auto capacity = volumes.capacity(home)) {
        report.volumeFreeBytes = capacity->available.value_or(0);
        report.volumeTotalBytes = capacity->total.value_or(0);
    }
    return report;
}

} // namespace Quillbrook

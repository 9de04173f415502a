#pragma once

// The catalogue's side of one scan: what is known of the machine, the quick stage before the walk and the
// evaluation after it. The model makes one for each scan and runs its three steps on pool threads, one after
// the other; what a step found out may be read when it has ended. It outlives every step.

#include "Catalogue/HostKnowledge.h"
#include "Catalogue/ReclaimReport.h"
#include "Catalogue/StorageCatalogue.h"
#include "Core/FindingCollector.h"
#include "Core/ScanFences.h"

#include <stop_token>

namespace Quillbrook {

struct KitServices;

class CatalogueInHand
{
public:
    CatalogueInHand(const KitServices &services, Scope scope, const QString &root);

    // The steps. They block.
    /// Asks the host what it adds, and counts the steps of the quick stage.
    void prepare();
    /// The quick stage: findings arrive in the collector while it runs.
    void measure();
    /// Reads the findings out of a finished tree.
    void evaluate(const FastScanner::Result &scanned);

    /// Ends a quick stage that runs, and any later one, early. Any thread.
    void cancel();
    /// What the quick stage has found so far. Any thread.
    [[nodiscard]] FindingCollector::Look look() const { return m_collector.look(); }

    /// After `prepare`.
    [[nodiscard]] const ScanFences &fences() const { return m_fences; }
    [[nodiscard]] const HostFacts &host() const { return m_host; }
    /// At least 1.
    [[nodiscard]] qsizetype quickSteps() const { return m_quickSteps; }
    /// Of the last step that made one.
    [[nodiscard]] const ReclaimReport &report() const { return m_report; }

private:
    [[nodiscard]] StorageCatalogue::Places places() const;

    CatalogueServices m_services;
    const HostKnowledge &m_knowledge;
    Scope m_scope;
    QString m_root;
    HostFacts m_host;
    ScanFences m_fences;
    qsizetype m_quickSteps = 1;
    ReclaimReport m_report;
    FindingCollector m_collector;
    std::stop_source m_stop;
};

} // namespace Quillbrook

#include "Core/CatalogueInHand.h"

#include "Platform/KitServices.h"

#include <algorithm>

namespace Quillbrook {

CatalogueInHand::CatalogueInHand(const KitServices &services, Scope scope, const QString &root)
    : m_services(CatalogueServices::of(services))
    , m_knowledge(services.host)
    , m_scope(scope)
    , m_root(root)
{
}

void CatalogueInHand::prepare()
{
    m_host = m_knowledge.about(m_root);
    m_fences = ScanFences::of(m_scope, m_root, m_host);
    m_quickSteps = std::max<qsizetype>(StorageCatalogue::quickScanStepCount(m_services, places()), 1);
}

void CatalogueInHand::measure()
{
    m_report = StorageCatalogue::quickScan(m_services,
        { .places = places(),
            .onFinding = [this](const Finding &finding) { m_collector.add(finding); },
            .stop = m_stop.get_token() });
    m_collector.finish();
}

void CatalogueInHand::evaluate(const FastScanner::Result &scanned)
{
    m_report = StorageCatalogue::evaluate(
        m_services, { .tree = *scanned.tree, .root = scanned.root, .places = places() });
}

void CatalogueInHand::cancel()
{
    m_stop.request_stop();
}

StorageCatalogue::Places CatalogueInHand::places() const
{
    return { .homeDirectory = m_root, .skipping = m_fences.skipping, .host = &m_host.catalogue };
}

} // namespace Quillbrook

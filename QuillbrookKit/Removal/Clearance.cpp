#include "Removal/Clearance.h"

#include "Platform/Trash.h"
#include "Removal/RemovalJournal.h"

namespace Quillbrook {

Clearance::Clearance(const RemovalServices &services, RemovalJournal &journal, std::string home)
    : m_services(services)
    , m_journal(journal)
    , m_home(std::move(home))
{
}

std::vector<Reclaimer::Outcome> Clearance::clear(const Order &order, const Watch &watch)
{
    const Reclaimer reclaimer{ .services = m_services,
        .home = m_home,
        .journal = order.disposal == Reclaimer::Disposal::toTrash ? &m_journal : nullptr,
        .byRule = order.byRule };
    const auto held = order.disposal == Reclaimer::Disposal::toTrash ? m_services.trash.hold() : nullptr;
    std::vector<Reclaimer::Outcome> outcomes;
    Progress progress{ .findings = order.findings.size() };
    qint64 done = 0;
    for (const auto &finding : order.findings) {
        if (watch.stop.stop_requested())
            break;
        ++progress.finding;
        progress.title = finding.rule.title;
        const auto step = [&](const Reclaimer::Step &step) {
            progress.entry = step.entry;
            progress.entries = step.entries;
            progress.name = step.name;
            progress.bytes = done + step.bytes;
            if (watch.progress)
                watch.progress(progress);
        };
        outcomes.push_back(
            reclaimer.reclaim(finding, order.disposal, { .before = step, .stop = watch.stop }));
        done += outcomes.back().bytesMoved;
    }
    return outcomes;
}

} // namespace Quillbrook

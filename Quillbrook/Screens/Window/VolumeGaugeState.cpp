#include "Screens/Window/VolumeGaugeState.h"

#include "Core/AppModel.h"
#include "Scan/Format.h"

#include <algorithm>
#include <cmath>

namespace Quillbrook {

namespace {

constexpr double dangerousShare = 0.9;
constexpr qint64 gapWorthANoteBytes = qint64{ 512 } * 1024 * 1024;

double share(qint64 free, qint64 total)
{
    return total < 1 ? 0 : static_cast<double>(total - free) / static_cast<double>(total);
}

} // namespace

VolumeGauge::VolumeGauge(const Figures &figures)
    : usedShare(share(figures.free, figures.total))
    , isDanger(usedShare > dangerousShare)
    , freeText(Format::bytes(figures.free))
{
    const auto percent = static_cast<int>(std::floor(usedShare * 100));
    usedText = VolumeGaugeState::tr("%1% of %2 used").arg(percent).arg(Format::bytes(figures.total));

    const auto gap = std::max<qint64>(figures.liveOptimistic - figures.liveFree, 0);
    if (gap > gapWorthANoteBytes)
        note = VolumeGaugeState::tr(
            "Finder says %1 — it counts %2 of purgeable cache that a build cannot use.")
                   .arg(Format::bytes(figures.liveOptimistic), Format::bytes(gap));
}

VolumeGaugeState::VolumeGaugeState(AppModel &model, QObject *parent)
    : QObject(parent)
    , m_model(model)
{
    connect(&m_model.volume(), &VolumeFigures::volumeChanged, this, &VolumeGaugeState::refresh);
    connect(&m_model.scans(), &ScanDriver::reportChanged, this, &VolumeGaugeState::refresh);
    refresh();
}

void VolumeGaugeState::refresh()
{
    const VolumeGauge gauge({
        .free = m_model.volume().volumeFree(),
        .total = m_model.volume().volumeTotal(),
        .liveFree = m_model.volume().liveFree(),
        .liveOptimistic = m_model.volume().liveOptimistic(),
    });
    if (m_gauge == gauge)
        return;
    m_gauge = gauge;
    Q_EMIT changed();
}

} // namespace Quillbrook

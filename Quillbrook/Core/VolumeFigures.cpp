#include "Core/VolumeFigures.h"

#include "Core/ScanDriver.h"
#include "Platform/HomeFolder.h"
#include "Platform/KitServices.h"
#include "Platform/Volumes.h"
#include "Scan/Format.h"

#include <chrono>

namespace Quillbrook {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

VolumeFigures::VolumeFigures(const KitServices &kit, const ScanDriver &scans, QObject *parent)
    : QObject(parent)
    , m_kit(kit)
    , m_scans(scans)
{
    m_volumeClock.setObjectName(u"volumeClock"_s);
    m_volumeClock.setInterval(60s);
    connect(&m_volumeClock, &QTimer::timeout, this, &VolumeFigures::refreshVolume);
}

void VolumeFigures::startClock()
{
    m_volumeClock.start();
}

void VolumeFigures::refreshVolume()
{
    const auto capacity = m_kit.volumes.capacity(m_kit.home.rawHomeDirectory());
    if (!capacity)
        return;
    m_measuredFree = capacity->available;
    const auto free = capacity->available.value_or(0);
    const auto optimistic = capacity->availableForImportantUsage.value_or(0);
    const auto total = capacity->total.value_or(0);
    if (m_liveFree != free || m_liveOptimistic != optimistic || m_liveTotal != total) {
        m_liveFree = free;
        m_liveOptimistic = optimistic;
        m_liveTotal = total;
        Q_EMIT volumeChanged();
    }
    refreshMenuBarTitle();
}

void VolumeFigures::refreshMenuBarTitle()
{
    const auto title = Format::bytes(m_liveFree >= 1 ? m_liveFree : volumeFree());
    if (m_menuBarTitle == title)
        return;
    m_menuBarTitle = title;
    Q_EMIT menuBarTitleChanged();
}

qint64 VolumeFigures::volumeFree() const
{
    return m_scans.report() ? m_scans.report()->volumeFreeBytes : m_liveFree;
}

qint64 VolumeFigures::volumeTotal() const
{
    return m_scans.report() ? m_scans.report()->volumeTotalBytes : m_liveTotal;
}

} // namespace Quillbrook

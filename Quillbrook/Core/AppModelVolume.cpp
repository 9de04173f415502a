#include "Core/AppModel.h"
#include "Platform/HomeFolder.h"
#include "Platform/Volumes.h"
#include "Scan/Format.h"

namespace Quillbrook {

void AppModel::startRuleClock()
{
    m_volumeClock.start();
}

void AppModel::refreshVolume()
{
    const auto capacity = m_services.kit.volumes.capacity(m_services.kit.home.homeDirectory());
    if (!capacity)
        return;
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

void AppModel::refreshMenuBarTitle()
{
    const auto title = Format::bytes(m_liveFree >= 1 ? m_liveFree : volumeFree());
    if (m_menuBarTitle == title)
        return;
    m_menuBarTitle = title;
    Q_EMIT menuBarTitleChanged();
}

qint64 AppModel::volumeFree() const
{
    return m_report ? m_report->volumeFreeBytes : m_liveFree;
}

qint64 AppModel::volumeTotal() const
{
    return m_report ? m_report->volumeTotalBytes : m_liveTotal;
}

} // namespace Quillbrook

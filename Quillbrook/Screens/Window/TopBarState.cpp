#include "Screens/Window/TopBarState.h"

#include "Core/AppModel.h"
#include "Scan/Format.h"

namespace Quillbrook {

using namespace Qt::StringLiterals;

TopBarState::TopBarState(AppModel &model, QObject *parent)
    : QObject(parent)
    , m_model(model)
{
    connect(&m_model.scans(), &ScanDriver::phaseChanged, this, &TopBarState::actionTextChanged);
    connect(&m_model.removals(), &RemovalQueue::turnChanged, this, &TopBarState::actionTextChanged);
    connect(&m_model.scans(), &ScanDriver::lastScanDurationChanged, this, &TopBarState::summaryChanged);
    connect(&m_model.scans(), &ScanDriver::scannedFileCountChanged, this, &TopBarState::summaryChanged);
    connect(&m_model.scans(), &ScanDriver::shortfallChanged, this, &TopBarState::shortfallChanged);
}

QString TopBarState::summaryOf(qsizetype fileCount, double seconds)
{
    if (seconds <= 0)
        return {};
    return tr("scanned %1 files in %2s").arg(Format::count(fileCount), Format::decimal(seconds, 1));
}

QString TopBarState::shortfallOf(const ScanDriver::Shortfall &shortfall)
{
    QStringList sentences;
    if (shortfall.folders == 1)
        sentences.append(tr("1 folder could not be opened"));
    else if (shortfall.folders > 1)
        sentences.append(tr("%1 folders could not be opened").arg(Format::count(shortfall.folders)));
    if (shortfall.files == 1)
        sentences.append(tr("1 file could not be measured"));
    else if (shortfall.files > 1)
        sentences.append(tr("%1 files could not be measured").arg(Format::count(shortfall.files)));
    return sentences.join(u" · "_s);
}

void TopBarState::act()
{
    if (isScanning())
        m_model.scans().cancelScan();
    else
        m_model.scans().scan({ .scope = std::nullopt, .automatic = false });
}

QString TopBarState::summary() const
{
    return summaryOf(m_model.scans().scannedFileCount(), m_model.scans().lastScanDuration());
}

QString TopBarState::shortfall() const
{
    return shortfallOf(m_model.scans().shortfall());
}

QString TopBarState::actionText() const
{
    return isScanning() ? tr("Stop") : tr("Rescan");
}

bool TopBarState::canAct() const
{
    const auto &removals = m_model.removals();
    return isScanning() || !removals.isBusy() || removals.isCopying();
}

bool TopBarState::isScanning() const
{
    return m_model.scans().phase().kind == Phase::Kind::scanning;
}

} // namespace Quillbrook

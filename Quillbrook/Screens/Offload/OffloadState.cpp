#include "Screens/Offload/OffloadState.h"

#include "Core/AppModel.h"
#include "Core/Translation.h"
#include "Platform/Clock.h"
#include "Platform/DriveChanges.h"
#include "Platform/FolderPicker.h"
#include "Platform/HomeFolder.h"
#include "RawText.h"
#include "Scan/Format.h"
#include "Screens/SingleLine.h"

#include <algorithm>
#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

/// What is taken for the write rate of the disk inside.
constexpr double internalMBPerSecond = 2300.0;

} // namespace

OffloadState::OffloadState(AppModel &model, QObject *parent)
    : PaneState(parent)
    , m_model(model)
{
    auto &driver = m_model.offloads();
    connect(&m_model.scans(), &ScanDriver::reportChanged, this, &OffloadState::refresh);
    connect(&driver, &OffloadDriver::destinationChanged, this, &OffloadState::refresh);
    connect(&driver, &OffloadDriver::destinationChanged, this, &OffloadState::destinationChanged);
    connect(&driver, &OffloadDriver::movedThingsChanged, this, &OffloadState::refresh);
    connect(&driver, &OffloadDriver::runningChanged, this, &OffloadState::refresh);
    connect(&driver, &OffloadDriver::progressed, this, &OffloadState::refresh);
    connect(&m_model.removals(), &RemovalQueue::busyChanged, this, &OffloadState::refresh);
    connect(&driver, &OffloadDriver::offloadLogChanged, this, &OffloadState::activityChanged);
    connect(&m_model.services().driveChanges, &DriveChanges::changed, this, &OffloadState::recheck);
    connect(&m_model.scans(), &ScanDriver::finished, this, &OffloadState::recheck);
    refresh();
}

void OffloadState::appear()
{
    m_model.services().driveChanges.setWatched(true);
    recheck();
}

void OffloadState::disappear()
{
    m_model.services().driveChanges.setWatched(false);
}

void OffloadState::recheck()
{
    if (shown())
        m_model.offloads().recheckDrives();
}

void OffloadState::refresh()
{
    m_findings = m_model.offloads().offloadCandidates();
    QList<OffloadRow> rows;
    for (const auto &finding : std::as_const(m_findings))
        rows.append(candidateRow(finding));
    m_candidates.setRows(rows);
    rows.clear();
    for (const auto &thing : m_model.offloads().movedThings())
        rows.append(movedRow(thing));
    m_moved.setRows(rows);
    Q_EMIT rowsChanged();
}

OffloadRow OffloadState::candidateRow(const Finding &finding) const
{
    const auto now = m_model.services().kit.clock.now();
    OffloadRow row{ .id = finding.id,
        .title = translatedTableText(finding.rule.title),
        .detail = tr("Created %1 · last used %2")
                      .arg(Format::age(finding.created, now), Format::age(finding.lastModified, now)),
        .size = Format::bytes(finding.bytes),
        .actionEnabled = canMove() };
    addProgress(row);
    return row;
}

OffloadRow OffloadState::movedRow(const MovedThing &thing) const
{
    OffloadRow row{ .id = repairedText(thing.place),
        .title = translatedTableText(thing.title),
        .warns = !thing.isThere(),
        .actionEnabled = thing.isThere() && !m_model.removals().isBusy() };
    const auto drive = singleLine(thing.drive);
    if (!thing.isAnswered)
        row.detail = tr("%1 · not answering").arg(drive);
    else if (!thing.isThere())
        row.detail = tr("%1 · not connected").arg(drive);
    else
        row.detail = thing.driveFree ? tr("%1 · %2 free").arg(drive, Format::bytes(*thing.driveFree)) : drive;
    if (thing.isThere() && thing.bytes)
        row.size = Format::bytes(*thing.bytes);
    else if (!thing.isThere())
        row.size = u"—"_s;
    addProgress(row);
    return row;
}

void OffloadState::addProgress(OffloadRow &row) const
{
    const auto running = m_model.offloads().running();
    if (!running || running->id != row.id)
        return;
    row.running = true;
    row.progress = static_cast<double>(running->done) / static_cast<double>(running->total);
    const auto done = Format::bytes(running->done);
    const auto total = Format::bytes(running->total);
    if (!running->hasBegun)
        row.progressText = tr("Waiting until nothing else is being removed…");
    else if (!running->canStop)
        row.progressText = tr("Stopping…");
    else if (running->bytesPerSecond)
        row.progressText = tr("%1 of %2 · %3/s").arg(done, total, Format::bytes(*running->bytesPerSecond));
    else
        row.progressText = tr("%1 of %2").arg(done, total);
}

bool OffloadState::canMove() const
{
    const auto &destination = m_model.offloads().destination();
    return !m_model.removals().isBusy() && (!destination || !destination->isSlowBus() || m_acceptSlowBus);
}

QString OffloadState::total() const
{
    qint64 bytes = 0;
    for (const auto &finding : m_findings)
        bytes += finding.bytes;
    return tr("%1 could be moved to another drive").arg(Format::bytes(bytes));
}

QString OffloadState::destination() const
{
    const auto &destination = m_model.offloads().destination();
    return destination ? singleLine(repairedText(destination->path)) : QString();
}

QString OffloadState::destinationText() const
{
    const auto &driver = m_model.offloads();
    if (driver.destination())
        return driver.destination()->summary();
    if (driver.destinationError())
        return singleLine(*driver.destinationError());
    return driver.isProfiling() ? tr("Measuring…")
                                : tr("Pick a folder on the drive you want to move things to.");
}

bool OffloadState::destinationFailed() const
{
    return m_model.offloads().destinationError().has_value();
}

QString OffloadState::lossNote() const
{
    const auto &destination = m_model.offloads().destination();
    if (!destination || destination->keepsAttributes)
        return {};
    return tr(
        "This drive can't keep who owns a file, who may read it, or its attributes. What is moved there "
        "loses them.");
}

QString OffloadState::slowWarning() const
{
    const auto &destination = m_model.offloads().destination();
    if (!destination || !destination->isSlowBus())
        return {};
    const auto rate = destination->writeMBPerSecond;
    return tr("This volume writes at %1 MB/s — roughly %2× slower than this Mac's internal disk.")
        .arg(Format::decimal(rate, 0), Format::decimal(internalMBPerSecond / std::max(rate, 1.0), 0));
}

void OffloadState::setAcceptSlowBus(bool accepts)
{
    if (std::exchange(m_acceptSlowBus, accepts) == accepts)
        return;
    Q_EMIT acceptSlowBusChanged();
    refresh();
}

QStringList OffloadState::activity() const
{
    QStringList lines;
    for (const auto &line : m_model.offloads().offloadLog())
        lines.append(singleLine(line));
    return lines;
}

// Later, not within the press: the folder window has an event loop of its own, and whoever pressed by way of
// the accessibility tree would wait until it is closed. It opens where the last choice was only on a local
// drive, since it looks there on this thread, and a server that is gone would hold that.
void OffloadState::chooseVolume()
{
    const auto choose = [this] {
        const auto &services = m_model.services();
        const auto &before = m_model.offloads().destination();
        const auto picked = services.folderPicker.pick({ .directory
            = before && before->isLocal ? repairedText(before->path) : services.kit.home.realHomeDirectory(),
            .message = tr("Pick a folder on the drive you want to move things to."),
            .prompt = tr("Use this folder") });
        if (picked)
            m_model.offloads().profileDestination(*picked);
    };
    QMetaObject::invokeMethod(this, choose, Qt::QueuedConnection);
}

void OffloadState::move(int row)
{
    if (row < 0 || row >= m_findings.size() || !canMove())
        return;
    if (!m_model.offloads().destination()) {
        Q_EMIT volumeWanted();
        return;
    }
    m_model.offloads().offload(m_findings.at(row), m_acceptSlowBus);
}

void OffloadState::askToBringBack(int row)
{
    const auto &things = m_model.offloads().movedThings();
    if (row < 0 || static_cast<size_t>(row) >= things.size())
        return;
    m_asked = things.at(static_cast<size_t>(row));
    Q_EMIT questionChanged();
    Q_EMIT bringBackAsked();
}

void OffloadState::bringBack()
{
    if (m_asked && !m_model.offloads().running())
        m_model.offloads().bringBack(*m_asked);
    m_asked.reset();
}

QString OffloadState::questionTitle() const
{
    return m_asked ? tr("Bring back %1?").arg(translatedTableText(m_asked->title)) : QString();
}

QString OffloadState::questionMessage() const
{
    if (!m_asked)
        return {};
    return tr(
        "%1 is copied back to this disk, in the place of its shortcut. Then that folder goes to the Trash "
        "of its own drive.")
        .arg(singleLine(repairedText(m_asked->link.target)));
}

void OffloadState::stop()
{
    m_model.offloads().stop();
}

} // namespace Quillbrook

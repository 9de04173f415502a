#include "Removal/StayedSpace.h"

#include "Scan/Format.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>

namespace Quillbrook {

namespace {

using Reason = StayedSpace::Reason;

// Less than that is written by any machine at any time, and is no reason.
constexpr qint64 leastWritten = qint64{ 1024 } * 1024;

QString listed(const std::vector<QString> &names)
{
    return QStringList(names.begin(), names.end()).join(QStringLiteral(", "));
}

} // namespace

StayedSpace::StayedSpace(
    const SpaceHolders &holders, std::vector<std::string> paths, std::vector<std::string> deletedIn)
    : m_holders(holders)
    , m_paths(std::move(paths))
    , m_deletedIn(std::move(deletedIn))
    , m_linked(holders.linkedFiles(m_paths))
{
}

void StayedSpace::removalEnded()
{
    m_linkedBytes = m_linked ? m_linked->bytesHeld() : 0;
    m_linked.reset();
}

std::vector<Reason> StayedSpace::reasons(const Removed &removed) const
{
    if (removed.isInTrash)
        return { { .kind = Reason::Kind::inTrash } };
    const auto came = removed.freeAfter - removed.freeBefore;
    const auto mostMissing = removed.measured ? std::max(*removed.measured / 10, leastWritten) : 0;
    if (removed.measured && *removed.measured - came <= mostMissing)
        return {};
    std::vector<Reason> reasons;
    auto snapshots = m_holders.snapshots(m_paths);
    const bool isInSnapshot = !snapshots.empty();
    if (isInSnapshot)
        reasons.push_back({ .kind = Reason::Kind::snapshot, .names = std::move(snapshots) });
    auto places = m_paths;
    places.insert(places.end(), m_deletedIn.begin(), m_deletedIn.end());
    Reason open{ .kind = Reason::Kind::openFile, .bytes = 0 };
    for (const auto &each : m_holders.openFiles(places)) {
        open.names.push_back(each.program);
        *open.bytes += each.bytes;
    }
    const auto missing = removed.measured.value_or(0) - came - *open.bytes - m_linkedBytes;
    if (!open.names.empty())
        reasons.push_back(std::move(open));
    if (m_linkedBytes > 0)
        reasons.push_back({ .kind = Reason::Kind::hardLink, .bytes = m_linkedBytes });
    const bool isMeasured
        = removed.measured && !isInSnapshot && !m_paths.empty() && m_holders.countsExactly(m_paths.front());
    if (isMeasured && missing > mostMissing)
        reasons.push_back({ .kind = Reason::Kind::otherPrograms, .bytes = missing });
    return reasons;
}

QString StayedSpace::sentence(const Reason &reason)
{
    const auto count = static_cast<int>(reason.names.size());
    const auto bytes = Format::bytes(reason.bytes.value_or(0));
    switch (reason.kind) {
    case Reason::Kind::inTrash:
        return QCoreApplication::translate("StayedSpace", "It is in the Trash, which is on the same disk.");
    case Reason::Kind::snapshot:
        return (count == 1 ? QCoreApplication::translate("StayedSpace", "The snapshot %1 still holds it.")
                           : QCoreApplication::translate("StayedSpace", "The snapshots %1 still hold it."))
            .arg(listed(reason.names));
    case Reason::Kind::openFile:
        return (count == 1 ? QCoreApplication::translate("StayedSpace", "%1 still has some of it open.")
                           : QCoreApplication::translate("StayedSpace", "%1 still have some of it open."))
            .arg(listed(reason.names));
    case Reason::Kind::hardLink:
        return QCoreApplication::translate("StayedSpace", "%1 of it is still there by another name.")
            .arg(bytes);
    case Reason::Kind::otherPrograms:
        return QCoreApplication::translate("StayedSpace", "Other programs wrote %1 meanwhile.").arg(bytes);
    }
    return {};
}

} // namespace Quillbrook

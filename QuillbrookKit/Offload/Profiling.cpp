#include "Offload/Profiling.h"

#include "Platform/Drives.h"
#include "Platform/FileFacts.h"
#include "Platform/SpeedProbe.h"
#include "RawText.h"
#include "Scan/Format.h"

#include <QCoreApplication>

#include <algorithm>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 bytesOfMB = 1'048'576;

std::unexpected<OffloadError> unusable(const QString &text)
{
    return std::unexpected(OffloadError{ .kind = OffloadError::Kind::destinationUnusable, .text = text });
}

bool isFolder(const FileFacts &files, const std::string &path)
{
    // A link to a folder is one too, as its inside says. That of a folder which may not be entered says
    // nothing.
    return files.kind(path) == FileKind::directory || files.kind(path + "/.") == FileKind::directory;
}

} // namespace

QString DestinationProfile::summary() const
{
    return QCoreApplication::translate("DestinationProfile", "%1 MB/s write · %2 MB/s read · %3 free")
        .arg(Format::decimal(writeMBPerSecond, 0), Format::decimal(readMBPerSecond, 0),
            Format::bytes(freeBytes));
}

std::expected<DestinationProfile, OffloadError> Offload::profile(
    const OffloadServices &services, const ProfileRequest &request)
{
    const auto &folder = request.destination;
    if (!isFolder(services.files, folder))
        return unusable(QCoreApplication::translate("DestinationProfile", "%1 is not a folder.")
                            .arg(repairedText(folder)));
    const auto speed = services.speeds.measure(
        { .folder = folder, .bytes = request.sampleMB * bytesOfMB, .stop = request.stop });
    if (request.stop.stop_requested())
        return std::unexpected(OffloadError{ .kind = OffloadError::Kind::stopped });
    if (!speed)
        return unusable(QCoreApplication::translate("DestinationProfile", "Cannot write there: %1")
                            .arg(QCoreApplication::translate("Tables", speed.error().toUtf8().constData())));
    const auto facts = services.drives.facts(folder);
    const bool isRemovable = facts.isRemovable.value_or(false);
    return DestinationProfile{ .path = folder,
        .writeMBPerSecond = request.sampleMB / speed->writeSeconds,
        .readMBPerSecond = request.sampleMB / speed->readSeconds,
        .freeBytes = std::max(
            { facts.availableForImportantUsage.value_or(0), facts.available.value_or(0), qint64{ 0 } }),
        .isRemovable = isRemovable,
        .isNetwork = facts.isInternal == false && !isRemovable,
        .isLocal = facts.isInternal.value_or(false) || isRemovable,
        .keepsAttributes = speed->keepsAttributes };
}

} // namespace Quillbrook

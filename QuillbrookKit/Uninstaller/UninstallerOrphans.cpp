#include "Platform/Clock.h"
#include "Platform/FileFacts.h"
#include "RawText.h"
#include "Removal/PathRemoval.h"
#include "Uninstaller/FolderNames.h"
#include "Uninstaller/LeftoverLocations.h"
#include "Uninstaller/Uninstaller.h"

#include <algorithm>

namespace Quillbrook::Uninstaller {

namespace {

constexpr qsizetype fewestPieces = 3;
constexpr qint64 secondsPerDay = 86'400;

// Whether somebody who is installed, or who never shows up as installed, may own what is named so.
bool isOwned(const QString &identifier, const QStringList &known)
{
    const auto startsIt = [&](const auto &start) { return identifier.startsWith(start); };
    return std::ranges::any_of(LeftoverLocations::neverOrphans, startsIt)
        || std::ranges::any_of(known, startsIt);
}

} // namespace

bool isReverseDomain(const QString &identifier)
{
    return identifier.split(u'.', Qt::SkipEmptyParts).size() >= fewestPieces;
}

QDateTime staleBefore(const UninstallerServices &services, qint64 staleDays)
{
    return services.clock.now().addSecs(-staleDays * secondsPerDay);
}

std::vector<Orphan> orphans(const UninstallerServices &services, const OrphanRequest &request)
{
    QStringList known;
    for (const auto &app : request.installed)
        if (!app.bundleID.isEmpty())
            known.append(app.bundleID);
    const auto cutoff = staleBefore(services, request.staleDays);

    std::vector<Orphan> found;
    for (const auto &location : LeftoverLocations::orphanLocations(request.home)) {
        for (const auto &name : FolderNames::in(location.directory)) {
            if (name.starts_with('.'))
                continue;
            const bool hasSuffix = !location.suffix.empty() && name.ends_with(location.suffix);
            const auto stem = hasSuffix ? name.substr(0, name.size() - location.suffix.size()) : name;
            const auto identifier = repairedText(stem);
            const auto path = location.directory + '/' + name;
            if (!isReverseDomain(identifier) || isOwned(identifier, known))
                continue;
            const auto dates = services.files.dates(path);
            // The guards are asked after the date, which is sooner told.
            if (!dates || dates->lastModified >= cutoff
                || PathRemoval::refusal(path, request.home, services.guards))
                continue;
            const auto bytes = request.measure(path);
            if (bytes > orphanThreshold)
                found.push_back({ .path = path,
                    .bundleID = identifier,
                    .kind = location.kind,
                    .bytes = bytes,
                    .lastModified = dates->lastModified });
        }
    }
    std::ranges::stable_sort(found, std::ranges::greater(), &Orphan::bytes);
    return found;
}

} // namespace Quillbrook::Uninstaller

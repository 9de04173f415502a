#include "Uninstaller/Linux/LinuxOrphans.h"

#include "Platform/FileFacts.h"
#include "RawText.h"
#include "Removal/PathRemoval.h"
#include "Uninstaller/FolderNames.h"
#include "Uninstaller/Linux/LinuxLeftovers.h"
#include "Uninstaller/Uninstaller.h"

#include <algorithm>
#include <array>

namespace Quillbrook::LinuxOrphans {

namespace {

// How names begin that are a desktop's own, or are kept by what is no application. In lower case.
constexpr std::array<QStringView, 29> neverOrphans{ u"ca.desrt.dconf", u"com.canonical.", u"com.docker.",
    u"com.redhat.", u"com.system76.", u"com.tarnwick.quillbrook", u"com.ubuntu.", u"containers.",
    u"io.elementary.", u"io.podman.", u"org.a11y.", u"org.bluez.", u"org.cinnamon.", u"org.cups.",
    u"org.debian.", u"org.fedoraproject.", u"org.freedesktop.", u"org.gnome.", u"org.gtk.", u"org.kde.",
    u"org.keepassxc.", u"org.libvirt.", u"org.mate.", u"org.pipewire.", u"org.pulseaudio.", u"org.signal.",
    u"org.tracker", u"org.xfce.", u"xdg-desktop-portal" };

} // namespace

std::vector<Location> locations(const ApplicationPlaces &places)
{
    using enum LeftoverKind;
    return { { .directory = places.home + "/.var/app", .kind = container },
        { .directory = places.config, .kind = preferences },
        { .directory = places.data, .kind = supportFiles }, { .directory = places.cache, .kind = cache },
        { .directory = places.state, .kind = savedState } };
}

bool isOwned(const QString &identifier, const QSet<QString> &owners)
{
    const auto lower = identifier.toLower();
    const auto begins = [&](QStringView start) { return lower.startsWith(start); };
    if (LinuxLeftovers::isShared(identifier) || std::ranges::any_of(neverOrphans, begins))
        return true;
    if (owners.contains(lower))
        return true;
    // A word without a dot begins too much: it owns only what has a dot behind it.
    for (auto length = lower.indexOf(u'.'); length > 0 && length < lower.size(); ++length)
        if (owners.contains(lower.left(length)))
            return true;
    return false;
}

std::vector<FoundOrphan> find(const UninstallerServices &services, const ApplicationPlaces &places,
    const QSet<QString> &owners, const Measure &measure, qint64 staleDays)
{
    const auto cutoff = Uninstaller::staleBefore(services, staleDays);
    QSet<QString> lowered;
    for (const auto &owner : owners)
        lowered.insert(owner.toLower());
    std::vector<FoundOrphan> found;
    for (const auto &location : locations(places)) {
        for (const auto &name : FolderNames::in(location.directory)) {
            const auto identifier = repairedText(name);
            const auto path = location.directory + '/' + name;
            if (name.starts_with('.') || !Uninstaller::isReverseDomain(identifier)
                || isOwned(identifier, lowered) || services.files.kind(path) != FileKind::directory)
                continue;
            const auto dates = services.files.dates(path);
            // The guards are asked after the date, which is sooner told.
            if (!dates || dates->lastModified >= cutoff
                || PathRemoval::refusal(path, places.home, services.guards))
                continue;
            const auto bytes = measure(path);
            if (bytes <= Uninstaller::orphanThreshold)
                continue;
            // A folder's own date says little: only what is in it is written as a program runs.
            const auto newest = FolderNames::newestBelow(path, cutoff);
            if (!newest || *newest >= cutoff)
                continue;
            found.push_back({ .orphan = { .path = path,
                                  .bundleID = identifier,
                                  .kind = location.kind,
                                  .bytes = bytes,
                                  .lastModified = dates->lastModified },
                .newestInside = newest,
                .isInHostPlace = true });
        }
    }
    std::ranges::stable_sort(
        found, std::ranges::greater(), [](const FoundOrphan &one) { return one.orphan.bytes; });
    return found;
}

} // namespace Quillbrook::LinuxOrphans

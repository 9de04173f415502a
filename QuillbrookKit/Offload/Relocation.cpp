#include "Offload/Relocation.h"

#include "Platform/FileFacts.h"
#include "Platform/RelocationDisk.h"
#include "Platform/Trash.h"
#include "RawText.h"
#include "Scan/FastScanner.h"
#include "Scan/Format.h"

#include <algorithm>
#include <cmath>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

using Kind = OffloadError::Kind;

std::unexpected<OffloadError> failed(const QString &text)
{
    return std::unexpected(OffloadError{ .kind = Kind::failed, .text = text });
}

std::string targetOf(const Offload::Relocation &relocation)
{
    auto name = relocation.source;
    while (name.size() > 1 && name.ends_with('/'))
        name.pop_back();
    const auto separator = relocation.into.ends_with('/') ? "" : "/";
    return relocation.into + separator + name.substr(name.rfind('/') + 1);
}

// None of these touches anything.
std::optional<OffloadError> refusal(
    const OffloadServices &services, const Offload::Relocation &relocation, const std::string &target)
{
    const auto &profile = relocation.profile;
    if (!relocation.suitability.isCold())
        return OffloadError{ .kind = Kind::hotPath, .text = *relocation.suitability.hotReason };
    if (profile.isSlowBus() && !relocation.allowSlowBus)
        return OffloadError{ .kind = Kind::hotPath,
            .text
            = u"This drive is slow (%1 MB/s). Anything moved here will be slower to open, every time."_s.arg(
                Format::decimal(profile.writeMBPerSecond, 0)) };
    if (profile.freeBytes <= relocation.bytes)
        return OffloadError{
            .kind = Kind::notEnoughRoom, .needed = relocation.bytes, .available = profile.freeBytes
        };
    if (services.files.kind(target))
        return OffloadError{ .text = u"%1 already exists."_s.arg(repairedText(target)) };
    if (const auto objection = services.disk.objection(relocation.source, relocation.into))
        return OffloadError{ .text = *objection };
    return std::nullopt;
}

// The copy at the target, whole and measured.
std::expected<CopyResult, OffloadError> verifiedCopy(
    const OffloadServices &services, const Offload::Relocation &relocation, const std::string &target)
{
    if (relocation.stop.stop_requested())
        return std::unexpected(OffloadError{ .kind = Kind::stopped });
    auto copy = services.disk.copy({ .source = relocation.source,
        .target = target,
        .onProgress = relocation.onProgress,
        .stop = relocation.stop });
    const auto dropped = [&](OffloadError error) {
        if (copy.made)
            services.disk.drop(target, *copy.made);
        return std::unexpected(std::move(error));
    };
    const auto measured = copy.error ? 0 : Offload::measuredSize(services, target, relocation.stop);
    if (copy.stopped || (!copy.error && relocation.stop.stop_requested()))
        return dropped({ .kind = Kind::stopped });
    if (copy.error)
        return failed(u"Copy failed: %1"_s.arg(*copy.error));
    if (!Offload::isVerified(relocation.bytes, measured))
        return dropped({ .kind = Kind::verificationFailed,
            .text = u"expected %1, got %2"_s.arg(Format::bytes(relocation.bytes), Format::bytes(measured)) });
    if (relocation.mayFinish && !relocation.mayFinish())
        return dropped({ .kind = Kind::stopped });
    return copy;
}

} // namespace

bool Offload::isVerified(qint64 expected, qint64 measured)
{
    constexpr double mostApart = 0.02;
    const auto apart = std::abs(static_cast<double>(measured) - static_cast<double>(expected));
    return apart / static_cast<double>(std::max<qint64>(expected, 1)) < mostApart;
}

qint64 Offload::measuredSize(
    const OffloadServices &services, const std::string &path, const std::stop_token &stop)
{
    if (const auto bytes = services.disk.allocated(path))
        return *bytes;
    FastScanner scanner(services.directories);
    const auto result = scanner.scan({ .rootPath = path,
        .threads = FastScanner::defaultThreadCount(services.processors),
        .exclusions = FastScanner::defaultExclusions(),
        .crossDevices = true,
        .stop = stop });
    return result.tree ? result.tree->size(result.root) : 0;
}

std::expected<std::string, QString> Offload::moveAside(
    const OffloadServices &services, const std::string &path, const FileIdentity &copied)
{
    const auto judge = [&](const TakenThing &thing) {
        const bool isThat = thing.inode == copied.inode && services.disk.isStill(path, copied);
        return isThat ? std::nullopt : std::optional(u"It was changed in the meantime."_s);
    };
    const auto moved = services.trash.move(path, { .judge = judge });
    return moved ? std::expected<std::string, QString>(moved->path) : std::unexpected(moved.error());
}

std::expected<std::string, OffloadError> Offload::relocate(
    const OffloadServices &services, const Relocation &relocation)
{
    const auto target = targetOf(relocation);
    if (const auto error = refusal(services, relocation, target))
        return std::unexpected(*error);
    const auto copy = verifiedCopy(services, relocation, target);
    if (!copy)
        return std::unexpected(copy.error());

    const auto aside = moveAside(services, relocation.source, copy->source);
    if (!aside) {
        services.disk.drop(target, *copy->made);
        return failed(u"Could not move the original aside: %1"_s.arg(aside.error()));
    }
    // Nothing is taken back from here on: the copy is whole, and the source lies in the Trash.
    if (!services.disk.link(relocation.source, target))
        return failed(u"Copied to %1 but could not create the link. The original is in the Trash."_s.arg(
            repairedText(target)));
    return target;
}

} // namespace Quillbrook

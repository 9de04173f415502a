#include "Offload/MovedThings.h"

#include "Catalogue/CatalogueLocations.h"
#include "Offload/Relocation.h"
#include "Offload/Suitability.h"
#include "Platform/Drives.h"
#include "Platform/FileFacts.h"
#include "Platform/Trash.h"
#include "RawText.h"
#include "Scan/Format.h"
#include "StandardisedPath.h"

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

using Kind = OffloadError::Kind;

bool isElsewhere(const OffloadServices &services, const std::string &place, const LinkFacts &link)
{
    return !link.leadsSomewhere || services.drives.areOnOneFileSystem(parentOf(place), link.target) == false;
}

// A copy beside the link. Its name says what it is, to whoever meets it after a loss of power.
struct CopyBeside
{
    std::string path{};
    CopyResult result{};
};

CopyBeside copyBeside(const OffloadServices &services, const Offload::Return &order, qint64 total)
{
    constexpr int mostNames = 100;
    CopyBeside copy;
    for (int i = 1; i <= mostNames; ++i) {
        copy.path = order.thing.place + ".incomplete" + (i > 1 ? '-' + std::to_string(i) : std::string());
        copy.result = services.disk.copy({ .source = order.thing.link.target,
            .target = copy.path,
            .onProgress =
                [&](qint64 bytes) {
                    if (order.onProgress)
                        order.onProgress(bytes, total);
                },
            .stop = order.stop });
        if (!copy.result.isTaken)
            break;
    }
    return copy;
}

std::optional<OffloadError> refusal(
    const OffloadServices &services, const Offload::Return &order, qint64 total)
{
    const auto &thing = order.thing;
    if (services.disk.linkAt(thing.place) != thing.link)
        return OffloadError{ .text
            = u"%1 is not the link any more that it was."_s.arg(repairedText(thing.place)) };
    if (!thing.isThere())
        return OffloadError{ .text = u"%1 is not connected."_s.arg(thing.drive) };
    if (const auto objection = services.disk.objection(thing.link.target))
        return OffloadError{ .text = *objection };
    const auto room = services.drives.facts(parentOf(thing.place)).available.value_or(0);
    if (room <= total)
        return OffloadError{ .kind = Kind::notEnoughRoom, .needed = total, .available = room };
    return std::nullopt;
}

} // namespace

std::vector<MovedThing> Offload::links(
    const OffloadServices &services, const StorageCatalogue::Places &places)
{
    std::vector<MovedThing> things;
    for (const auto &location : catalogueLocations(places)) {
        if (!suitability(location.rule->id, places.host).isCold())
            continue;
        const auto &place = location.rawPath;
        if (const auto link = services.disk.unfollowedLinkAt(place))
            things.push_back({ .ruleId = location.rule->id,
                .title = location.rule->title,
                .place = place,
                .link = *link,
                .drive = services.drives.likelyName(link->target) });
    }
    return things;
}

std::optional<MovedThing> Offload::answered(const OffloadServices &services, const MovedThing &link)
{
    auto thing = link;
    const auto facts = services.disk.linkAt(link.place);
    if (!facts || !isElsewhere(services, link.place, *facts))
        return std::nullopt;
    thing.isAnswered = true;
    thing.link = *facts;
    thing.drive = services.drives.name(facts->target);
    if (facts->leadsSomewhere)
        thing.driveFree = services.drives.facts(facts->target).available;
    return thing;
}

std::expected<Offload::Returned, OffloadError> Offload::bringBack(
    const OffloadServices &services, const Return &order)
{
    const auto &thing = order.thing;
    const auto total = thing.isThere() ? measuredSize(services, thing.link.target, order.stop) : 0;
    if (order.stop.stop_requested())
        return std::unexpected(OffloadError{ .kind = Kind::stopped });
    if (const auto error = refusal(services, order, total))
        return std::unexpected(*error);

    const auto copy = copyBeside(services, order, total);
    const auto dropped = [&](OffloadError error) {
        if (copy.result.made)
            services.disk.drop(copy.path, *copy.result.made);
        return std::unexpected(std::move(error));
    };
    const auto measured = copy.result.error ? 0 : measuredSize(services, copy.path, order.stop);
    if (copy.result.stopped || (!copy.result.error && order.stop.stop_requested()))
        return dropped({ .kind = Kind::stopped });
    if (copy.result.error)
        return dropped({ .text = u"Copy failed: %1"_s.arg(*copy.result.error) });
    if (!isVerified(total, measured))
        return dropped({ .kind = Kind::verificationFailed,
            .text = u"expected %1, got %2"_s.arg(Format::bytes(total), Format::bytes(measured)) });
    if (order.mayFinish && !order.mayFinish())
        return dropped({ .kind = Kind::stopped });
    const auto exchanged
        = services.disk.putInPlaceOfLink(copy.path, *copy.result.made, thing.place, thing.link.identity);
    if (!exchanged)
        return dropped({ .text = u"Could not put it in the place of its link: %1"_s.arg(exchanged.error()) });

    // A loss of power could take back the exchange, and the link would lead to what lies in a Trash by then.
    services.trash.flush({ parentOf(thing.place) });
    if (order.onReturned)
        order.onReturned();
    Returned returned;
    const auto aside = moveAside(services, thing.link.target, copy.result.source);
    if (!aside)
        returned.leftBehind = aside.error();
    return returned;
}

} // namespace Quillbrook

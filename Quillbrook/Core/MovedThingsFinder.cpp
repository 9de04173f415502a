#include "Core/MovedThingsFinder.h"

#include "Catalogue/HostCatalogue.h"
#include "Offload/Relocation.h"
#include "Platform/KitServices.h"
#include "RawText.h"

#include <QCoroFuture>
#include <QDeadlineTimer>
#include <QPointer>
#include <QTimer>
#include <QtConcurrent>

#include <algorithm>
#include <optional>
#include <stop_token>
#include <tuple>
#include <utility>

namespace Quillbrook {

namespace {

/// Whoever asks a drive that does not answer keeps a thread; the others need one all the same.
constexpr int mostAsking = 64;

} // namespace

// A link, for as long as it is that. It is asked about by one thread at a time.
struct MovedThingsFinder::Place
{
    explicit Place(MovedThing itself)
        : link(std::move(itself))
    {
    }

    const MovedThing link;
    /// Absent before the first answer, and where the link leads nowhere else.
    std::optional<MovedThing> answer{};
    bool isAsked = false;
    quint64 askings = 0;
    /// Something has changed since.
    bool isAskedAgain = false;
    bool isSilent = false;
    std::stop_source measuring{};
};

MovedThingsFinder::MovedThingsFinder(
    const KitServices &kit, std::chrono::milliseconds patience, QObject *parent)
    : QObject(parent)
    , m_kit(kit)
    , m_patience(patience)
{
    m_pool.setMaxThreadCount(mostAsking);
}

MovedThingsFinder::~MovedThingsFinder()
{
    std::ignore = endsWithin(QDeadlineTimer::Forever);
}

bool MovedThingsFinder::endsWithin(const QDeadlineTimer &patience)
{
    for (const auto &place : m_places)
        place->measuring.request_stop();
    return m_pool.waitForDone(static_cast<int>(patience.remainingTime()));
}

void MovedThingsFinder::look(const std::string &home, const HostCatalogue &host)
{
    follow(home, host);
}

QCoro::Task<> MovedThingsFinder::follow(std::string home, HostCatalogue host)
{
    const QPointer self(this);
    const auto look = ++m_looks;
    // The futures have names because the compiler destroys what is made in an awaiting expression twice.
    const auto finding = QtConcurrent::run(&m_pool, [services = OffloadServices::of(m_kit), home, host] {
        return Offload::links(
            services, { .homeDirectory = repairedText(home), .rawHome = home, .host = &host });
    });
    const auto links = co_await finding;
    if (self && look == m_looks)
        takeLinks(links);
}

void MovedThingsFinder::takeLinks(const std::vector<MovedThing> &links)
{
    auto before = std::exchange(m_places, {});
    for (const auto &link : links) {
        const auto known = std::ranges::find_if(before, [&link](const auto &place) {
            return place->link.place == link.place && place->link.link == link.link;
        });
        m_places.push_back(known == before.end() ? std::make_shared<Place>(link) : *known);
    }
    for (const auto &place : before)
        place->measuring.request_stop();
    tell();
    const auto places = m_places;
    for (const auto &place : places)
        ask(place);
}

QCoro::Task<> MovedThingsFinder::ask(std::shared_ptr<Place> place)
{
    const QPointer self(this);
    place->isAskedAgain = true;
    if (std::exchange(place->isAsked, true))
        co_return;
    losePatience(place);
    while (std::exchange(place->isAskedAgain, false)) {
        const auto asking
            = QtConcurrent::run(&m_pool, [services = OffloadServices::of(m_kit), link = place->link] {
                  return Offload::answered(services, link);
              });
        auto answer = co_await asking;
        if (!self)
            co_return;
        if (answer && place->answer && answer->link == place->answer->link)
            answer->bytes = place->answer->bytes;
        place->answer = std::move(answer);
    }
    place->isAsked = false;
    place->isSilent = false;
    tell();
    const bool isFollowed = std::ranges::find(m_places, place) != m_places.end();
    if (isFollowed && place->answer && place->answer->isThere())
        measure(place);
}

void MovedThingsFinder::losePatience(const std::shared_ptr<Place> &place)
{
    QTimer::singleShot(m_patience, this, [this, place, asking = ++place->askings] {
        if (!place->isAsked || place->askings != asking)
            return;
        place->isSilent = true;
        tell();
    });
}

QCoro::Task<> MovedThingsFinder::measure(std::shared_ptr<Place> place)
{
    const QPointer self(this);
    place->measuring.request_stop();
    const auto mine = place->measuring = {};
    const auto measuring = QtConcurrent::run(&m_pool,
        [services = OffloadServices::of(m_kit), target = place->answer->link.target,
            stop = mine.get_token()] { return Offload::measuredSize(services, target, stop); });
    const auto bytes = co_await measuring;
    if (!self || place->measuring != mine || mine.stop_requested() || !place->answer)
        co_return;
    place->answer->bytes = bytes;
    tell();
}

void MovedThingsFinder::tell()
{
    std::vector<MovedThing> things;
    for (const auto &place : m_places) {
        if (place->isSilent)
            things.push_back(place->link);
        else if (place->answer)
            things.push_back(*place->answer);
    }
    if (std::exchange(m_things, things) != things)
        Q_EMIT thingsChanged();
}

} // namespace Quillbrook

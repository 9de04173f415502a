#include "Platform/LocalModelServers.h"

#include "Advisor/ChatRequest.h"
#include "Advisor/ModelAnswers.h"
#include "Platform/ModelInquiry.h"

#include <QCoroFuture>
#include <QPromise>

#include <algorithm>
#include <chrono>
#include <utility>

namespace Quillbrook {

namespace {

using namespace std::chrono_literals;

/// A model that has to be loaded first, or thinks for long, says nothing meanwhile.
constexpr auto longestSilence = 300s;
constexpr auto longestAnswer = 30min;
/// A person who has asked would rather wait for a busy server than hear that there is none.
constexpr auto patienceOfAsker = 10s;
constexpr int ok = 200;

} // namespace

// The state of a session outlives it while a question is under way; nothing else refers to it then.
class LocalModelServers::Session final : public ModelSession
{
public:
    Session(LocalModelServers &servers, QString instructions)
        : m_state(std::make_shared<State>(State{ .servers = servers,
            .isAlive = &servers.m_context,
            .chosen = servers.m_chosen,
            .instructions = std::move(instructions) }))
    {
    }

    QFuture<std::optional<AdvisorReply>> respond(
        const QString &question, const std::stop_token &stop) override
    {
        if (std::exchange(m_state->isBusy, true))
            return QtFuture::makeReadyFuture(std::optional<AdvisorReply>());
        auto promise = std::make_shared<QPromise<std::optional<AdvisorReply>>>();
        promise->start();
        auto future = promise->future();
        answer(m_state, promise, question, stop);
        return future;
    }

private:
    struct State
    {
        LocalModelServers &servers;
        QPointer<QObject> isAlive;
        std::optional<Chosen> chosen;
        QString instructions;
        QList<ChatTurn> turns{};
        bool isBusy = false;
    };
    using Promise = std::shared_ptr<QPromise<std::optional<AdvisorReply>>>;

    static QCoro::Task<> answer(
        std::shared_ptr<State> state, Promise promise, QString question, std::stop_token stop)
    {
        const auto asking = ask(state, question, stop);
        auto reply = co_await asking;
        state->isBusy = false;
        promise->addResult(std::move(reply));
        promise->finish();
    }

    static QCoro::Task<std::optional<AdvisorReply>> ask(
        std::shared_ptr<State> state, QString question, std::stop_token stop)
    {
        if (!state->chosen || !state->isAlive)
            co_return std::nullopt;
        auto services = state->servers.inquiryServices();
        services.patience = patienceOfAsker;
        services.stop = stop;
        const auto inquiry = ModelInquiry::about(services, state->chosen->place, state->chosen->model);
        const auto outcome = co_await inquiry;
        if (!outcome.chosen || stop.stop_requested() || !state->isAlive)
            co_return std::nullopt;
        const auto request = requestFor(*state, *outcome.chosen, question, stop);
        if (!request)
            co_return std::nullopt;
        const auto sending = state->servers.m_http.send(*request);
        const auto answer = co_await sending;
        if (!answer || answer->status != ok)
            co_return std::nullopt;
        const bool isOllama = state->chosen->place.kind == Kind::ollama;
        const auto text = isOllama ? ModelAnswers::ollamaReply(answer->body)
                                   : ModelAnswers::completionsReply(answer->body);
        auto reply = text ? AdvisorReply::decode(*text) : std::nullopt;
        if (reply)
            state->turns.append({ .question = question, .reply = *text });
        co_return reply;
    }

    /// Absent when it does not fit into what the model takes in.
    static std::optional<LoopbackRequest> requestFor(
        const State &state, const Chosen &chosen, const QString &question, const std::stop_token &stop)
    {
        ChatRequest chat{ .model = chosen.model,
            .instructions = state.instructions,
            .turns = state.turns,
            .question = question };
        if (!chat.fitInto(chosen.context))
            return std::nullopt;
        const bool isOllama = chosen.place.kind == Kind::ollama;
        return LoopbackRequest{ .port = chosen.place.port,
            .path = isOllama ? "/api/chat" : "/v1/chat/completions",
            .body = isOllama ? chat.ollamaBody(chat.contextWithin(chosen.context)) : chat.completionsBody(),
            .silence = longestSilence,
            .total = longestAnswer,
            .stop = stop };
    }

    std::shared_ptr<State> m_state;
};

QList<LocalModelServers::Place> LocalModelServers::usualPlaces()
{
    return { { Kind::ollama, 11434 }, { Kind::llamaCpp, 8080 }, { Kind::vllm, 8000 } };
}

LocalModelServers::LocalModelServers(const LoopbackListeners &listeners, QList<Place> places)
    : m_listeners(listeners)
    , m_places(std::move(places))
{
}

LocalModelServers::~LocalModelServers()
{
    m_pool.waitForDone();
}

ModelInquiry::Services LocalModelServers::inquiryServices()
{
    return { .http = m_http, .listeners = m_listeners, .pool = m_pool, .alive = &m_context };
}

QFuture<ModelAvailability> LocalModelServers::availability()
{
    auto promise = std::make_shared<QPromise<ModelAvailability>>();
    promise->start();
    auto future = promise->future();
    findOut(&m_context, this, promise);
    return future;
}

// The places answer side by side, and are heard in their order: as soon as one has a model, those after it no
// longer count.
QCoro::Task<> LocalModelServers::findOut(QPointer<QObject> isAlive, LocalModelServers *servers,
    std::shared_ptr<QPromise<ModelAvailability>> promise)
{
    const auto number = ++servers->m_inquiry;
    std::vector<QCoro::Task<ModelInquiry::Outcome>> inquiries;
    for (const auto &place : servers->m_places)
        inquiries.push_back(ModelInquiry::about(servers->inquiryServices(), place));
    ModelInquiry::Outcome best;
    for (auto &inquiry : inquiries) {
        const auto outcome = co_await inquiry;
        if (outcome.chosen || outcome.problem > best.problem)
            best = outcome;
        if (outcome.chosen)
            break;
    }
    if (isAlive && servers->m_inquiry == number)
        servers->m_chosen = best.chosen;
    promise->addResult(ModelAvailability{ .problem = best.problem,
        .server = best.server,
        .model = best.chosen ? ModelAnswers::shownName(best.chosen->model) : QString() });
    promise->finish();
}

std::unique_ptr<ModelSession> LocalModelServers::startSession(const QString &instructions)
{
    return std::make_unique<Session>(*this, instructions);
}

} // namespace Quillbrook

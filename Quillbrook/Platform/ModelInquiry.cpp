#include "Platform/ModelInquiry.h"

#include "Advisor/ModelAnswers.h"
#include "Platform/LoopbackListeners.h"

#include <QCoroFuture>
#include <QtConcurrent>

#include <algorithm>
#include <nlohmann/json.hpp>

namespace Quillbrook::ModelInquiry {

using namespace Qt::StringLiterals;

namespace {

using Problem = ModelAvailability::Problem;
using Listed = ModelAnswers::Listed;

// Replies of a given form are there from this version on.
const QVersionNumber oldestOllama(0, 5);
/// Of a model that does not tell how much it takes in.
constexpr qint64 modestContext = 4096;
/// However much a model takes in, memory goes with it.
constexpr qint64 largestContext = 65'536;
/// So many models are asked about, of a list that has the newest first.
constexpr int mostAsked = 12;

constexpr int ok = 200;
constexpr int unavailable = 503;

struct Server
{
    Services services;
    LocalModelServers::Place place;
    /// The model that alone will do; empty where any does.
    QString wanted;

    [[nodiscard]] QFuture<std::optional<HttpAnswer>> send(
        const char *path, const std::optional<QByteArray> &body = {}) const
    {
        if (!services.alive)
            return QtFuture::makeReadyFuture(std::optional<HttpAnswer>());
        return services.http.send({ .port = place.port,
            .path = path,
            .body = body,
            .silence = services.patience,
            .total = services.patience,
            .stop = services.stop });
    }
    [[nodiscard]] bool fits(const Listed &model) const { return wanted.isEmpty() || model.id == wanted; }
    [[nodiscard]] Outcome found(const QString &name, const QString &model, qint64 context) const
    {
        return { .problem = Problem::none,
            .server = name,
            .chosen = LocalModelServers::Chosen{
                .place = place, .model = model, .server = name, .context = context } };
    }
};

/// What a good answer says; empty, which is no JSON, for every other.
QByteArray bodyOf(const std::optional<HttpAnswer> &answer)
{
    return answer && answer->status == ok ? answer->body : QByteArray();
}

QFuture<Listener> listenerAt(const Services &services, quint16 port)
{
    return QtConcurrent::run(
        &services.pool, [listeners = &services.listeners, port] { return listeners->at(port); });
}

QCoro::Task<Outcome> aboutOllama(Server server)
{
    const auto name = u"Ollama"_s;
    const auto askingVersion = server.send("/api/version");
    const auto versionAnswer = co_await askingVersion;
    const auto version = ModelAnswers::ollamaVersion(bodyOf(versionAnswer));
    if (!version)
        co_return Outcome{};
    if (*version < oldestOllama)
        co_return Outcome{ .problem = Problem::tooOld, .server = name };
    const auto askingModels = server.send("/api/tags");
    const auto modelsAnswer = co_await askingModels;
    auto models = ModelAnswers::ollamaModels(bodyOf(modelsAnswer)).value_or(QList<Listed>());
    models.removeIf([&server](const Listed &model) { return !server.fits(model); });
    bool isElsewhere = false;
    int asked = 0;
    for (const auto &model : models) {
        isElsewhere |= model.isElsewhere;
        if (model.isElsewhere || ++asked > mostAsked)
            continue;
        const nlohmann::json question{ { "model", model.id.toStdString() } };
        const auto askingDetails = server.send("/api/show", QByteArray::fromStdString(question.dump()));
        const auto detailsAnswer = co_await askingDetails;
        const auto details = ModelAnswers::ollamaDetails(bodyOf(detailsAnswer));
        isElsewhere |= details && details->isElsewhere;
        if (details && !details->isElsewhere && details->canAnswer)
            co_return server.found(
                name, model.id, std::min(details->context.value_or(modestContext), largestContext));
    }
    co_return Outcome{ .problem = isElsewhere ? Problem::onlyElsewhere : Problem::noModel, .server = name };
}

// A llamafile is the same server with its model in one file; from there the model comes out of the program
// itself.
QString llamaName(const QString &model)
{
    return model.startsWith(u"/zip/") || model.endsWith(u".llamafile") ? u"llamafile"_s : u"llama.cpp"_s;
}

QCoro::Task<Outcome> aboutLlama(Server server)
{
    const auto askingHealth = server.send("/health");
    const auto health = co_await askingHealth;
    if (health && health->status == unavailable && ModelAnswers::isLoading(health->body))
        co_return Outcome{ .problem = Problem::loading, .server = u"llama.cpp"_s };
    if (!ModelAnswers::isHealthy(bodyOf(health)))
        co_return Outcome{};
    const auto askingModels = server.send("/v1/models");
    const auto modelsAnswer = co_await askingModels;
    const auto models = ModelAnswers::models(bodyOf(modelsAnswer)).value_or(QList<Listed>());
    const auto isOwn
        = [&server](const Listed &model) { return server.fits(model) && model.owner.startsWith(u"llama"); };
    const auto model = std::ranges::find_if(models, isOwn);
    if (model == models.end())
        co_return Outcome{};
    const auto askingProperties = server.send("/props");
    const auto properties = co_await askingProperties;
    co_return server.found(llamaName(model->id), model->id,
        ModelAnswers::llamaContext(bodyOf(properties)).value_or(modestContext));
}

QCoro::Task<Outcome> aboutVllm(Server server)
{
    const auto askingModels = server.send("/v1/models");
    const auto modelsAnswer = co_await askingModels;
    const auto models = ModelAnswers::models(bodyOf(modelsAnswer)).value_or(QList<Listed>());
    const auto isOwn
        = [&server](const Listed &model) { return server.fits(model) && model.owner == u"vllm"; };
    const auto model = std::ranges::find_if(models, isOwn);
    if (model == models.end())
        co_return Outcome{};
    co_return server.found(u"vLLM"_s, model->id, model->context.value_or(modestContext));
}

} // namespace

QCoro::Task<Outcome> about(Services services, LocalModelServers::Place place, QString wanted)
{
    const auto asking = listenerAt(services, place.port);
    const auto listener = co_await asking;
    if (listener == Listener::none)
        co_return Outcome{};
    if (listener == Listener::foreign)
        co_return Outcome{ .problem = Problem::someoneElses };
    const Server server{ services, place, wanted };
    switch (place.kind) {
    case LocalModelServers::Kind::ollama: {
        const auto outcome = aboutOllama(server);
        co_return co_await outcome;
    }
    case LocalModelServers::Kind::llamaCpp: {
        const auto outcome = aboutLlama(server);
        co_return co_await outcome;
    }
    case LocalModelServers::Kind::vllm: {
        const auto outcome = aboutVllm(server);
        co_return co_await outcome;
    }
    }
    co_return Outcome{};
}

} // namespace Quillbrook::ModelInquiry

#pragma once

// Finds out whether a server at one place has a model that answers on this machine. It is asked anew before
// every question too: what listens there may have become another program meanwhile. Main thread only.

#include "Advisor/LanguageModel.h"
#include "Platform/HttpClient.h"
#include "Platform/LocalModelServers.h"

#include <QCoroTask>

namespace Quillbrook {

namespace ModelInquiry {

struct Outcome
{
    ModelAvailability::Problem problem = ModelAvailability::Problem::noServer;
    /// What the program is called; empty where that is not known.
    QString server{};
    /// Present exactly when there is no problem.
    std::optional<LocalModelServers::Chosen> chosen{};
};

struct Services
{
    LoopbackHttpClient &http;
    const LoopbackListeners &listeners;
    /// Takes note of what runs on the pool, to be waited for.
    QList<QFuture<void>> &poolWork;
    /// Goes when these go; from then on nothing is asked.
    QPointer<QObject> alive{};
};

/// With `wanted`, only the model of that name will do.
[[nodiscard]] QCoro::Task<Outcome> about(
    Services services, LocalModelServers::Place place, QString wanted = {});

} // namespace ModelInquiry

} // namespace Quillbrook

#pragma once

// Finds out whether a server at one place has a model that answers on this machine. It is asked anew before
// every question too: what listens there may have become another program meanwhile. Main thread only.

#include "Advisor/LanguageModel.h"
#include "Platform/HttpClient.h"
#include "Platform/LocalModelServers.h"

#include <QCoroTask>

#include <chrono>
#include <stop_token>

class QThreadPool;

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
    /// On which the listeners are asked.
    QThreadPool &pool;
    /// Goes when these go; from then on nothing is asked.
    QPointer<QObject> alive{};
    /// How long each answer of the server's may take.
    std::chrono::milliseconds patience{ 1'500 };
    /// Ends what is being asked.
    std::stop_token stop{};
};

/// With `wanted`, only the model of that name will do.
[[nodiscard]] QCoro::Task<Outcome> about(
    Services services, LocalModelServers::Place place, QString wanted = {});

} // namespace ModelInquiry

} // namespace Quillbrook

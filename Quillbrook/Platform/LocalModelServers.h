#pragma once

// The language models of the servers that run on this machine, asked over its loopback address and on their
// usual ports. None is ever started. Main thread only.

#include "Advisor/LanguageModel.h"
#include "Platform/LoopbackHttpClient.h"

#include <QCoroTask>
#include <QFuture>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QPromise>
#include <QString>
#include <QThreadPool>

#include <optional>

namespace Quillbrook {

class LoopbackListeners;

namespace ModelInquiry {
struct Services;
}

class LocalModelServers final : public LanguageModel
{
public:
    enum class Kind { ollama, llamaCpp, vllm };

    struct Place
    {
        Kind kind{};
        quint16 port = 0;

        bool operator==(const Place &) const = default;
    };

    /// A model that can be asked.
    struct Chosen
    {
        Place place{};
        /// By the server's own name, and for people to read.
        QString model{};
        QString server{};
        /// Tokens.
        qint64 context = 0;

        bool operator==(const Chosen &) const = default;
    };

    /// Where the servers listen unless they are told otherwise, the first preferred.
    [[nodiscard]] static QList<Place> usualPlaces();

    /// `listeners` outlives this, and may be asked on any thread.
    explicit LocalModelServers(const LoopbackListeners &listeners, QList<Place> places = usualPlaces());
    /// Waits for what runs on the pool.
    ~LocalModelServers() override;

    /// All places are asked at once; the first of them that has a model is taken.
    [[nodiscard]] QFuture<ModelAvailability> availability() override;
    [[nodiscard]] std::unique_ptr<ModelSession> startSession(const QString &instructions) override;

private:
    class Session;

    [[nodiscard]] ModelInquiry::Services inquiryServices();
    static QCoro::Task<> findOut(QPointer<QObject> isAlive, LocalModelServers *servers,
        std::shared_ptr<QPromise<ModelAvailability>> promise);

    const LoopbackListeners &m_listeners;
    QList<Place> m_places;
    LoopbackHttpClient m_http;
    std::optional<Chosen> m_chosen;
    /// Counts the times it was to be found out: what an earlier one finds is out of date.
    int m_inquiry = 0;
    /// Not the one that scans run on, which they may fill for long.
    QThreadPool m_pool;
    /// What is under way ends with it.
    QObject m_context;
};

} // namespace Quillbrook

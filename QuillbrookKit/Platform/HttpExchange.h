#pragma once

// One request by Qt's network library, and its answer. It has a manager of its own, which keeps nothing
// beyond it: no connection, no cookie, nothing of a cache. Main thread only.

#include "Platform/HttpClient.h"

#include <QNetworkAccessManager>
#include <QNetworkRequest>
#include <QObject>
#include <QPromise>
#include <QTimer>

#include <functional>
#include <memory>
#include <stop_token>

namespace Quillbrook {

class HttpExchange final : public QObject
{
public:
    struct Plan
    {
        QNetworkRequest request{};
        /// What is posted; absent where it is got.
        std::optional<QByteArray> body{};
        std::chrono::milliseconds silence{};
        std::chrono::milliseconds total{};
        qint64 largestBody = 0;
        std::stop_token stop{};
    };

    /// Begins at once, and goes by itself when it has been answered.
    HttpExchange(Plan plan, QObject *parent);
    /// Nobody is left without an answer.
    ~HttpExchange() override { answer(); }

    /// Absent for everything that is no whole answer.
    [[nodiscard]] QFuture<std::optional<HttpAnswer>> future() { return m_promise->future(); }

private:
    void read();
    void finish();
    void end(std::optional<HttpAnswer> outcome);
    void answer();

    std::unique_ptr<QPromise<std::optional<HttpAnswer>>> m_promise
        = std::make_unique<QPromise<std::optional<HttpAnswer>>>();
    std::optional<HttpAnswer> m_outcome{};
    qint64 m_largestBody;
    QByteArray m_body{};
    QNetworkAccessManager m_manager{};
    QTimer m_limit{};
    QNetworkReply *m_reply = nullptr;
    std::optional<std::stop_callback<std::function<void()>>> m_stop{};
};

} // namespace Quillbrook

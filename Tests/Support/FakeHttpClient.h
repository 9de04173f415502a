#pragma once

// Answers each question with what the test has put there, at once or when the test says so, and remembers the
// questions.

#include "Platform/HttpClient.h"

#include <QPromise>

#include <utility>
#include <vector>

namespace Quillbrook {

class FakeHttpClient final : public HttpClient
{
public:
    QFuture<std::optional<HttpAnswer>> get(const HttpRequest &request) override
    {
        requests.append(request);
        QPromise<std::optional<HttpAnswer>> promise;
        promise.start();
        auto future = promise.future();
        m_open.push_back(std::move(promise));
        if (!isSlow)
            release();
        return future;
    }

    /// Answers what has not been answered.
    void release()
    {
        for (auto promises = std::exchange(m_open, {}); auto &promise : promises) {
            promise.addResult(answer);
            promise.finish();
        }
    }

    std::optional<HttpAnswer> answer;
    QList<HttpRequest> requests;
    /// Answers wait for `release`.
    bool isSlow = false;

private:
    std::vector<QPromise<std::optional<HttpAnswer>>> m_open;
};

} // namespace Quillbrook

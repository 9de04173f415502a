#pragma once

// Answers each question with what the test has put there, and remembers the questions.

#include "Platform/HttpClient.h"

#include <QPromise>
#include <QtFuture>

namespace Quillbrook {

class FakeHttpClient final : public HttpClient
{
public:
    QFuture<std::optional<HttpAnswer>> get(const HttpRequest &request) override
    {
        requests.append(request);
        QPromise<std::optional<HttpAnswer>> promise;
        promise.start();
        promise.addResult(answer);
        promise.finish();
        return promise.future();
    }

    std::optional<HttpAnswer> answer;
    QList<HttpRequest> requests;
};

} // namespace Quillbrook

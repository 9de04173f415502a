#pragma once

// Asks one thing of a web server. What is sent is what the request says and nothing else: no cookie, nothing
// of a cache, no word on the language or the program, no proxy of the desktop's.

#include <QByteArray>
#include <QFuture>
#include <QList>
#include <QUrl>

#include <chrono>
#include <optional>
#include <utility>

namespace Quillbrook {

struct HttpRequest
{
    QUrl url{};
    QList<std::pair<QByteArray, QByteArray>> headers{};
    /// How long the server may say nothing.
    std::chrono::milliseconds silence{ 10'000 };
    /// How long it may take in all, however steadily it talks.
    std::chrono::milliseconds total{ 60'000 };
    /// Bytes of a body beyond which the answer is given up.
    qint64 largestBody = qint64{ 64 } * 1024;
};

struct HttpAnswer
{
    int status = 0;
    QByteArray body{};

    bool operator==(const HttpAnswer &) const = default;
};

class HttpClient
{
public:
    virtual ~HttpClient() = default;
    /// GETs it. Absent for everything that is no whole answer: no connection, a certificate that does not
    /// hold, a redirect away from HTTPS, a limit of the request. Main thread only, which also answers.
    [[nodiscard]] virtual QFuture<std::optional<HttpAnswer>> get(const HttpRequest &request) = 0;
};

} // namespace Quillbrook

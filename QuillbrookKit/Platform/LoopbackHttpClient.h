#pragma once

// Asks a server that listens on this machine's loopback address, and no other: the address is written here
// and can't be given. No proxy, no redirect, no cookie, and no word on the language or the program but its
// name.

#include "Platform/HttpClient.h"

#include <QObject>

#include <stop_token>

namespace Quillbrook {

struct LoopbackRequest
{
    quint16 port = 0;
    /// Begins with "/".
    QByteArray path{};
    /// JSON that is posted; absent where the path is got.
    std::optional<QByteArray> body{};
    /// How long the server may say nothing.
    std::chrono::milliseconds silence{ 1'500 };
    /// How long it may take in all.
    std::chrono::milliseconds total{ 1'500 };
    /// Bytes of a body beyond which the answer is given up.
    qint64 largestBody = qint64{ 1024 } * 1024;
    /// Ends it without an answer; requested on the main thread.
    std::stop_token stop{};
};

class LoopbackHttpClient
{
public:
    LoopbackHttpClient() = default;
    LoopbackHttpClient(const LoopbackHttpClient &) = delete;
    LoopbackHttpClient &operator=(const LoopbackHttpClient &) = delete;
    /// What is under way is answered as absent.
    ~LoopbackHttpClient() = default;

    /// The answer whatever its status, a redirect among them; absent for everything that is no whole answer.
    /// Main thread only, which also answers.
    [[nodiscard]] QFuture<std::optional<HttpAnswer>> send(const LoopbackRequest &request);

private:
    /// Owns the exchanges under way.
    QObject m_exchanges;
};

} // namespace Quillbrook

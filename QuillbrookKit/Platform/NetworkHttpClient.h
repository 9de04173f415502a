#pragma once

// HTTP by Qt's network library, over TLS and never without. Every request has a manager of its own, which
// keeps nothing beyond it. A request that names no User-Agent or no Accept-Language is sent with "Quillbrook"
// and "*", since without a word from us that library would tell its own name and the person's language.

#include "Platform/HttpClient.h"

#include <QObject>

#include <memory>

class QSslConfiguration;

namespace Quillbrook {

class NetworkHttpClient final : public HttpClient
{
public:
    /// Trusts the certificate authorities that the system trusts.
    NetworkHttpClient();
    explicit NetworkHttpClient(const QSslConfiguration &tls);
    NetworkHttpClient(const NetworkHttpClient &) = delete;
    NetworkHttpClient &operator=(const NetworkHttpClient &) = delete;
    /// What is under way is answered as absent.
    ~NetworkHttpClient() override;

    [[nodiscard]] QFuture<std::optional<HttpAnswer>> get(const HttpRequest &request) override;

private:
    std::unique_ptr<QSslConfiguration> m_tls;
    /// Owns the exchanges under way.
    QObject m_exchanges;
};

} // namespace Quillbrook

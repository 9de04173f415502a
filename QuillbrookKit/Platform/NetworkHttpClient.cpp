#include "Platform/NetworkHttpClient.h"

#include "Platform/HttpExchange.h"

#include <QSslConfiguration>

namespace Quillbrook {

namespace {

constexpr int mostRedirects = 5;

QNetworkRequest networkRequest(const HttpRequest &request, const QSslConfiguration &tls)
{
    QNetworkRequest made(request.url);
    made.setSslConfiguration(tls);
    made.setMaximumRedirectsAllowed(mostRedirects);
    made.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    for (const auto &[name, value] : request.headers)
        made.setRawHeader(name, value);
    return made;
}

} // namespace

NetworkHttpClient::NetworkHttpClient()
    : NetworkHttpClient(QSslConfiguration::defaultConfiguration())
{
}

NetworkHttpClient::NetworkHttpClient(const QSslConfiguration &tls)
    : m_tls(std::make_unique<QSslConfiguration>(tls))
{
}

NetworkHttpClient::~NetworkHttpClient() = default;

QFuture<std::optional<HttpAnswer>> NetworkHttpClient::get(const HttpRequest &request)
{
    if (!request.url.isValid() || request.url.scheme() != u"https" || request.url.host().isEmpty())
        return QtFuture::makeReadyFuture(std::optional<HttpAnswer>());
    auto *exchange = new HttpExchange({ .request = networkRequest(request, *m_tls),
                                          .silence = request.silence,
                                          .total = request.total,
                                          .largestBody = request.largestBody },
        &m_exchanges);
    return exchange->future();
}

} // namespace Quillbrook

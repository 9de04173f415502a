#include "Platform/LoopbackHttpClient.h"

#include "Platform/HttpExchange.h"

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

// By its number: what the name leads to is up to a file.
QUrl urlOf(const LoopbackRequest &request)
{
    QUrl url;
    url.setScheme(u"http"_s);
    url.setHost(u"127.0.0.1"_s);
    url.setPort(request.port);
    url.setPath(QString::fromLatin1(request.path));
    return url;
}

} // namespace

QFuture<std::optional<HttpAnswer>> LoopbackHttpClient::send(const LoopbackRequest &request)
{
    QNetworkRequest made(urlOf(request));
    made.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    if (request.body)
        made.setRawHeader("Content-Type", "application/json");
    auto *exchange = new HttpExchange({ .request = std::move(made),
                                          .body = request.body,
                                          .silence = request.silence,
                                          .total = request.total,
                                          .largestBody = request.largestBody,
                                          .stop = request.stop },
        &m_exchanges);
    return exchange->future();
}

} // namespace Quillbrook

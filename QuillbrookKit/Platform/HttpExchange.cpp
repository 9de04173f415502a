#include "Platform/HttpExchange.h"

#include <QNetworkCookie>
#include <QNetworkCookieJar>
#include <QNetworkProxy>
#include <QNetworkReply>

#include <utility>

namespace Quillbrook {

namespace {

// The manual cookie attributes are forgotten by the library on a redirect; this isn't.
class NoCookies final : public QNetworkCookieJar
{
public:
    using QNetworkCookieJar::QNetworkCookieJar;

    [[nodiscard]] QList<QNetworkCookie> cookiesForUrl(const QUrl & /*url*/) const override { return {}; }
    bool setCookiesFromUrl(const QList<QNetworkCookie> & /*cookies*/, const QUrl & /*url*/) override
    {
        return false;
    }
};

QNetworkRequest withoutTraces(QNetworkRequest request)
{
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    // Without a word from us the library would tell its own name and the person's language.
    for (const auto &[name, value] :
        { std::pair("User-Agent", "Quillbrook"), std::pair("Accept-Language", "*") }) {
        if (!request.hasRawHeader(name))
            request.setRawHeader(name, value);
    }
    // Nothing is unpacked, so that the limit of the body holds for what comes over the wire.
    request.setRawHeader("Accept-Encoding", "identity");
    return request;
}

// A status that tells of a failure is an answer too; a connection that fails isn't. The odd one out is what
// the library makes of 400.
bool isAnswer(QNetworkReply::NetworkError error)
{
    return error == QNetworkReply::NoError || error == QNetworkReply::ProtocolInvalidOperationError
        || (error >= QNetworkReply::ContentAccessDenied && error <= QNetworkReply::UnknownContentError)
        || (error >= QNetworkReply::InternalServerError && error <= QNetworkReply::UnknownServerError);
}

} // namespace

HttpExchange::HttpExchange(Plan plan, QObject *parent)
    : QObject(parent)
    , m_largestBody(plan.largestBody)
{
    m_promise->start();
    m_manager.setProxy(QNetworkProxy(QNetworkProxy::NoProxy));
    m_manager.setCookieJar(new NoCookies(&m_manager));
    auto request = withoutTraces(std::move(plan.request));
    request.setTransferTimeout(static_cast<int>(plan.silence.count()));
    m_reply = plan.body ? m_manager.post(request, *plan.body) : m_manager.get(request);
    m_reply->setReadBufferSize(m_largestBody + 1);
    connect(m_reply, &QNetworkReply::readyRead, this, &HttpExchange::read);
    connect(m_reply, &QNetworkReply::finished, this, &HttpExchange::finish);
    m_limit.setSingleShot(true);
    connect(&m_limit, &QTimer::timeout, this, [this] { end(std::nullopt); });
    m_limit.start(plan.total);
    m_stop.emplace(std::move(plan.stop), [this] { end(std::nullopt); });
}

void HttpExchange::read()
{
    m_body += m_reply->readAll();
    if (m_body.size() > m_largestBody)
        end(std::nullopt);
}

void HttpExchange::finish()
{
    m_body += m_reply->readAll();
    const auto status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (isAnswer(m_reply->error()) && status.isValid() && m_body.size() <= m_largestBody)
        end(HttpAnswer{ .status = status.toInt(), .body = m_body });
    else
        end(std::nullopt);
}

// Whoever waits for the answer may end the client because of it, which must not happen in the midst of a
// signal of the reply's.
void HttpExchange::end(std::optional<HttpAnswer> outcome)
{
    m_outcome = std::move(outcome);
    m_limit.stop();
    m_reply->disconnect(this);
    m_reply->abort();
    QMetaObject::invokeMethod(this, &HttpExchange::answer, Qt::QueuedConnection);
}

// Nothing of the exchange is touched after the promise is kept.
void HttpExchange::answer()
{
    const auto promise = std::exchange(m_promise, nullptr);
    if (promise == nullptr)
        return;
    deleteLater();
    promise->addResult(std::move(m_outcome));
    promise->finish();
}

} // namespace Quillbrook

#include "Platform/NetworkHttpClient.h"

#include <QNetworkAccessManager>
#include <QNetworkCookie>
#include <QNetworkCookieJar>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPromise>
#include <QSslConfiguration>
#include <QTimer>

#include <utility>

namespace Quillbrook {

namespace {

constexpr int mostRedirects = 5;

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

QNetworkRequest networkRequest(const HttpRequest &request, const QSslConfiguration &tls)
{
    QNetworkRequest made(request.url);
    made.setSslConfiguration(tls);
    made.setTransferTimeout(static_cast<int>(request.silence.count()));
    made.setMaximumRedirectsAllowed(mostRedirects);
    made.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    made.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    made.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    made.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    made.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    made.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    made.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    made.setRawHeader("User-Agent", "Quillbrook");
    made.setRawHeader("Accept-Language", "*");
    // Nothing is unpacked, so that the limit of the body holds for what comes over the wire.
    made.setRawHeader("Accept-Encoding", "identity");
    for (const auto &[name, value] : request.headers)
        made.setRawHeader(name, value);
    return made;
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

class NetworkHttpClient::Exchange final : public QObject
{
public:
    Exchange(const HttpRequest &request, const QSslConfiguration &tls, QObject *parent);
    /// Nobody is left without an answer.
    ~Exchange() override { answer(); }

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
};

NetworkHttpClient::Exchange::Exchange(
    const HttpRequest &request, const QSslConfiguration &tls, QObject *parent)
    : QObject(parent)
    , m_largestBody(request.largestBody)
{
    m_promise->start();
    m_manager.setProxy(QNetworkProxy(QNetworkProxy::NoProxy));
    m_manager.setCookieJar(new NoCookies(&m_manager));
    m_reply = m_manager.get(networkRequest(request, tls));
    m_reply->setReadBufferSize(m_largestBody + 1);
    connect(m_reply, &QNetworkReply::readyRead, this, &Exchange::read);
    connect(m_reply, &QNetworkReply::finished, this, &Exchange::finish);
    m_limit.setSingleShot(true);
    connect(&m_limit, &QTimer::timeout, this, [this] { end(std::nullopt); });
    m_limit.start(request.total);
}

void NetworkHttpClient::Exchange::read()
{
    m_body += m_reply->readAll();
    if (m_body.size() > m_largestBody)
        end(std::nullopt);
}

void NetworkHttpClient::Exchange::finish()
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
void NetworkHttpClient::Exchange::end(std::optional<HttpAnswer> outcome)
{
    m_outcome = std::move(outcome);
    m_limit.stop();
    m_reply->disconnect(this);
    m_reply->abort();
    QMetaObject::invokeMethod(this, &Exchange::answer, Qt::QueuedConnection);
}

// Nothing of the exchange is touched after the promise is kept.
void NetworkHttpClient::Exchange::answer()
{
    const auto promise = std::exchange(m_promise, nullptr);
    if (promise == nullptr)
        return;
    deleteLater();
    promise->addResult(std::move(m_outcome));
    promise->finish();
}

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
    return (new Exchange(request, *m_tls, &m_exchanges))->future();
}

} // namespace Quillbrook

#include "Automation/UpdateCheck.h"

#include "JsonValues.h"
#include "Platform/HttpClient.h"

#include <QPromise>

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <utility>
#include <vector>

namespace Quillbrook::UpdateCheck {

using namespace JsonValues;

namespace {

constexpr int wholeAnswer = 200;

constexpr std::array<QStringView, 5> exampleDomains{ u"example", u"invalid", u"example.com", u"example.net",
    u"example.org" };

// Nobody can own these, so nobody is there to be asked.
bool isExample(const QString &host)
{
    QStringView name(host);
    while (name.endsWith(u'.'))
        name.chop(1);
    return std::ranges::any_of(exampleDomains, [name](QStringView domain) {
        return name.endsWith(domain, Qt::CaseInsensitive)
            && (name.size() == domain.size() || name[name.size() - domain.size() - 1] == u'.');
    });
}

// The person is led there by a link, which has to go to a web site that proves who it is, and nowhere else.
std::optional<QUrl> webAddress(const std::string &text)
{
    const QUrl url(QString::fromStdString(text), QUrl::StrictMode);
    const bool isWeb = url.isValid() && url.scheme() == u"https" && !url.host().isEmpty();
    return isWeb ? std::optional(url) : std::nullopt;
}

// The version is shown, and the feed is not trusted with more than a word.
bool canBeShown(const std::string &version)
{
    constexpr std::size_t longest = 40;
    constexpr std::string_view allowed = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789.-";
    return version.size() <= longest && version.find_first_not_of(allowed) == std::string::npos;
}

std::optional<AvailableUpdate> decode(const QByteArray &json)
{
    const auto object = Json::parse(json.begin(), json.end(), nullptr, false);
    if (!object.is_object())
        return std::nullopt;
    const auto version = text(object, "version");
    const auto address = text(object, "url");
    const auto url = address ? webAddress(*address) : std::nullopt;
    if (!version || !canBeShown(*version) || !url)
        return std::nullopt;
    AvailableUpdate update{ .version = QString::fromStdString(*version), .url = *url };
    if (const auto *notes = member(object, "notes"); notes != nullptr && !notes->is_null()) {
        const auto words = text(object, "notes");
        if (!words)
            return std::nullopt;
        update.notes = QString::fromStdString(*words);
    }
    return update;
}

std::optional<AvailableUpdate> newer(const std::optional<HttpAnswer> &answer, const QString &current)
{
    if (!answer || answer->status != wholeAnswer)
        return std::nullopt;
    auto update = decode(answer->body);
    return update && isNewer(update->version, current) ? update : std::nullopt;
}

// Digits of ASCII with at most one sign before them, and nothing else.
qint64 number(QStringView piece)
{
    auto digits = piece.toLatin1();
    if (digits.size() > 1 && digits.startsWith('+') && digits[1] != '-')
        digits.remove(0, 1);
    qint64 value = 0;
    const auto *end = digits.constData() + digits.size();
    const auto [stop, error] = std::from_chars(digits.constData(), end, value);
    return error == std::errc{} && stop == end ? value : 0;
}

std::vector<qint64> numbers(QStringView version)
{
    std::vector<qint64> numbers;
    for (const auto piece : version.tokenize(u'.', Qt::SkipEmptyParts))
        numbers.push_back(number(piece));
    return numbers;
}

} // namespace

QUrl feed()
{
    return QUrl(QStringLiteral("https://" QUILLBROOK_UPDATE_HOST "/version.json"));
}

QFuture<std::optional<AvailableUpdate>> check(HttpClient &http, const QString &current, const QUrl &from)
{
    if (from.host().isEmpty() || isExample(from.host()))
        return QtFuture::makeReadyFuture(std::optional<AvailableUpdate>());
    const HttpRequest request{ .url = from,
        .headers = { { "User-Agent", "Quillbrook" }, { "Accept-Language", "*" } } };
    return http.get(request).then(
        [current](const std::optional<HttpAnswer> &answer) { return newer(answer, current); });
}

bool isNewer(QStringView version, QStringView than)
{
    auto ours = numbers(version);
    auto theirs = numbers(than);
    const auto length = std::max(ours.size(), theirs.size());
    ours.resize(length);
    theirs.resize(length);
    return ours > theirs;
}

} // namespace Quillbrook::UpdateCheck

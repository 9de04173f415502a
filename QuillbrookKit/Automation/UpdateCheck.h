#pragma once

// The query for a newer version. It tells nothing of the machine or the version that asks, fetches nothing
// but the feed, and installs nothing.

#include <QFuture>
#include <QString>
#include <QStringView>
#include <QUrl>

#include <optional>

namespace Quillbrook {

class HttpClient;

struct AvailableUpdate
{
    /// Numbers with dots between them; at most 40 letters and digits of ASCII, dots and hyphens.
    QString version{};
    /// Where to get it: an https address with a host.
    QUrl url{};
    std::optional<QString> notes{};

    bool operator==(const AvailableUpdate &) const = default;
};

namespace UpdateCheck {

/// Where the feed is. Its host is set when the program is built, and is by default one that can't exist.
[[nodiscard]] QUrl feed();

/// Asks the feed for something newer than `current`. Every failure is an absent answer, and so is a feed
/// whose host is of a domain reserved for examples, which is not asked at all. Main thread only, which also
/// answers; `http` outlives the answer.
[[nodiscard]] QFuture<std::optional<AvailableUpdate>> check(
    HttpClient &http, const QString &current, const QUrl &from = feed());

/// Number by number; what is no number counts as 0, and so does what is missing.
[[nodiscard]] bool isNewer(QStringView version, QStringView than);

} // namespace UpdateCheck
} // namespace Quillbrook

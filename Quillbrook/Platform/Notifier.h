#pragma once

// Local notifications of the desktop, and whether it lets them through. Main thread only.

#include <QFuture>
#include <QString>

namespace Quillbrook {

enum class NotificationState {
    /// Nothing has been asked for yet.
    notAsked,
    allowed,
    /// The person or the desktop keeps them back, or there is nothing to show them.
    denied,
};

class Notifier
{
public:
    virtual ~Notifier() = default;
    /// Posts one, at once and without a sound. Failures are ignored.
    virtual void post(const QString &title, const QString &body) = 0;
    /// Asks to be let through. Answers once `state` can tell what came of it.
    [[nodiscard]] virtual QFuture<void> requestAuthorisation() = 0;
    /// Asks the desktop anew each time; bounded in time.
    [[nodiscard]] virtual QFuture<NotificationState> state() = 0;
    /// Whether the desktop has a page of notification settings to be opened.
    [[nodiscard]] virtual bool hasSettings() const { return true; }
    /// Opens that page, where there is one.
    virtual void openSettings() = 0;
};

} // namespace Quillbrook

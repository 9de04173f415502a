#pragma once

// Questions to other programs over a bus. Qt's own calls never come to an end where there is no bus: these
// answer with an error then, at once.

#include <QDBusMessage>

#include <chrono>
#include <functional>

class QDBusConnection;
class QObject;

namespace Quillbrook::BusCall {

/// Calls `take` with the reply or the error, within `patience`, on the thread of `context`; not any more once
/// that has gone.
void ask(const QDBusConnection &bus, const QDBusMessage &question, std::chrono::milliseconds patience,
    QObject *context, std::function<void(const QDBusMessage &reply)> take);

/// Waits for the reply or the error, for `patience` at the most, without an event loop.
[[nodiscard]] QDBusMessage wait(
    const QDBusConnection &bus, const QDBusMessage &question, std::chrono::milliseconds patience);

} // namespace Quillbrook::BusCall

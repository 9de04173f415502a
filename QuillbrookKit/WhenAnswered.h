#pragma once

// Waiting for an answer without outliving the one who waits: QFuture::then takes its context's end for a
// mistake.

#include <QFuture>
#include <QFutureWatcher>
#include <QObject>

#include <utility>

namespace Quillbrook {

/// Calls `take` with the answer, at once where it is there already, else on the thread of `context`; never
/// when `context` has gone by then, or when the answer was called off.
template <typename Answer, typename Take>
void whenAnswered(const QFuture<Answer> &future, QObject *context, Take take)
{
    if (future.isFinished()) {
        if (!future.isCanceled())
            take(future.result());
        return;
    }
    auto *watcher = new QFutureWatcher<Answer>(context);
    QObject::connect(watcher, &QFutureWatcherBase::finished, context, [watcher, take = std::move(take)] {
        watcher->deleteLater();
        if (!watcher->isCanceled())
            take(watcher->result());
    });
    watcher->setFuture(future);
}

} // namespace Quillbrook

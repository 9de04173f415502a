#pragma once

// Calls a function with the answer of a future, unless the object that waits for it has gone. QFuture::then
// can't be used for that: it warns when its context ends before the answer comes.

#include <QFuture>
#include <QFutureWatcher>
#include <QObject>

#include <utility>

namespace Quillbrook {

/// Calls `take` with the answer: at once where the answer is there already, else on the thread of `context`.
/// Nothing is called when `context` has gone by then, or when the future was cancelled.
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

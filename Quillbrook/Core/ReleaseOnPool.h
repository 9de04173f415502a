#pragma once

// Lets go of something large on a pool thread. Taking a tree of a million nodes apart takes longer than the
// main thread may stand still.

#include <QThreadPool>

#include <utility>

namespace Quillbrook {

template <typename Value>
void releaseOnPool(Value value)
{
    QThreadPool::globalInstance()->start([value = std::move(value)]() mutable { value = {}; });
}

} // namespace Quillbrook

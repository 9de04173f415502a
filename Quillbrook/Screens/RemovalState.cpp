#include "Screens/RemovalState.h"

#include "Core/RemovalQueue.h"
#include "Scan/Format.h"
#include "Screens/SingleLine.h"

namespace Quillbrook {

RemovalState::RemovalState(RemovalQueue &queue, QObject *parent)
    : QObject(parent)
    , m_queue(queue)
{
    connect(&m_queue, &RemovalQueue::busyChanged, this, &RemovalState::busyChanged);
    connect(&m_queue, &RemovalQueue::progressChanged, this, &RemovalState::changed);
}

bool RemovalState::busy() const
{
    return m_queue.isBusy();
}

bool RemovalState::shown() const
{
    return m_queue.progress().has_value();
}

QString RemovalState::title() const
{
    if (!shown())
        return {};
    const auto number = Format::count(m_queue.progress()->number);
    const auto count = Format::count(m_queue.progress()->count);
    switch (m_queue.verb()) {
    case RemovalQueue::Verb::moving:
        return tr("Moving %1 of %2").arg(number, count);
    case RemovalQueue::Verb::deleting:
        return tr("Deleting %1 of %2").arg(number, count);
    case RemovalQueue::Verb::puttingBack:
        return tr("Putting back %1 of %2").arg(number, count);
    case RemovalQueue::Verb::bringingBack:
        return tr("Bringing back %1 of %2").arg(number, count);
    }
    return {};
}

QString RemovalState::detail() const
{
    if (!shown())
        return {};
    return tr("%1 · %2 so far")
        .arg(singleLine(m_queue.progress()->name), Format::bytes(m_queue.progress()->bytes));
}

double RemovalState::share() const
{
    return shown() ? m_queue.progress()->share() : 0;
}

bool RemovalState::canStop() const
{
    return busy() && !m_queue.isStopping();
}

void RemovalState::stop()
{
    m_queue.stop();
}

} // namespace Quillbrook

#include "Core/RemovalBooks.h"

#include "Platform/HomeFolder.h"
#include "Platform/KitServices.h"
#include "Platform/Trash.h"
#include "Platform/UserDefaults.h"
#include "Removal/CappedSum.h"

#include <QtConcurrentRun>

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

const auto reclaimedBytesKey = u"Quillbrook.reclaimedBytes"_s;

} // namespace

RemovalBooks::RemovalBooks(const KitServices &kit, RemovalQueue &queue, QObject *parent)
    : QObject(parent)
    , m_kit(kit)
    , m_queue(queue)
    , m_reclaimedSoFar(std::max<qint64>(kit.defaults.integer(reclaimedBytesKey).value_or(0), 0))
{
    m_flushPool.setMaxThreadCount(1);
    takeUp();
}

RemovalBooks::~RemovalBooks() = default;

Books RemovalBooks::books()
{
    return { .ledger = *m_ledger, .journal = *m_journal, .trash = m_kit.trash };
}

void RemovalBooks::takeUp()
{
    // Shared by the threads that it goes through, one after the other.
    struct Taken
    {
        std::optional<qint64> bytes{};
        std::vector<HeldItem> held{};
    };
    const auto taken = std::make_shared<Taken>();
    const auto work = [this, taken, before = m_reclaimedSoFar](const RemovalQueue::Watch & /*watch*/) {
        const auto store = TrashLedger::standardStore(m_kit.dataFolder);
        m_ledger.emplace(LedgerServices::of(m_kit), store);
        m_journal.emplace(m_kit.reading, m_kit.writing, RemovalJournal::besideLedger(store));
        taken->bytes = books().recover(before);
        taken->held = books().held();
    };
    const auto end = [this, taken] {
        if (taken->bytes)
            close(*taken->bytes, std::move(taken->held));
        else
            setHeld(std::move(taken->held));
    };
    m_queue.enqueue({ .isPreparation = true, .work = work, .end = end });
}

void RemovalBooks::run(const Run &run)
{
    // Shared by the threads that it goes through, one after the other.
    struct Running
    {
        qint64 reclaimedBefore = 0;
        qint64 bytes = 0;
        std::vector<HeldItem> held{};
        std::vector<std::string> changed{};
    };
    const auto running = std::make_shared<Running>();
    const auto begin = [this, running, before = run.begin] {
        if (before)
            before();
        running->reclaimedBefore = m_reclaimedSoFar;
    };
    const auto work
        = [this, running, act = run.work, changed = run.changed](const RemovalQueue::Watch &watch) {
              const auto trashStaysOpen = m_kit.trash.hold();
              m_journal->startBatch(running->reclaimedBefore);
              running->bytes = act(watch, books());
              running->held = books().held();
              if (changed)
                  running->changed = changed();
          };
    const auto end = [this, running, after = run.end] {
        close(running->bytes, std::move(running->held));
        startFlush(running->changed);
        if (after)
            after();
    };
    m_queue.enqueue({ .verb = run.verb, .begin = begin, .work = work, .end = end });
}

void RemovalBooks::close(qint64 bytes, std::vector<HeldItem> held)
{
    count(bytes);
    // On the thread on which the journal is read, and before the next removal writes to it.
    static_cast<void>(m_queue.ask([this] { books().close(); }));
    setHeld(std::move(held));
}

void RemovalBooks::refresh()
{
    // Outlived by this, since the model waits for the queue.
    static_cast<void>(m_queue.ask([this] {
        // Shared, since the call is copied on its way.
        const auto held = std::make_shared<std::vector<HeldItem>>(books().held());
        QMetaObject::invokeMethod(
            this, [this, held] { setHeld(std::move(*held)); }, Qt::QueuedConnection);
    }));
}

void RemovalBooks::setHeld(std::vector<HeldItem> held)
{
    if (m_held == held)
        return;
    m_held = std::move(held);
    QSet<QString> stillKept;
    for (const auto &each : m_held)
        if (m_kept.contains(each.item.id))
            stillKept.insert(each.item.id);
    m_kept = std::move(stillKept);
    Q_EMIT changed();
}

void RemovalBooks::toggleKept(const QString &id)
{
    if (!m_kept.remove(id))
        m_kept.insert(id);
    Q_EMIT changed();
}

std::vector<HeldItem> RemovalBooks::ticked() const
{
    auto things = m_held;
    std::erase_if(things, [this](const HeldItem &held) { return m_kept.contains(held.item.id); });
    return things;
}

bool RemovalBooks::isDeletable(const HeldItem &held) const
{
    return !held.isOnlyInJournal && !m_kept.contains(held.item.id);
}

std::vector<HeldItem> RemovalBooks::deletable() const
{
    std::vector<HeldItem> things;
    std::ranges::copy_if(
        m_held, std::back_inserter(things), [this](const HeldItem &held) { return isDeletable(held); });
    return things;
}

template <typename Choice>
TrashLedger::Pending RemovalBooks::sum(const Choice &isMeant) const
{
    TrashLedger::Pending total;
    for (const auto &held : m_held)
        if (isMeant(held)) {
            ++total.count;
            total.bytes = cappedSum(total.bytes, held.item.bytes);
        }
    return total;
}

TrashLedger::Pending RemovalBooks::deletableSum() const
{
    return sum([this](const HeldItem &held) { return isDeletable(held); });
}

TrashLedger::Pending RemovalBooks::pending() const
{
    return sum([](const HeldItem &held) { return !held.isOnlyInJournal; });
}

// Stored at once: the journal, which a kill would be made good by, forgets what has been counted.
void RemovalBooks::count(qint64 bytes)
{
    if (bytes <= 0)
        return;
    m_reclaimedSoFar = cappedSum(m_reclaimedSoFar, bytes);
    m_kit.defaults.setInteger(reclaimedBytesKey, m_reclaimedSoFar);
    m_kit.defaults.store();
    Q_EMIT reclaimedSoFarChanged();
}

// The disk may go on writing for a while. What is free is read when it has done so.
void RemovalBooks::startFlush(const std::vector<std::string> &changed)
{
    auto folders = changed;
    folders.push_back(m_kit.home.rawHomeDirectory());
    folders.push_back(m_kit.dataFolder);
    m_flushing = QtConcurrent::run(
        &m_flushPool, [&trash = m_kit.trash, folders = std::move(folders)] { trash.flush(folders); });
}

} // namespace Quillbrook

#include "Screens/Photos/PhotosState.h"

#include "Core/RemovalQueue.h"
#include "Platform/Clock.h"
#include "Platform/FileRevealer.h"
#include "Scan/Format.h"
#include "Screens/SingleLine.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace Quillbrook {

namespace {

constexpr double mostLieHere = 0.5;

void act(const PhotoCleanup::Turn &turn, const RemovalQueue::Watch &watch)
{
    auto &photos = *turn.work;
    photos.moved = [&] {
        watch.progress({ .number = std::min(photos.done + 1, photos.total.load()),
            .count = photos.total,
            .name = PhotosState::tr("photos and videos"),
            .bytes = photos.bytes });
    };
    const std::stop_callback stop(watch.stop, [&photos] { photos.isStopped = true; });
    turn.act();
    photos.moved = {};
}

PhotoCleanup::Runner runner(RemovalQueue &queue)
{
    return [&queue](const PhotoCleanup::Turn &turn) {
        const auto done = std::make_shared<QPromise<void>>();
        done->start();
        const auto work = [turn](const RemovalQueue::Watch &watch) { act(turn, watch); };
        using Verb = RemovalQueue::Verb;
        queue.enqueue(
            { .verb = turn.task == PhotoCleanup::Task::puttingBack ? Verb::puttingBack : Verb::moving,
                .work = work,
                .end = [done] { done->finish(); } });
        return done->future();
    };
}

} // namespace

PhotosState::PhotosState(const Services &services, QObject *parent)
    : PaneState(parent)
    , m_revealer(services.revealer)
    , m_removals(services.removals)
    , m_photos({ .library = services.library,
          .questions = *this,
          .clock = services.clock,
          .run = services.removals != nullptr ? runner(*services.removals) : PhotoCleanup::Runner() })
{
    connect(&m_photos, &PhotoCleanup::accessChanged, this, &PhotosState::accessChanged);
    connect(&m_photos, &PhotoCleanup::accessChanged, this, &PhotosState::workChanged);
    connect(&m_photos, &PhotoCleanup::accessChanged, this, &PhotosState::resultChanged);
    connect(&m_photos, &PhotoCleanup::rangeChanged, this, &PhotosState::rangeChanged);
    connect(&m_photos, &PhotoCleanup::workingChanged, this, &PhotosState::workChanged);
    connect(&m_photos, &PhotoCleanup::progressChanged, this, &PhotosState::workChanged);
    connect(&m_photos, &PhotoCleanup::summaryChanged, this, &PhotosState::resultChanged);
    connect(&m_photos, &PhotoCleanup::lastResultChanged, this, &PhotosState::lastResultChanged);
    if (m_removals != nullptr)
        connect(m_removals, &RemovalQueue::busyChanged, this, &PhotosState::workChanged);
}

PhotosState::~PhotosState()
{
    answer(false);
}

void PhotosState::appear()
{
    m_photos.refreshAccess();
}

void PhotosState::recheck()
{
    m_photos.refreshAccess();
}

bool PhotosState::asksForAccess() const
{
    return m_photos.isAccessKnown() && m_photos.access() == PhotoAccess::notAsked;
}

bool PhotosState::isDeclined() const
{
    return m_photos.access() == PhotoAccess::denied;
}

bool PhotosState::hasPicker() const
{
    return m_photos.access() == PhotoAccess::granted || m_photos.access() == PhotoAccess::limited;
}

void PhotosState::allow()
{
    QMetaObject::invokeMethod(
        this, [this] { m_photos.requestAccess(); }, Qt::QueuedConnection);
}

QString PhotosState::measureText() const
{
    return m_photos.working() ? tr("Counting…") : tr("See what is in this range");
}

bool PhotosState::canMeasure() const
{
    return !m_photos.working();
}

QString PhotosState::progress() const
{
    if (m_photos.done() == 0)
        return {};
    const auto done = Format::count(m_photos.done());
    switch (m_photos.task()) {
    case PhotoCleanup::Task::counting:
        return tr("%1 files seen so far.").arg(done);
    case PhotoCleanup::Task::moving:
        return tr("%1 files moved so far.").arg(done);
    case PhotoCleanup::Task::puttingBack:
        return tr("%1 files put back so far.").arg(done);
    default:
        return {};
    }
}

bool PhotosState::hasResult() const
{
    return hasPicker() && m_photos.summary().count >= 1;
}

QString PhotosState::count() const
{
    return Format::count(m_photos.summary().count);
}

QString PhotosState::resultTitle() const
{
    return tr("%1 photos and videos").arg(count());
}

QString PhotosState::resultText() const
{
    return tr("roughly %1 — estimated from a sample of %2, not measured one by one")
        .arg(Format::bytes(m_photos.summary().bytes))
        .arg(m_photos.summary().sampled);
}

QString PhotosState::elsewhereText() const
{
    const auto &summary = m_photos.summary();
    if (summary.sampled < 1
        || static_cast<double>(summary.localCount) / static_cast<double>(summary.sampled) >= mostLieHere)
        return {};
    return tr("Only %1 of %2 sampled items are stored here — the rest are in iCloud, with small previews on "
              "disk. Deleting them would free very little space here while removing them from everywhere. "
              "This is almost certainly not what you want.")
        .arg(summary.localCount)
        .arg(summary.sampled);
}

QString PhotosState::emptyingText() const
{
    if (!m_photos.daysInTrash())
        return {};
    const auto days = *m_photos.daysInTrash();
    return days == 1 ? tr("Your desktop deletes what has been in the Trash for a day.")
                     : tr("Your desktop deletes what has been in the Trash for %1 days.").arg(days);
}

QString PhotosState::deleteText() const
{
    return tr("Delete these %1 items").arg(count());
}

bool PhotosState::canDelete() const
{
    return m_photos.access() == PhotoAccess::granted && mayChange();
}

bool PhotosState::mayChange() const
{
    return !m_photos.changing() && (m_removals == nullptr || !m_removals->isBusy());
}

QString PhotosState::confirmTitle() const
{
    return tr("Delete %1 photos and videos?").arg(count());
}

QString PhotosState::lastResult() const
{
    return m_photos.lastResult().value_or(QString());
}

QString PhotosState::furtherLines() const
{
    QStringList lines;
    for (const auto &line : m_photos.furtherLines())
        lines.append(singleLine(line));
    return lines.join(QLatin1Char('\n'));
}

bool PhotosState::canPutBack() const
{
    return m_photos.held().count > 0 && mayChange();
}

QString PhotosState::putBackText() const
{
    const auto count = m_photos.held().count;
    return count == 1 ? tr("Put 1 file back") : tr("Put %1 files back").arg(Format::count(count));
}

void PhotosState::showInTrash()
{
    if (const auto &place = m_photos.held().place)
        m_revealer.reveal(*place);
}

QFuture<bool> PhotosState::mayRead(const QStringList &folders)
{
    const auto text
        = tr("Quillbrook would read the names, dates and sizes of files in %1. It never opens any "
             "of them, and deletes nothing until you have confirmed it.");
    return ask(tr("Let Quillbrook count your pictures?"),
        text.arg(singleLine(folders.join(QLatin1String(", ")))), false);
}

QFuture<bool> PhotosState::mayDelete(qsizetype count)
{
    return ask(tr("Move %1 photos and videos to the Trash?").arg(Format::count(count)),
        tr("That is what the range holds now. Until the Trash is emptied, all of it can be put back."), true);
}

QFuture<bool> PhotosState::ask(const QString &title, const QString &text, bool isToDelete)
{
    answer(false);
    m_question.title = title;
    m_question.text = text;
    m_question.isToDelete = isToDelete;
    auto &promise = m_question.answer.emplace();
    promise.start();
    const auto future = promise.future();
    Q_EMIT questionChanged();
    return future;
}

QString PhotosState::questionYes() const
{
    return m_question.isToDelete ? tr("Move to Trash") : tr("Allow");
}

QString PhotosState::questionNo() const
{
    return m_question.isToDelete ? tr("Cancel") : tr("Don't allow");
}

void PhotosState::answer(bool isAllowed)
{
    if (!m_question.answer)
        return;
    auto question = std::exchange(m_question, {});
    Q_EMIT questionChanged();
    question.answer->addResult(isAllowed);
    question.answer->finish();
}

} // namespace Quillbrook

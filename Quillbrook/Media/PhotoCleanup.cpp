#include "Media/PhotoCleanup.h"

#include "Platform/Clock.h"

#include <QCoroFuture>
#include <QPointer>
#include <QtConcurrent>

#include <tuple>
#include <utility>

namespace Quillbrook {

namespace {

constexpr int yearsToBeginning = 5;
constexpr int yearsToEnd = 3;
constexpr int progressMilliseconds = 200;
// A file system that does not answer holds one of them up, and not the others.
constexpr int threads = 4;

QString nothingDeleted()
{
    return PhotoCleanup::tr("Nothing was deleted.");
}

QDateTime yearsBefore(const QDateTime &moment, int years)
{
    const auto before = moment.toLocalTime().addYears(-years);
    return before.isValid() ? before : moment;
}

} // namespace

PhotoCleanup::PhotoCleanup(const Services &services, QObject *parent)
    : QObject(parent)
    , m_library(services.library)
    , m_questions(services.questions)
    , m_run(services.run)
    , m_from(yearsBefore(services.clock.now(), yearsToBeginning))
    , m_to(yearsBefore(services.clock.now(), yearsToEnd))
{
    if (!m_run)
        m_run = [this](const Turn &turn) { return QtConcurrent::run(&m_pool, turn.act); };
    m_pool.setMaxThreadCount(threads);
    m_progress.setInterval(progressMilliseconds);
    connect(&m_progress, &QTimer::timeout, this, &PhotoCleanup::progressChanged);
}

PhotoCleanup::~PhotoCleanup()
{
    stop();
}

void PhotoCleanup::setFrom(const QDateTime &from)
{
    if (std::exchange(m_from, from) != from)
        Q_EMIT rangeChanged();
}

void PhotoCleanup::setTo(const QDateTime &to)
{
    if (std::exchange(m_to, to) != to)
        Q_EMIT rangeChanged();
}

void PhotoCleanup::setIncludeVideos(bool included)
{
    if (std::exchange(m_includeVideos, included) != included)
        Q_EMIT rangeChanged();
}

PhotoQuery PhotoCleanup::range() const
{
    return PhotoQuery::ofRange(m_from, m_to, m_includeVideos);
}

void PhotoCleanup::refreshAccess()
{
    askStatus();
    askHeld();
}

void PhotoCleanup::requestAccess()
{
    askForAccess();
}

void PhotoCleanup::measure()
{
    if (m_access == PhotoAccess::granted || m_access == PhotoAccess::limited)
        measureNow();
}

void PhotoCleanup::stop()
{
    for (const auto &work : m_measures)
        work->isStopped = true;
    if (m_change)
        m_change->isStopped = true;
}

void PhotoCleanup::deleteRange()
{
    if (m_access == PhotoAccess::granted && !changing())
        deleteNow();
}

void PhotoCleanup::putBack()
{
    if (!changing())
        putBackNow();
}

QCoro::Task<> PhotoCleanup::askStatus()
{
    const QPointer self(this);
    // Futures have names because the compiler destroys what is made in an awaiting expression twice.
    const auto asking = QtConcurrent::run(&m_pool, [library = &m_library] { return library->status(); });
    const auto access = co_await asking;
    if (self)
        self->setAccess(access);
}

QCoro::Task<> PhotoCleanup::askForAccess()
{
    const QPointer self(this);
    const auto asking = m_library.requestAccess(m_questions);
    const auto access = co_await asking;
    if (self)
        self->setAccess(access);
}

QCoro::Task<> PhotoCleanup::measureNow()
{
    const QPointer self(this);
    const auto work = std::make_shared<PhotoWork>();
    m_measures.push_back(work);
    followProgress();
    Q_EMIT workingChanged();
    const auto measuring = QtConcurrent::run(
        &m_pool, [library = &m_library, query = range(), work]() -> std::optional<PhotoSummary> {
            const auto assets = library->query(query, *work);
            return assets ? std::optional(PhotoSample::summary(*assets)) : std::nullopt;
        });
    const auto summary = co_await measuring;
    if (!self)
        co_return;
    if (summary && !work->isStopped) {
        m_summary = *summary;
        Q_EMIT summaryChanged();
    }
    std::erase(m_measures, work);
    followProgress();
    Q_EMIT workingChanged();
}

QCoro::Task<> PhotoCleanup::deleteNow()
{
    const QPointer self(this);
    const auto asking = QtConcurrent::run(
        &m_pool, [library = &m_library, query = range(), search = startChange(Task::counting)] {
            return library->query(query, *search);
        });
    const auto assets = co_await asking;
    if (!self)
        co_return;
    const bool isStopped = !assets || m_change->isStopped;
    if (isStopped || assets->count() == 0) {
        endChange();
        if (isStopped)
            setLastResult(nothingDeleted(), {});
        co_return;
    }
    const auto work = startChange(Task::moving);
    const auto asked = m_questions.mayDelete(assets->count());
    const bool isAllowed = co_await asked;
    if (!self)
        co_return;
    const auto deletion = std::make_shared<PhotoDeletion>();
    if (isAllowed) {
        const auto act = [library = &m_library, assets, work, deletion] {
            *deletion = library->deleteAssets(*assets, *work);
        };
        const auto deleting = m_run({ .task = Task::moving, .work = work, .act = act });
        co_await deleting;
        if (!self)
            co_return;
    }
    endChange();
    if (!deletion->succeeded) {
        setLastResult(nothingDeleted(), deletion->stranded);
        co_return;
    }
    setLastResult(tr("Moved %1 items to Recently Deleted. They stay there for 30 days — the space comes back "
                     "when that is emptied.")
                      .arg(assets->count()),
        {});
    measure();
}

QCoro::Task<> PhotoCleanup::putBackNow()
{
    const QPointer self(this);
    const auto work = startChange(Task::puttingBack);
    const auto result = std::make_shared<PhotoReturn>();
    const auto act = [library = &m_library, work, result] { *result = library->putBack(*work); };
    const auto returning = m_run({ .task = Task::puttingBack, .work = work, .act = act });
    co_await returning;
    if (!self)
        co_return;
    endChange();
    const auto sentence
        = result->returned == 1 ? tr("Put 1 file back.") : tr("Put %1 files back.").arg(result->returned);
    setLastResult(sentence, result->stayed);
}

QCoro::Task<> PhotoCleanup::askHeld()
{
    // The end of a change asks by itself, and until then the library would not answer.
    if (changing())
        co_return;
    const QPointer self(this);
    const auto asking = QtConcurrent::run(
        &m_pool, [library = &m_library] { return std::pair(library->held(), library->daysInTrash()); });
    const auto answer = co_await asking;
    if (!self)
        co_return;
    std::tie(m_held, m_daysInTrash) = answer;
    Q_EMIT progressChanged();
}

void PhotoCleanup::setAccess(PhotoAccess access)
{
    const bool wasKnown = std::exchange(m_isAccessKnown, true);
    if (std::exchange(m_access, access) != access || !wasKnown)
        Q_EMIT accessChanged();
}

void PhotoCleanup::setLastResult(const QString &text, const QStringList &furtherLines)
{
    m_lastResult = text;
    m_furtherLines = furtherLines;
    Q_EMIT lastResultChanged();
}

PhotoCleanup::Work PhotoCleanup::startChange(Task task)
{
    m_change = std::make_shared<PhotoWork>();
    m_changeTask = task;
    followProgress();
    Q_EMIT progressChanged();
    return m_change;
}

void PhotoCleanup::endChange()
{
    m_change.reset();
    followProgress();
    Q_EMIT progressChanged();
    askHeld();
}

void PhotoCleanup::followProgress()
{
    if (working() || changing())
        m_progress.start();
    else
        m_progress.stop();
}

PhotoCleanup::Task PhotoCleanup::task() const
{
    if (changing())
        return m_changeTask;
    return working() ? Task::counting : Task::none;
}

qsizetype PhotoCleanup::done() const
{
    if (m_change)
        return m_change->done;
    return m_measures.empty() ? 0 : m_measures.back()->done.load();
}

} // namespace Quillbrook

#include "Screens/Map/SelectionBarState.h"

#include "Core/AppModel.h"
#include "Platform/FileRevealer.h"
#include "Platform/HomeFolder.h"
#include "Scan/Format.h"
#include "Screens/SingleLine.h"

#include <QCoroFuture>
#include <QPointer>
#include <QThreadPool>
#include <QtConcurrent>

#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype fewestItemsTold = 2;
constexpr int threadsPerPool = 2;

// A file system that has stopped answering may hold a thread for ever. So these questions to the disk have
// pools of their own, where they keep no scan waiting, and the pools are never destroyed, because that would
// wait for the thread and the program could not end.
QThreadPool *newPool()
{
    auto *created = new QThreadPool;
    created->setMaxThreadCount(threadsPerPool);
    return created;
}

QThreadPool *countingPool()
{
    static auto *pool = newPool();
    return pool;
}

// Counting may take long, and the answer of the guards must not wait for it.
QThreadPool *judgingPool()
{
    static auto *pool = newPool();
    return pool;
}

} // namespace

SelectionBarState::SelectionBarState(AppModel &model, Counter counter, QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_removal(model.removals())
    , m_counter(std::move(counter))
{
    connect(&m_model.navigation(), &Navigation::selectionChanged, this, &SelectionBarState::refresh);
}

void SelectionBarState::refresh()
{
    setInside(std::nullopt);
    setJudgement(std::nullopt);
    Q_EMIT itemChanged();
    if (canOpen())
        count(*m_model.navigation().selection());
    if (present())
        judge(*m_model.navigation().selection());
}

QCoro::Task<> SelectionBarState::count(NodeSnapshot item)
{
    const QPointer self(this);
    // The future has a name because the compiler destroys what is made in an awaiting expression twice.
    const auto counting = QtConcurrent::run(
        countingPool(), [rawPath = m_model.navigation().rawPath(item), counter = m_counter] {
            return counter(rawPath, itemCap);
        });
    const auto inside = co_await counting;
    if (self && self->m_model.navigation().selection()
        && self->m_model.navigation().selection()->path == item.path)
        self->setInside(inside);
}

QCoro::Task<> SelectionBarState::judge(NodeSnapshot item)
{
    const QPointer self(this);
    const auto judging = QtConcurrent::run(judgingPool(),
        [refusal = m_model.pathRemovals().guardedPath(item), inode = m_model.pathRemovals().inodeOf(item)] {
            return Judgement{ .refusal = refusal(), .inode = inode() };
        });
    const auto judgement = co_await judging;
    if (self && self->m_model.navigation().selection() == item)
        self->setJudgement(judgement);
}

void SelectionBarState::setJudgement(const std::optional<Judgement> &judgement)
{
    if (m_judgement == judgement)
        return;
    m_judgement = judgement;
    Q_EMIT refusalChanged();
}

void SelectionBarState::setInside(const std::optional<PathRemoval::ItemCount> &inside)
{
    if (m_inside == inside)
        return;
    m_inside = inside;
    Q_EMIT itemsChanged();
    Q_EMIT confirmChanged();
}

bool SelectionBarState::present() const
{
    return m_model.navigation().selection().has_value();
}

QString SelectionBarState::symbol() const
{
    return canOpen() ? u"folder.fill"_s : u"doc.fill"_s;
}

QString SelectionBarState::name() const
{
    return present() ? singleLine(m_model.navigation().selection()->name) : QString();
}

QString SelectionBarState::size() const
{
    return present() ? Format::bytes(m_model.navigation().selection()->bytes) : QString();
}

QString SelectionBarState::path() const
{
    if (!present())
        return {};
    const auto home = m_model.services().kit.home.homeDirectory();
    return singleLine(Format::friendlyPath(m_model.navigation().selection()->path, home));
}

bool SelectionBarState::canOpen() const
{
    return present() && m_model.navigation().selection()->isDirectory;
}

QString SelectionBarState::items() const
{
    if (!m_inside || m_inside->count < fewestItemsTold)
        return {};
    const auto count = Format::count(m_inside->count);
    return m_inside->capped ? tr("over %1 items").arg(count) : tr("%1 items").arg(count);
}

QString SelectionBarState::refusal() const
{
    return m_judgement && m_judgement->refusal ? *m_judgement->refusal : QString();
}

bool SelectionBarState::removable() const
{
    return m_judgement && !m_judgement->refusal;
}

void SelectionBarState::askToRemove(bool permanently)
{
    if (!removable() || m_removal.busy())
        return;
    m_asked = m_model.navigation().selection();
    m_askedInode = m_judgement->inode;
    m_permanently = permanently;
    Q_EMIT confirmChanged();
    Q_EMIT removeAsked();
}

void SelectionBarState::remove()
{
    if (const auto asked = std::exchange(m_asked, std::nullopt);
        asked && asked == m_model.navigation().selection())
        m_model.pathRemovals().removeSelected(m_permanently, m_askedInode);
}

QString SelectionBarState::confirmTitle() const
{
    return (m_permanently ? tr("Delete %1 permanently?") : tr("Move %1 to the Trash?"))
        .arg(m_asked ? singleLine(m_asked->name) : QString());
}

QString SelectionBarState::confirmAction() const
{
    return m_permanently ? tr("Delete permanently") : tr("Move to Trash");
}

QString SelectionBarState::confirmMessage() const
{
    QStringList sentences;
    if (const auto held = items(); held.isEmpty())
        sentences.append(tr("%1 at %2.").arg(size(), path()));
    else
        sentences.append(tr("%1, %2, at %3.").arg(held.first(1).toUpper() + held.sliced(1), size(), path()));
    if (m_permanently)
        sentences.append(tr("This cannot be undone."));
    else
        sentences.append(
            tr("It goes to the Trash and can be put back. The space comes back once the Trash is emptied."));
    if (m_permanently && m_model.reclaims().safetyNet() && m_model.reclaims().safetyNet()->isUnprotected())
        sentences.append(tr("This Mac has no backup, so there is no other copy."));
    sentences.append(
        tr("Quillbrook did not suggest this item — you chose it off the map, so it has no idea what is "
           "inside."));
    return sentences.join(u' ');
}

void SelectionBarState::open()
{
    if (!canOpen() || !m_model.scans().tree())
        return;
    // A selection that was taken from an older tree may name another node of this one.
    const auto node = m_model.navigation().selection()->id;
    if (m_model.scans().tree()->snapshot(node) != m_model.navigation().selection())
        return;
    m_model.navigation().drillInto(node);
    m_model.navigation().setRequestedPane(Pane::map);
}

void SelectionBarState::reveal()
{
    if (present())
        m_model.services().revealer.reveal(m_model.navigation().rawPath(*m_model.navigation().selection()));
}

void SelectionBarState::dismiss()
{
    m_model.navigation().setSelection(std::nullopt);
}

} // namespace Quillbrook

#include "Screens/SelectionBarState.h"

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

namespace {

constexpr qsizetype fewestItemsTold = 2;
constexpr int countingThreads = 2;

// Counting has threads of its own, and they outlive everything: on a file system that has stopped answering
// a count never ends, and must keep neither a scan from starting nor the program from ending.
QThreadPool &countingPool()
{
    static auto *pool = [] {
        auto *created = new QThreadPool;
        created->setMaxThreadCount(countingThreads);
        return created;
    }();
    return *pool;
}

} // namespace

SelectionBarState::SelectionBarState(AppModel &model, Counter counter, QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_counter(std::move(counter))
{
    connect(&m_model, &AppModel::selectionChanged, this, &SelectionBarState::refresh);
}

void SelectionBarState::refresh()
{
    setInside(std::nullopt);
    Q_EMIT itemChanged();
    if (canOpen())
        count(*m_model.selection());
}

QCoro::Task<> SelectionBarState::count(NodeSnapshot item)
{
    const QPointer self(this);
    // The future has a name because the compiler destroys what is made in an awaiting expression twice.
    const auto counting = QtConcurrent::run(&countingPool(),
        [rawPath = m_model.rawPath(item), counter = m_counter] { return counter(rawPath, itemCap); });
    const auto inside = co_await counting;
    if (self && self->m_model.selection() && self->m_model.selection()->path == item.path)
        self->setInside(inside);
}

void SelectionBarState::setInside(const std::optional<PathRemoval::ItemCount> &inside)
{
    if (m_inside == inside)
        return;
    m_inside = inside;
    Q_EMIT itemsChanged();
}

bool SelectionBarState::present() const
{
    return m_model.selection().has_value();
}

QString SelectionBarState::symbol() const
{
    return canOpen() ? QStringLiteral("folder.fill") : QStringLiteral("doc.fill");
}

QString SelectionBarState::name() const
{
    return present() ? singleLine(m_model.selection()->name) : QString();
}

QString SelectionBarState::size() const
{
    return present() ? Format::bytes(m_model.selection()->bytes) : QString();
}

QString SelectionBarState::path() const
{
    if (!present())
        return {};
    const auto home = m_model.services().kit.home.homeDirectory();
    return singleLine(Format::friendlyPath(m_model.selection()->path, home));
}

bool SelectionBarState::canOpen() const
{
    return present() && m_model.selection()->isDirectory;
}

QString SelectionBarState::items() const
{
    if (!m_inside || m_inside->count < fewestItemsTold)
        return {};
    const auto count = Format::count(m_inside->count);
    return m_inside->capped ? tr("over %1 items").arg(count) : tr("%1 items").arg(count);
}

void SelectionBarState::open()
{
    if (!canOpen() || !m_model.tree())
        return;
    // A selection that was taken from an older tree may name another node of this one.
    const auto node = m_model.selection()->id;
    if (m_model.tree()->snapshot(node) != m_model.selection())
        return;
    m_model.drillInto(node);
    m_model.setRequestedPane(Pane::map);
}

void SelectionBarState::reveal()
{
    if (present())
        m_model.services().revealer.reveal(m_model.rawPath(*m_model.selection()));
}

void SelectionBarState::dismiss()
{
    m_model.setSelection(std::nullopt);
}

} // namespace Quillbrook

#include "Core/PathRemovals.h"

#include "Core/ChangedFolders.h"
#include "Core/LogLine.h"
#include "Core/Navigation.h"
#include "Core/RemovalBooks.h"
#include "Core/Translation.h"
#include "Core/VolumeFigures.h"
#include "Platform/FileFacts.h"
#include "Platform/HomeFolder.h"
#include "Removal/CappedSum.h"
#include "Removal/HostGuards.h"
#include "Removal/RemovalServices.h"
#include "Scan/Format.h"

#include <memory>
#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

PathRemovals::PathRemovals(const KitServices &kit, const Others &others, QObject *parent)
    : QObject(parent)
    , m_kit(kit)
    , m_navigation(others.navigation)
    , m_volume(others.volume)
    , m_books(others.books)
{
}

std::function<std::optional<QString>()> PathRemovals::guardedPath(const NodeSnapshot &snapshot) const
{
    // For a person to read; the log, which a refused removal ends in, stays English.
    auto guards = m_kit.guards;
    guards.wording = translatedTableText;
    return [path = m_navigation.rawPath(snapshot), home = m_kit.home.rawHomeDirectory(),
               guards = std::move(guards)] { return PathRemoval::refusal(path, home, &guards); };
}

std::function<std::uint64_t()> PathRemovals::inodeOf(const NodeSnapshot &snapshot) const
{
    return [path = m_navigation.rawPath(snapshot)] { return inodeAt(path).value_or(0); };
}

void PathRemovals::removeSelected(bool permanent, std::uint64_t inode)
{
    const auto selected = m_navigation.selection();
    if (!selected)
        return;
    struct Removing
    {
        NodeSnapshot item{};
        PathRemoval::Item order{};
        std::optional<PathRemoval::Removal> removal{};
    };
    const auto removing = std::make_shared<Removing>();
    removing->item = *selected;
    removing->order = { .path = m_navigation.rawPath(*selected),
        .bytes = selected->bytes,
        .label = selected->name,
        .picked = PathRemoval::Picked{ .isDirectory = selected->isDirectory, .inode = inode } };
    const auto work
        = [this, removing, permanent](const RemovalQueue::Watch &watch, const Books &books) -> qint64 {
        if (watch.stop.stop_requested())
            return 0;
        watch.progress({ .number = 1, .count = 1, .name = removing->order.label });
        const PathRemoval::Manner manner{ .permanent = permanent,
            .home = m_kit.home.rawHomeDirectory(),
            .host = &m_kit.guards,
            .journal = &books.journal };
        const auto removal = PathRemoval::remove(RemovalServices::of(m_kit), removing->order, manner);
        if (removal.trashed)
            books.ledger.record({ *removal.trashed });
        removing->removal = removal;
        return removal.bytes;
    };
    const auto changed = [removing] {
        return removing->removal ? ChangedFolders::of(std::vector{ *removing->removal })
                                 : std::vector<std::string>();
    };
    const auto end = [this, removing, permanent] {
        if (removing->removal)
            takeSelected(*removing->removal, removing->item, permanent);
    };
    m_books.run({ .verb = permanent ? RemovalQueue::Verb::deleting : RemovalQueue::Verb::moving,
        .work = work,
        .changed = changed,
        .end = end });
}

void PathRemovals::takeSelected(const PathRemoval::Removal &removal, const NodeSnapshot &item, bool permanent)
{
    if (removal.error)
        return Q_EMIT selectionTold(LogLine::failed(*removal.error));
    const auto fate = permanent ? u"removed"_s : u"moved to the Trash"_s;
    Q_EMIT selectionTold(LogLine::done(u"%1 — %2 %3"_s.arg(item.name, Format::bytes(item.bytes), fate)));
    // Another thing may have been selected meanwhile.
    if (m_navigation.selection() == item)
        m_navigation.setSelection(std::nullopt);
    m_volume.refreshVolume();
}

void PathRemovals::removeBy(const Work &work, const QString &subject, const std::function<void()> &done)
{
    const auto removals = std::make_shared<std::vector<PathRemoval::Removal>>();
    const auto onThread = [removals, work](const RemovalQueue::Watch &watch, const Books &books) {
        *removals = work(watch, books.journal);
        std::vector<TrashedItem> rows;
        qint64 bytes = 0;
        for (const auto &removal : *removals) {
            bytes = cappedSum(bytes, removal.bytes);
            if (removal.trashed)
                rows.push_back(*removal.trashed);
        }
        if (!rows.empty())
            books.ledger.record(rows);
        return bytes;
    };
    const auto end = [this, removals, subject, done] {
        takeRemovals(*removals, subject);
        if (done)
            done();
    };
    m_books.run(
        { .work = onThread, .changed = [removals] { return ChangedFolders::of(*removals); }, .end = end });
}

void PathRemovals::takeRemovals(const std::vector<PathRemoval::Removal> &removals, const QString &subject)
{
    qint64 total = 0;
    for (const auto &removal : removals) {
        if (removal.error)
            m_uninstallLog.prepend(LogLine::failed(*removal.error));
        else
            total = cappedSum(total, removal.bytes);
    }
    if (total > 0)
        m_uninstallLog.prepend(LogLine::done(
            u"%1 — %2 moved to the Trash. The space comes back when the Trash is emptied."_s.arg(
                subject, Format::bytes(total))));
    Q_EMIT uninstallLogChanged();
    m_volume.refreshVolume();
}

void PathRemovals::tellOfUninstalling(bool isDone, const QString &what)
{
    m_uninstallLog.prepend(isDone ? LogLine::done(what) : LogLine::failed(what));
    Q_EMIT uninstallLogChanged();
    m_volume.refreshVolume();
}

} // namespace Quillbrook

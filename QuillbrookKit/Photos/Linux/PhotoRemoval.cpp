#include "Photos/Linux/PhotoRemoval.h"

#include "Photos/Linux/PhotoStatus.h"
#include "Platform/FileFacts.h"
#include "Platform/Trash.h"
#include "RawText.h"
#include "Removal/BookedMove.h"
#include "Removal/PathRemoval.h"

#include <QCoreApplication>
#include <QDebug>

#include <algorithm>
#include <fcntl.h>
#include <ranges>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

qsizetype fileCount(const LinuxPhotoAssets &assets)
{
    size_t count = 0;
    for (const auto &shot : assets.shots())
        count += shot.files.size();
    return static_cast<qsizetype>(count);
}

std::expected<TrashedItem, QString> stopped()
{
    return std::unexpected(QCoreApplication::translate("PhotoRemoval", "It was stopped."));
}

QString stays(const TrashedItem &item, const QString &why)
{
    return QCoreApplication::translate("PhotoRemoval", "%1 is still in the Trash: %2").arg(item.label, why);
}

} // namespace

std::string PhotoRemoval::standardList(const std::string &dataFolder)
{
    return dataFolder + "/Quillbrook/photos.jsonl";
}

PhotoRemoval::PhotoRemoval(const Services &services)
    : m_services(services)
    , m_list(services.reading, services.writing, services.list)
{
    takeUp();
}

// What a kill has cut short can be put back like what went whole. On the way into the Trash, and on the way
// back, it may have left one note without its file.
void PhotoRemoval::takeUp()
{
    if (m_list.units().empty())
        return;
    if (m_list.units().back().state == JournalUnit::State::open)
        m_list.fail({});
    for (const auto &unit : m_list.units())
        for (const auto &item : unit.moves)
            if (item.identity)
                m_services.removal.trash.dropLoneNote(item.trashPath, item.identity->note);
}

PhotoDeletion PhotoRemoval::moveAll(const LinuxPhotoAssets &assets, PhotoWork &work)
{
    if (!m_list.units().empty())
        m_list.close(m_services.removal.trash);
    if (const auto begun = m_list.begin({ .title = u"photos"_s, .planned = fileCount(assets) }); !begun) {
        qWarning("Quillbrook: no picture was moved: %s", qPrintable(begun.error()));
        return {};
    }
    const auto openFolders = m_services.removal.trash.hold();
    work.total = fileCount(assets);
    std::vector<TrashedItem> moved;
    for (const auto &shot : assets.shots()) {
        for (const auto &file : shot.files) {
            auto row = work.isStopped ? stopped() : move(assets, file);
            if (!row) {
                qWarning("Quillbrook: a picture could not be moved: %s", qPrintable(row.error()));
                return { .stranded = returnAll(moved) };
            }
            moved.push_back(std::move(*row));
            work.advance(file.bytes);
        }
    }
    // Kept for putting back, and for nothing else.
    m_list.fail({});
    return { .succeeded = true };
}

std::expected<TrashedItem, QString> PhotoRemoval::move(const LinuxPhotoAssets &assets, const PhotoFile &file)
{
    const auto path = assets.path(file);
    if (const auto sentence = PathRemoval::refusal(path, m_services.home, m_services.removal.guards))
        return std::unexpected(*sentence);
    return BookedMove::entry(m_services.removal, &m_list,
        { .label = repairedText(file.name), .originalPath = path, .bytes = file.bytes },
        [&](const TakenThing &thing) { return objection(thing, file, path); });
}

// Why what lies there now is not to be taken. `judged` is the path that the guards have let pass.
std::optional<QString> PhotoRemoval::objection(
    const TakenThing &thing, const PhotoFile &file, const std::string &judged) const
{
    const auto status = PhotoStatus::of(AT_FDCWD, thing.path.c_str());
    if (thing.inode != file.inode || !status || status->inode != file.inode || status->born != file.born)
        return QCoreApplication::translate("PhotoRemoval", "It is not the file that was counted.");
    if (thing.path == judged)
        return std::nullopt;
    return PathRemoval::refusal(thing.path, m_services.home, m_services.removal.guards);
}

// The last first, so that names in the Trash that were given one after the other end so.
QStringList PhotoRemoval::returnAll(const std::vector<TrashedItem> &moved)
{
    QStringList stranded;
    for (const auto &item : moved | std::views::reverse) {
        const auto from = item.provenance();
        if (const auto back = m_services.removal.trash.restore(item.trashPath, item.originalPath, &from);
            !back)
            stranded.append(stays(item, back.error()));
    }
    m_list.fail({});
    m_list.close(m_services.removal.trash);
    return stranded;
}

std::vector<TrashedItem> PhotoRemoval::held() const
{
    std::vector<TrashedItem> held;
    for (const auto &unit : m_list.units())
        for (const auto &item : unit.moves)
            if (m_services.removal.trash.isStill(item.trashPath, item.provenance()))
                held.push_back(item);
    return held;
}

PhotoReturn PhotoRemoval::putBack(PhotoWork &work)
{
    PhotoReturn result;
    const auto openFolders = m_services.removal.trash.hold();
    const auto items = held();
    work.total = static_cast<qsizetype>(items.size());
    for (const auto &item : items) {
        if (work.isStopped)
            break;
        const auto from = item.provenance();
        if (const auto back = m_services.removal.trash.restore(item.trashPath, item.originalPath, &from);
            back)
            ++result.returned;
        else
            result.stayed.append(stays(item, back.error()));
        work.advance(item.bytes);
    }
    m_list.close(m_services.removal.trash);
    return result;
}

} // namespace Quillbrook

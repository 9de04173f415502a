#include "Removal/TrashLedger.h"

#include "Platform/FileFacts.h"
#include "Platform/FileReading.h"
#include "Platform/FileWriting.h"
#include "Platform/Trash.h"
#include "Removal/CappedSum.h"
#include "Removal/IdentityFormat.h"
#include "Removal/LedgerFormat.h"

#include <QtGlobal>

#include <algorithm>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

// About half a million rows; a longer file is not what a ledger grows to.
constexpr qsizetype maximumStoreBytes = qsizetype{ 256 } * 1024 * 1024;

// The paths come from a file, which can say anything. Below a relative one lies whatever the program was
// started in, and the system reads one with a zero byte only up to there: neither is a place in the Trash.
bool isPlace(const std::string &path)
{
    return path.starts_with('/') && !path.contains('\0');
}

void log(const QString &message)
{
    qWarning("Quillbrook: %s", qUtf8Printable(message));
}

} // namespace

std::string TrashLedger::standardStore(const std::string &dataFolder)
{
    return dataFolder + "/Quillbrook/ledger.json";
}

std::string TrashLedger::identitiesBeside(const std::string &store)
{
    return store.substr(0, store.find_last_of('/') + 1) + "identities.json";
}

TrashLedger::TrashLedger(const LedgerServices &services, std::string storePath)
    : m_services(services)
    , m_storePath(std::move(storePath))
{
    load();
}

void TrashLedger::record(const std::vector<TrashedItem> &items)
{
    m_items.insert(m_items.end(), items.begin(), items.end());
    save();
}

TrashLedger::Purged TrashLedger::purge()
{
    return purge(m_items);
}

TrashLedger::Purged TrashLedger::purge(const std::vector<TrashedItem> &items, const Watch &watch)
{
    Purged purged;
    QSet<QString> tried;
    const auto due = stillInTrash(items);
    for (const auto &item : due) {
        if (watch.stop.stop_requested())
            break;
        tried.insert(item.id);
        if (watch.before)
            watch.before(tried.size(), static_cast<qsizetype>(due.size()), item, purged.bytes);
        const auto from = item.provenance();
        if (const auto erased = m_services.trash.erase(item.trashPath, &from); !erased) {
            log(u"could not purge %1 — %2"_s.arg(QString::fromStdString(item.trashPath), erased.error()));
            continue;
        }
        ++purged.removed;
        purged.bytes = cappedSum(purged.bytes, item.bytes);
    }
    forget(tried);
    return purged;
}

void TrashLedger::finishPurging()
{
    std::vector<GoneThing> gone;
    for (const auto &item : m_items)
        if (isPlace(item.trashPath) && !m_services.trash.isStill(item.trashPath, item.provenance()))
            gone.push_back({ .trashPath = item.trashPath, .from = item.provenance() });
    if (!gone.empty())
        m_services.trash.finishErasing(gone);
}

std::expected<void, QString> TrashLedger::putBack(const TrashedItem &item) const
{
    const auto from = item.provenance();
    return isPlace(item.trashPath) ? m_services.trash.restore(item.trashPath, item.originalPath, &from)
                                   : std::unexpected(Trash::somethingElse());
}

void TrashLedger::forget(const QSet<QString> &ids)
{
    std::erase_if(m_items, [&](const TrashedItem &item) { return ids.contains(item.id); });
    save();
}

bool TrashLedger::restore(const TrashedItem &item)
{
    if (!stillInTrash(item))
        return false;
    const auto moved = putBack(item);
    if (moved)
        forget({ item.id });
    else
        log(u"restore failed — %1"_s.arg(moved.error()));
    return moved.has_value();
}

void TrashLedger::prune()
{
    if (std::erase_if(m_items, [this](const TrashedItem &item) { return !stillInTrash(item); }) > 0)
        save();
}

TrashLedger::Pending TrashLedger::pending() const
{
    Pending pending;
    for (const auto &item : m_items) {
        if (!stillInTrash(item))
            continue;
        ++pending.count;
        pending.bytes = cappedSum(pending.bytes, item.bytes);
    }
    return pending;
}

bool TrashLedger::stillInTrash(const TrashedItem &item) const
{
    return isPlace(item.trashPath) && m_services.files.kind(item.trashPath).has_value();
}

std::vector<TrashedItem> TrashLedger::exchanged() const
{
    auto items = stillInTrash(m_items);
    std::erase_if(items, [this](const TrashedItem &item) {
        return m_services.trash.isStill(item.trashPath, item.provenance());
    });
    return items;
}

std::vector<TrashedItem> TrashLedger::ruleItemsDue(const QDateTime &now, qint64 freeBytes) const
{
    const bool isCritical = freeBytes < criticalFreeBytes;
    std::vector<TrashedItem> due;
    for (const auto &item : m_items) {
        const bool isByRule = item.byRule.value_or(false);
        const bool hasLainLongEnough = item.movedAt.msecsTo(now) >= ruleGracePeriodSeconds * 1000;
        if (isByRule && (isCritical || hasLainLongEnough) && stillInTrash(item))
            due.push_back(item);
    }
    return due;
}

void TrashLedger::load()
{
    const auto stored = m_services.reading.contents(m_storePath, maximumStoreBytes);
    m_items = stored ? LedgerFormat::decode(*stored).value_or(m_items) : m_items;
    loadIdentities();
}

void TrashLedger::loadIdentities()
{
    const auto stored = m_services.reading.contents(identitiesBeside(m_storePath), maximumStoreBytes);
    m_hasIdentities = stored.has_value();
    const auto identities = IdentityFormat::decode(stored.value_or(QByteArray()));
    for (auto &item : m_items)
        if (const auto found = identities.constFind(item.id); found != identities.cend())
            item.identity = *found;
}

// Before the ledger: a row that has lost its identity is trusted less, an identity without a row is nothing.
bool TrashLedger::saveIdentities()
{
    const auto has = [](const TrashedItem &item) { return item.identity.has_value(); };
    if (!m_hasIdentities && std::ranges::none_of(m_items, has))
        return true;
    m_hasIdentities = true;
    return m_services.writing.replace(identitiesBeside(m_storePath), IdentityFormat::encode(m_items))
        .has_value();
}

void TrashLedger::save()
{
    // A failure is told to nobody: the rows here stay right, and the next save writes them again.
    const bool hasIdentities = saveIdentities();
    m_isSaved = m_services.writing.replace(m_storePath, LedgerFormat::encode(m_items)) && hasIdentities;
}

std::vector<TrashedItem> TrashLedger::stillInTrash(const std::vector<TrashedItem> &items) const
{
    std::vector<TrashedItem> there;
    std::ranges::copy_if(
        items, std::back_inserter(there), [this](const TrashedItem &item) { return stillInTrash(item); });
    return there;
}

} // namespace Quillbrook

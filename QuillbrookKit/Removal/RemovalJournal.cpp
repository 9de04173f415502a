#include "Removal/RemovalJournal.h"

#include "Platform/FileReading.h"
#include "Platform/FileWriting.h"
#include "Platform/Trash.h"

#include <algorithm>
#include <tuple>

namespace Quillbrook {

namespace {

// Some hundred thousand entries; a clearance of more is closed before it is read again, or not at all.
constexpr qsizetype maximumBytes = qsizetype{ 512 } * 1024 * 1024;

} // namespace

std::string RemovalJournal::besideLedger(const std::string &ledger)
{
    return ledger.substr(0, ledger.find_last_of('/') + 1) + "journal.jsonl";
}

RemovalJournal::RemovalJournal(const FileReading &reading, FileWriting &writing, std::string path)
    : m_writing(writing)
    , m_path(std::move(path))
{
    const auto stored = reading.contents(m_path, maximumBytes);
    m_isFileThere = stored.has_value();
    auto content = JournalFormat::decode(stored.value_or(QByteArray()));
    m_total = content.total;
    m_isTotalWritten = m_total.has_value();
    m_units = std::move(content.units);
    m_leaving = std::move(content.leaving);
}

void RemovalJournal::startBatch(qint64 total)
{
    if (!m_isTotalWritten)
        m_total = total;
}

std::expected<void, QString> RemovalJournal::begin(JournalUnit unit)
{
    const auto batch = m_total && !m_isTotalWritten ? JournalFormat::batch(*m_total) : QByteArray();
    if (auto written = m_writing.append(m_path, batch + JournalFormat::begin(unit)); !written)
        return written;
    m_isTotalWritten = m_total.has_value();
    m_isFileThere = true;
    m_units.push_back(std::move(unit));
    return {};
}

std::expected<void, QString> RemovalJournal::plan(const TrashedItem &item)
{
    if (auto written = m_writing.append(m_path, JournalFormat::move(item)); !written)
        return written;
    m_units.back().moves.push_back(item);
    return {};
}

void RemovalJournal::fail(const QString &id)
{
    auto &unit = m_units.back();
    unit.state = JournalUnit::State::failed;
    // Its lines are the last ones; those before them can be a hundred thousand.
    while (!unit.moves.empty() && unit.moves.back().id == id)
        unit.moves.pop_back();
    write(JournalFormat::failed(id));
}

void RemovalJournal::settle()
{
    auto &unit = m_units.back();
    if (unit.state != JournalUnit::State::open)
        return;
    unit.state = JournalUnit::State::whole;
    write(JournalFormat::whole());
}

void RemovalJournal::leave(const TrashedItem &item)
{
    m_isFileThere |= m_writing.append(m_path, JournalFormat::leave(item)).has_value();
}

// Without this line the next start takes the finding for one that a kill has cut short, and goes by what lies
// in the Trash.
void RemovalJournal::write(const QByteArray &lines)
{
    std::ignore = m_writing.append(m_path, lines);
}

void RemovalJournal::close(const Trash &trash)
{
    for (auto &unit : m_units)
        std::erase_if(unit.moves, [&](const TrashedItem &item) {
            return !unit.isOnlyHere()
                || (!trash.isStill(item.trashPath, item.provenance()) && !trash.isAway(item.trashPath));
        });
    std::erase_if(m_units, [](const JournalUnit &unit) { return unit.moves.empty(); });
    m_leaving.clear();
    m_total.reset();
    m_isTotalWritten = false;
    save();
}

void RemovalJournal::forget(const QSet<QString> &ids)
{
    for (auto &unit : m_units)
        if (unit.isOnlyHere())
            std::erase_if(unit.moves, [&](const TrashedItem &item) { return ids.contains(item.id); });
    save();
}

// A failure costs nothing: what stands there too long is found to be in the ledger already, and counted.
void RemovalJournal::save()
{
    const auto batch = m_isTotalWritten ? JournalFormat::batch(*m_total) : QByteArray();
    if (m_isFileThere)
        std::ignore = m_writing.replace(m_path, batch + JournalFormat::encode(m_units));
}

} // namespace Quillbrook

#pragma once

// Clears findings one after the other, to the Trash with the journal before each move, or for good. What has
// gone is then entered by `Books`. Synchronous, for a worker thread; everything that it refers to is used by
// nobody else meanwhile.

#include "Removal/Reclaimer.h"

#include <functional>
#include <stop_token>

namespace Quillbrook {

class Clearance
{
public:
    struct Order
    {
        QList<Finding> findings{};
        Reclaimer::Disposal disposal = Reclaimer::Disposal::toTrash;
        bool byRule = false;
    };

    /// Told before each entry goes. Counts begin at 1; `bytes` is what the entries before it came to.
    struct Progress
    {
        qsizetype finding = 0;
        qsizetype findings = 0;
        qsizetype entry = 0;
        qsizetype entries = 0;
        QString title{};
        QString name{};
        qint64 bytes = 0;

        bool operator==(const Progress &) const = default;
    };

    struct Watch
    {
        std::function<void(const Progress &)> progress{};
        /// Obeyed between two entries.
        std::stop_token stop{};
    };

    /// `home` is absolute, in raw bytes, without a slash at its end. What is referred to outlives this
    /// object.
    Clearance(const RemovalServices &services, RemovalJournal &journal, std::string home);

    /// The outcomes in order. The journal's batch has begun. After a stop the finding that was being cleared
    /// is a failed one, and those that were not begun have none.
    [[nodiscard]] std::vector<Reclaimer::Outcome> clear(const Order &order, const Watch &watch);

private:
    RemovalServices m_services;
    RemovalJournal &m_journal;
    std::string m_home;
};

} // namespace Quillbrook

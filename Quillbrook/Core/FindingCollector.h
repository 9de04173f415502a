#pragma once

// Carries findings from the quick stage of a scan, which runs on a pool thread, to the main thread, which
// fetches them now and then. Every function may be called from any thread.

#include "Catalogue/Finding.h"

#include <QList>

#include <mutex>
#include <optional>

namespace Quillbrook {

class FindingCollector
{
public:
    /// What has been found up to one moment.
    struct Found
    {
        /// Largest first; equal sizes in the order in which they came.
        QList<Finding> findings{};
        /// The title of the latest finding's rule.
        std::optional<QString> latest{};
        /// Nothing more will come.
        bool finished = false;
    };

    /// Returns how many there are then.
    qsizetype add(const Finding &finding);
    void finish();
    [[nodiscard]] Found found() const;

private:
    mutable std::mutex m_lock;
    QList<Finding> m_items;
    std::optional<QString> m_latest;
    bool m_finished = false;
};

} // namespace Quillbrook

#pragma once

// Runs complete scans of a model one after another, each after the first a rescan that drops a tree, watches
// the main thread meanwhile, and then ends the event loop. Main thread only.

#include "Core/Pane.h"
#include "StallMonitor.h"

#include <QJsonObject>
#include <QList>
#include <QObject>

namespace Quillbrook {
class AppModel;
}

namespace Quillbrook::Benchmarks {

class WatchedScans : public QObject
{
    Q_OBJECT

public:
    /// One scan for each of `panes`, with that pane shown. The model outlives it.
    WatchedScans(AppModel &model, QList<Pane> panes);

    /// Runs the application's event loop until all scans are done; its exit code, 1 when that takes longer
    /// than two minutes.
    [[nodiscard]] int run();

    /// How long the main thread stood still at most.
    [[nodiscard]] QJsonObject figures() const;

private:
    void goOn();

    AppModel &m_model;
    QList<Pane> m_panes;
    qsizetype m_next = 0;
    StallMonitor m_monitor;
};

} // namespace Quillbrook::Benchmarks

#pragma once

// Makes the state of every pane and tells it when the pane appears and disappears. Main thread only; the
// model and the adviser outlive it.

#include "Core/Pane.h"

#include <QObject>
#include <QVariantMap>

#include <map>
#include <optional>

namespace Quillbrook {

class Advisor;
class AppModel;
class PaneState;

class PaneStates : public QObject
{
    Q_OBJECT

public:
    PaneStates(AppModel &model, Advisor &advisor, QObject *parent = nullptr);

    /// Nothing for a pane that is not there yet.
    [[nodiscard]] PaneState *state(Pane pane) const;
    /// The properties that the pane's file is made with: its state, and whatever else it shows.
    [[nodiscard]] QVariantMap properties(Pane pane) const;

    /// Says which pane is shown; none while the window is closed.
    void show(const std::optional<Pane> &pane);
    /// The pane that is shown asks again for what other programs may have changed.
    void recheck();
    /// Offers the keyboard to the pane that is shown.
    void offerKeyboard();

private:
    struct Entry
    {
        PaneState *state = nullptr;
        QVariantMap properties{};
    };

    void add(Pane pane, PaneState *state, const QVariantMap &others = {});
    [[nodiscard]] PaneState *shownState() const;

    std::map<Pane, Entry> m_entries;
    std::optional<Pane> m_shown;
};

} // namespace Quillbrook

#pragma once

// The screens of the main window and the table of what belongs to each. A new one is a value of the
// enumeration and a row of the table; `PaneStates` makes its state.

#include <QObject>
#include <QString>
#include <QtGlobal>
#include <QtQmlIntegration>

#include <array>
#include <cstddef>
#include <utility>

namespace Quillbrook {

Q_NAMESPACE
QML_NAMED_ELEMENT(Panes)

enum class Pane { warden, map, largest, search, photos, rules, offload, apps, stats, advisor };
Q_ENUM_NS(Pane)

struct PaneRow
{
    Pane pane;
    /// Its name, which is also its identity.
    const char *title;
    /// Name of its symbol in the symbol set.
    const char *symbol;
    /// The digit that chooses it together with the command modifier.
    int digit;
    /// Its QML file, below the folder of the screens; empty for a pane that is not there yet.
    const char *file = "";
    /// The property of that file that takes the pane's state.
    const char *state = "";
};

/// In sidebar order. The digit is the position plus one, modulo 10.
inline constexpr std::array paneTable{
    PaneRow{ Pane::warden, QT_TRANSLATE_NOOP("Panes", "Free up space"), "shield.lefthalf.filled", 1,
        "Warden/WardenPane.qml", "warden" },
    PaneRow{ Pane::map, QT_TRANSLATE_NOOP("Panes", "What's using space"), "square.grid.2x2", 2,
        "Map/MapPane.qml", "map" },
    PaneRow{ Pane::largest, QT_TRANSLATE_NOOP("Panes", "Biggest files"), "arrow.up.arrow.down", 3,
        "Lists/LargestPane.qml", "largest" },
    PaneRow{ Pane::search, QT_TRANSLATE_NOOP("Panes", "Find a file"), "magnifyingglass", 4,
        "Lists/SearchPane.qml", "search" },
    PaneRow{ Pane::photos, QT_TRANSLATE_NOOP("Panes", "Photos by date"), "photo.on.rectangle.angled", 5,
        "Photos/PhotosPane.qml", "photos" },
    PaneRow{ Pane::rules, QT_TRANSLATE_NOOP("Panes", "Automatic rules"), "wand.and.stars", 6,
        "Rules/RulesPane.qml", "rules" },
    PaneRow{ Pane::offload, QT_TRANSLATE_NOOP("Panes", "Move to another drive"), "externaldrive.badge.plus",
        7, "Offload/OffloadPane.qml", "offload" },
    PaneRow{ Pane::apps, QT_TRANSLATE_NOOP("Panes", "Apps"), "app.badge", 8, "Apps/AppsPane.qml", "apps" },
    PaneRow{ Pane::stats, QT_TRANSLATE_NOOP("Panes", "This Mac"), "gauge.with.dots.needle.33percent", 9,
        "Stats/StatsPane.qml", "stats" },
    PaneRow{ Pane::advisor, QT_TRANSLATE_NOOP("Panes", "Past answers"), "clock.arrow.circlepath", 0,
        "Advisor/AdvisorPane.qml", "advisor" },
};

[[nodiscard]] constexpr const PaneRow &row(Pane pane)
{
    return paneTable[static_cast<std::size_t>(std::to_underlying(pane))];
}

static_assert([] {
    for (std::size_t position = 0; position < paneTable.size(); ++position)
        if (paneTable[position].pane != Pane(position) || paneTable[position].digit != int(position + 1) % 10)
            return false;
    return true;
}());

/// The pane's title in the person's language.
[[nodiscard]] QString title(Pane pane);
/// Name of its symbol in the symbol set.
[[nodiscard]] QString symbol(Pane pane);

} // namespace Quillbrook

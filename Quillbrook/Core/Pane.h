#pragma once

// The screens of the main window, in sidebar order.

#include <QObject>
#include <QString>
#include <QtQmlIntegration>

#include <array>

namespace Quillbrook {

Q_NAMESPACE
QML_NAMED_ELEMENT(Panes)

enum class Pane { warden, map, largest, search, photos, rules, offload, apps, stats, advisor };
Q_ENUM_NS(Pane)

inline constexpr std::array allPanes{ Pane::warden, Pane::map, Pane::largest, Pane::search, Pane::photos,
    Pane::rules, Pane::offload, Pane::apps, Pane::stats, Pane::advisor };

/// The pane's title, which is also its identity.
[[nodiscard]] QString title(Pane pane);
/// Name of its symbol in the symbol set.
[[nodiscard]] QString symbol(Pane pane);
/// The digit that chooses it together with the command modifier: its position plus one, modulo 10.
[[nodiscard]] int shortcutDigit(Pane pane);

} // namespace Quillbrook

#include "Core/Pane.h"

#include <utility>

namespace Quillbrook {

namespace {

struct PaneRow
{
    const char16_t *title;
    const char16_t *symbol;
};

constexpr std::array<PaneRow, allPanes.size()> rows{ {
    { u"Free up space", u"shield.lefthalf.filled" },
    { u"What's using space", u"square.grid.2x2" },
    { u"Biggest files", u"arrow.up.arrow.down" },
    { u"Find a file", u"magnifyingglass" },
    { u"Photos by date", u"photo.on.rectangle.angled" },
    { u"Automatic rules", u"wand.and.stars" },
    { u"Move to another drive", u"externaldrive.badge.plus" },
    { u"Apps", u"app.badge" },
    { u"This Mac", u"gauge.with.dots.needle.33percent" },
    { u"Past answers", u"clock.arrow.circlepath" },
} };

const PaneRow &row(Pane pane)
{
    return rows[static_cast<size_t>(std::to_underlying(pane))];
}

} // namespace

QString title(Pane pane)
{
    return QString::fromUtf16(row(pane).title);
}

QString symbol(Pane pane)
{
    return QString::fromUtf16(row(pane).symbol);
}

int shortcutDigit(Pane pane)
{
    return (std::to_underlying(pane) + 1) % 10;
}

} // namespace Quillbrook

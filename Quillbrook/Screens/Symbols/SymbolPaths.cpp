#include "Screens/Symbols/SymbolPaths.h"

#include "Fatal.h"

#include <QHash>
#include <QList>

#include <array>

namespace Quillbrook::SymbolPaths {

namespace {

struct Row
{
    const char *name;
    /// Commands, each a letter and its numbers, coordinates absolute:
    ///   M x y   move        L x y   line        Z   close
    ///   Q cx cy x y   C ax ay bx by x y         curves
    ///   R x y w h r   rounded rectangle         O cx cy r   circle
    ///   A cx cy r from sweep   arc, degrees counter-clockwise from three o'clock
    const char *stroked;
    const char *filled = "";
};

/// Clearances of the outlines: 1.6 from each edge of the grid, optical weight alike. What is "filled" by its
/// name is drawn as an outline all the same, since the set has one stroke weight.
constexpr std::array rows{
    // Screens, in sidebar order.
    Row{ "shield.lefthalf.filled",
        "M 8 1.6 L 13.4 3.4 L 13.4 7.8 C 13.4 11 11.2 13.3 8 14.6 C 4.8 13.3 2.6 11 2.6 7.8 L 2.6 3.4 Z "
        "M 8 1.8 L 8 14.4" },
    Row{ "square.grid.2x2",
        "R 1.8 1.8 5.2 5.2 0.6 R 9 1.8 5.2 5.2 0.6 R 1.8 9 5.2 5.2 0.6 R 9 9 5.2 5.2 0.6" },
    Row{ "arrow.up.arrow.down",
        "M 4.6 13.8 L 4.6 2.4 M 1.8 5.2 L 4.6 2.4 L 7.4 5.2 M 11.4 2.2 L 11.4 13.6 M 8.6 10.8 L 11.4 13.6 "
        "L 14.2 10.8" },
    Row{ "magnifyingglass", "O 7 7 5.1 M 10.8 10.8 L 14.2 14.2" },
    Row{ "photo.on.rectangle.angled",
        "R 1.6 2.8 12.8 10.4 1.2 M 2 11.2 L 5.8 7.4 L 8.6 10.2 L 10.6 8.4 L 14 11.4", "O 10.9 5.9 1.15" },
    Row{ "wand.and.stars", "M 1.9 14.1 L 9.6 6.4", "O 6 2.6 1.05 O 11.4 2.8 1.25 O 13.5 8.4 1.25" },
    Row{ "externaldrive.badge.plus",
        "M 4.4 2.8 L 11.6 2.8 L 14.2 9.2 L 14.2 13.2 L 1.8 13.2 L 1.8 9.2 Z M 1.9 9.2 L 14.1 9.2",
        "O 11.6 11.2 0.85" },
    Row{ "app.badge", "R 1.9 1.9 12.2 12.2 2.6 M 5.3 11.2 L 8 4.9 L 10.7 11.2 M 6.3 9.2 L 9.7 9.2" },
    Row{ "gauge.with.dots.needle.33percent", "A 8 8.6 6.3 -38 256 M 8 8.9 L 10.8 5.4" },
    Row{ "clock.arrow.circlepath",
        "M 2.1 2.4 L 2.1 5.6 L 5.3 5.6 A 8 8.2 6.1 154 -334 M 8 5 L 8 8.4 L 10.4 9.8" },

    Row{ "arrow.uturn.backward",
        "M 5.4 2.8 L 2 6.2 L 5.4 9.6 M 2.2 6.2 L 10.2 6.2 C 15.2 6.2 15.2 13 10.2 13 L 6.6 13" },

    // What a thing is.
    Row{ "folder.fill", "M 1.8 12.8 L 1.8 3.2 L 6.2 3.2 L 7.8 5 L 14.2 5 L 14.2 12.8 Z" },
    Row{ "doc.fill", "M 3.2 1.8 L 9 1.8 L 12.8 5.6 L 12.8 14.2 L 3.2 14.2 Z M 8.8 2 L 8.8 5.8 L 12.6 5.8" },
    Row{ "folder.badge.questionmark",
        "M 14.2 6.2 L 14.2 5 L 7.8 5 L 6.2 3.2 L 1.8 3.2 L 1.8 12.8 L 7.4 12.8 "
        "M 10 9.4 C 10 7.3 13.8 7.3 13.8 9.5 C 13.8 11 11.9 10.9 11.9 12.4",
        "O 11.9 14.6 0.95" },
    Row{ "calendar", "R 1.9 3 12.2 11.2 1.4 M 2.1 6.6 L 13.9 6.6 M 5.2 1.6 L 5.2 4.2 M 10.8 1.6 L 10.8 4.2" },
    Row{ "icloud",
        "M 4.6 12.6 C 0.4 12.6 0.6 7.4 4.2 7.4 C 4.6 2.6 11 2.4 11.8 7 C 15.8 6.8 15.8 12.6 12 12.6 Z" },
    Row{ "internaldrive", "R 1.6 4.4 12.8 7.2 1.6 M 4.4 8 L 8.6 8", "O 11.6 8 0.9" },
    Row{ "lock.fill", "R 3 7 10 7.2 1.4 M 5.2 6.8 L 5.2 4.8 C 5.2 0.9 10.8 0.9 10.8 4.8 L 10.8 6.8" },
    Row{ "lock.circle",
        "O 8 8 6.3 R 5.3 7.4 5.4 3.8 0.7 M 6.3 7.2 L 6.3 6.2 C 6.3 3.9 9.7 3.9 9.7 6.2 L 9.7 7.2" },

    // What may be done.
    Row{ "xmark", "M 3.4 3.4 L 12.6 12.6 M 12.6 3.4 L 3.4 12.6" },
    Row{ "checkmark", "M 2.6 8.6 L 6.2 12.2 L 13.4 4.4" },
    Row{ "plus", "M 8 2.6 L 8 13.4 M 2.6 8 L 13.4 8" },
    Row{ "minus", "M 2.6 8 L 13.4 8" },
    Row{ "trash",
        "M 2.2 4 L 13.8 4 M 5.8 3.8 L 5.8 1.8 L 10.2 1.8 L 10.2 3.8 M 3.6 4.2 L 4.2 14.2 L 11.8 14.2 L 12.4 "
        "4.2" },
    Row{ "arrow.clockwise", "M 13.6 2.2 L 13.6 5.6 L 10.2 5.6 A 8 8.2 6 27 306" },
    Row{ "chevron.left", "M 10.2 2.8 L 5 8 L 10.2 13.2" },
    Row{ "chevron.right", "M 5.8 2.8 L 11 8 L 5.8 13.2" },
    Row{ "chevron.down", "M 2.8 5.6 L 8 10.8 L 13.2 5.6" },

    // What has to be told.
    Row{ "sparkles",
        "M 8 1.8 C 8.7 5.6 10.4 7.3 14.2 8 C 10.4 8.7 8.7 10.4 8 14.2 C 7.3 10.4 5.6 8.7 1.8 8 C 5.6 7.3 7.3 "
        "5.6 8 1.8 Z" },
    Row{ "hand.raised.fill",
        "M 4.6 9.6 L 4.6 4 C 4.6 2.6 6.8 2.6 6.8 4 L 6.8 2.8 C 6.8 1.4 9 1.4 9 2.8 L 9 3.8 C 9 2.5 11.2 2.5 "
        "11.2 3.8 L 11.2 5.6 C 11.2 4.4 13.3 4.4 13.3 5.6 L 13.3 9.6 C 13.3 12.7 11.5 14.4 8.8 14.4 C 6.6 "
        "14.4 "
        "5.4 13.4 4.2 11.8 L 2.2 9.1 C 1.5 8 3 6.9 3.9 7.9 Z M 6.8 4 L 6.8 7.4 M 9 3.8 L 9 7.4 M 11.2 5.6 L "
        "11.2 7.8" },
    Row{ "exclamationmark.shield.fill",
        "M 8 1.6 L 13.4 3.4 L 13.4 7.8 C 13.4 11 11.2 13.3 8 14.6 C 4.8 13.3 2.6 11 2.6 7.8 L 2.6 3.4 Z "
        "M 8 5 L 8 8.2",
        "O 8 10.9 1" },
    Row{ "exclamationmark.triangle", "M 8 2 L 14.6 13.6 L 1.4 13.6 Z M 8 6.4 L 8 9.2", "O 8 11.5 0.95" },
    Row{ "checkmark.seal.fill", "O 8 8 6.3 M 5.2 8.3 L 7.2 10.3 L 10.9 6" },
    Row{ "lock.laptopcomputer",
        "R 2.4 2.2 11.2 8.2 1.2 M 1.2 13 L 14.8 13 M 6.9 5.6 L 6.9 5 C 6.9 3.5 9.1 3.5 9.1 5 L 9.1 5.6",
        "R 6 5.6 4 3 0.5" },
    Row{ "circle", "O 8 8 6.3" },
    Row{ "largecircle.fill.circle", "O 8 8 6.3", "O 8 8 3.4" },
    Row{ "questionmark.circle", "O 8 8 6.3 M 6.2 6.5 C 6.2 4.3 9.9 4.3 9.9 6.6 C 9.9 8.1 8 7.9 8 9.3",
        "O 8 11.4 0.9" },
};

/// Reads one command string; the table is ours, so what it can't read is a mistake in it.
class Reader
{
public:
    explicit Reader(const char *commands)
        : m_words(QString::fromLatin1(commands).split(QLatin1Char(' '), Qt::SkipEmptyParts))
    {
    }

    [[nodiscard]] QPainterPath path()
    {
        QPainterPath result;
        while (m_position < m_words.size())
            addCommand(result);
        return result;
    }

private:
    void addCommand(QPainterPath &path)
    {
        const auto command = m_words.at(m_position++).at(0).toLatin1();
        switch (command) {
        case 'M':
            path.moveTo(point());
            break;
        case 'L':
            path.lineTo(point());
            break;
        case 'Z':
            path.closeSubpath();
            break;
        case 'Q': {
            const auto control = point();
            path.quadTo(control, point());
            break;
        }
        case 'C': {
            const auto first = point();
            const auto second = point();
            path.cubicTo(first, second, point());
            break;
        }
        case 'R': {
            const auto corner = point();
            const auto width = number();
            const auto height = number();
            const auto radius = number();
            path.addRoundedRect(QRectF(corner, QSizeF(width, height)), radius, radius);
            break;
        }
        case 'O': {
            const auto centre = point();
            const auto radius = number();
            path.addEllipse(centre, radius, radius);
            break;
        }
        case 'A': {
            const auto centre = point();
            const auto radius = number();
            const QRectF box(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius);
            const auto from = number();
            path.arcMoveTo(box, from);
            path.arcTo(box, from, number());
            break;
        }
        default:
            fatal("A symbol's outline holds an unknown command");
        }
    }

    QPointF point()
    {
        const auto x = number();
        return { x, number() };
    }

    qreal number()
    {
        bool isNumber = false;
        const auto value = m_words.value(m_position++).toDouble(&isNumber);
        if (!isNumber)
            fatal("A symbol's outline lacks a number");
        return value;
    }

    QStringList m_words;
    qsizetype m_position = 0;
};

const QHash<QString, SymbolOutline> &outlines()
{
    static const auto all = [] {
        QHash<QString, SymbolOutline> result;
        for (const auto &row : rows)
            result.insert(QString::fromLatin1(row.name),
                { .stroked = Reader(row.stroked).path(), .filled = Reader(row.filled).path() });
        return result;
    }();
    return all;
}

} // namespace

const SymbolOutline &outline(const QString &name)
{
    static const SymbolOutline none;
    const auto found = outlines().constFind(name);
    return found == outlines().cend() ? none : *found;
}

QStringList names()
{
    auto result = outlines().keys();
    result.sort();
    return result;
}

} // namespace Quillbrook::SymbolPaths

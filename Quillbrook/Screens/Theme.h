#pragma once

// The colours of every screen, named by what they are for, and the type sizes in the unit that fonts take.
// QML reads it as the singleton `Theme`; painters in C++ call the same static functions. Main thread only,
// after the application object exists.

#include <QColor>
#include <QFont>
#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace Quillbrook {

class Theme : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    /// Ground of the window and of the sidebar.
    Q_PROPERTY(QColor page READ page CONSTANT FINAL)
    /// Ground of cards and controls.
    Q_PROPERTY(QColor surface READ surface CONSTANT FINAL)
    /// Ground of what lies deeper than a card: feet of sheets, unselected segments.
    Q_PROPERTY(QColor surfaceSunken READ surfaceSunken CONSTANT FINAL)
    /// Borders, dividers and tracks.
    Q_PROPERTY(QColor hairline READ hairline CONSTANT FINAL)
    /// Running text.
    Q_PROPERTY(QColor body READ body CONSTANT FINAL)
    /// Captions and section labels.
    Q_PROPERTY(QColor label READ label CONSTANT FINAL)
    /// Headings, figures and what has to be seen first.
    Q_PROPERTY(QColor strong READ strong CONSTANT FINAL)
    /// Selection, focus, sizes and the one prominent action.
    Q_PROPERTY(QColor accent READ accent CONSTANT FINAL)
    /// What regenerates by itself.
    Q_PROPERTY(QColor safe READ safe CONSTANT FINAL)
    /// What is worth a thought.
    Q_PROPERTY(QColor careful READ careful CONSTANT FINAL)
    /// What can't be undone, and a disk that is nearly full.
    Q_PROPERTY(QColor danger READ danger CONSTANT FINAL)
    /// Under what floats over a screen, at the edge where it is darkest.
    Q_PROPERTY(QColor shadow READ shadow CONSTANT FINAL)
    /// Points of font size for one pixel of it. Fonts take fractional sizes in points only.
    Q_PROPERTY(qreal pointsPerPixel READ pointsPerPixel CONSTANT FINAL)

public:
    using QObject::QObject;

    [[nodiscard]] static QColor page();
    [[nodiscard]] static QColor surface();
    [[nodiscard]] static QColor surfaceSunken();
    [[nodiscard]] static QColor hairline();
    [[nodiscard]] static QColor body();
    [[nodiscard]] static QColor label();
    [[nodiscard]] static QColor strong();
    [[nodiscard]] static QColor accent();
    [[nodiscard]] static QColor safe();
    [[nodiscard]] static QColor careful();
    [[nodiscard]] static QColor danger();
    [[nodiscard]] static QColor shadow();

    /// The ground of a tile: `surface` for a folder; for a file one of eight pale colours that depends on
    /// nothing but its extension in lower case, so that all files of one kind match.
    Q_INVOKABLE [[nodiscard]] static QColor tileColor(const QString &forExtension, bool isDirectory);
    /// `color` at `opacity` (0 to 1): how a state of a control is told, since no state has a colour of its
    /// own.
    Q_INVOKABLE [[nodiscard]] static QColor faded(const QColor &color, qreal opacity);

    [[nodiscard]] static qreal pointsPerPixel();
    /// The desktop's own interface font at a size in pixels, fractions allowed.
    [[nodiscard]] static QFont font(qreal pixels, QFont::Weight weight = QFont::Normal);
};

} // namespace Quillbrook

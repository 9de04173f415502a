#pragma once

// One line of the list on the screen "Free up space": a heading, a finding, a thing in the Trash, or one of
// what stands around them. A plain value with its words ready to be shown.

#include <QColor>
#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace Quillbrook {

/// Names what a line of that list is.
class WardenLines : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Only names its values")

public:
    enum class Kind { Banner, Heading, Finding, LogHeading, LogLine, Held };
    Q_ENUM(Kind)
};

struct WardenRow
{
    Q_GADGET
    QML_VALUE_TYPE(wardenRow)

    Q_PROPERTY(QString title MEMBER title FINAL)
    Q_PROPERTY(QString size MEMBER size FINAL)
    Q_PROPERTY(QString spoken READ spoken FINAL)
    Q_PROPERTY(QString note MEMBER note FINAL)
    Q_PROPERTY(QColor tone MEMBER tone FINAL)
    Q_PROPERTY(QString symbol MEMBER symbol FINAL)
    Q_PROPERTY(bool tinted MEMBER tinted FINAL)
    Q_PROPERTY(QString action MEMBER action FINAL)
    Q_PROPERTY(QString otherAction MEMBER otherAction FINAL)
    Q_PROPERTY(bool actionWaits MEMBER actionWaits FINAL)
    Q_PROPERTY(bool otherActionWaits MEMBER otherActionWaits FINAL)
    Q_PROPERTY(bool opens MEMBER opens FINAL)
    Q_PROPERTY(bool opened MEMBER opened FINAL)
    Q_PROPERTY(bool waits MEMBER waits FINAL)
    Q_PROPERTY(QString ages MEMBER ages FINAL)
    Q_PROPERTY(QString what MEMBER what FINAL)
    Q_PROPERTY(QString regenerates MEMBER regenerates FINAL)
    Q_PROPERTY(QString path MEMBER path FINAL)
    Q_PROPERTY(bool selectable MEMBER selectable FINAL)
    Q_PROPERTY(bool ticked MEMBER ticked FINAL)
    Q_PROPERTY(bool pathShown MEMBER pathShown FINAL)
    Q_PROPERTY(bool first MEMBER first FINAL)
    Q_PROPERTY(bool last MEMBER last FINAL)

public:
    WardenLines::Kind kind = WardenLines::Kind::Finding;
    /// The finding's id, or which banner it is; empty for other lines.
    QString id{};
    /// The finding's, the banner's or the heading's words, or the line of the log.
    QString title{};
    /// Of the finding, or of all that the section counts.
    QString size{};
    /// Behind a heading, what else holds for its section; under a finding, why clearing it would not help; in
    /// a banner, a quiet line under its text.
    QString note{};
    /// Of a heading's dot, or of a banner.
    QColor tone{};
    /// Of a banner: its symbol, whether its ground takes the tone, and the words on its buttons; empty for
    /// one that is not there.
    QString symbol{};
    bool tinted = false;
    QString action{};
    QString otherAction{};
    /// A banner's button can't be pressed now.
    bool actionWaits = false;
    bool otherActionWaits = false;
    /// A banner that more lines belong to, and whether they are shown.
    bool opens = false;
    bool opened = false;
    /// A tick that can't be changed now.
    bool waits = false;
    /// Of a thing in the Trash, how long ago it went there.
    QString ages{};
    /// What a finding is, or what a banner tells.
    QString what{};
    QString regenerates{};
    /// Shortened for reading.
    QString path{};
    bool selectable = false;
    bool ticked = false;
    /// The person has asked where it is.
    bool pathShown = false;
    /// At the top, or the bottom, of its card.
    bool first = false;
    bool last = false;

    bool operator==(const WardenRow &) const = default;

    /// What the line is called for those who hear the screen.
    [[nodiscard]] QString spoken() const;
};

} // namespace Quillbrook

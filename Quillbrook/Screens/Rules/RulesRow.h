#pragma once

// One line of the screen "Automatic rules". A plain value with its words ready to be shown.

#include <QColor>
#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace Quillbrook {

/// Names what a line of that list is.
class RulesLines : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Only names its values")

public:
    enum class Kind { Heading, Guarantee, Section, Sentence, Preset, LogLine, Rule, Suggestion };
    Q_ENUM(Kind)
};

struct RulesRow
{
    Q_GADGET
    QML_VALUE_TYPE(rulesRow)

    Q_PROPERTY(QString title MEMBER title FINAL)
    Q_PROPERTY(QString text MEMBER text FINAL)
    Q_PROPERTY(QString caption MEMBER caption FINAL)
    Q_PROPERTY(QString note MEMBER note FINAL)
    Q_PROPERTY(QColor tone MEMBER tone FINAL)
    Q_PROPERTY(QString size MEMBER size FINAL)
    Q_PROPERTY(QString spoken READ spoken FINAL)
    Q_PROPERTY(bool on MEMBER on FINAL)
    Q_PROPERTY(bool first MEMBER first FINAL)
    Q_PROPERTY(bool last MEMBER last FINAL)

public:
    RulesLines::Kind kind = RulesLines::Kind::Sentence;
    /// The preset's, the rule's or the finding's; empty for other lines.
    QString id{};
    QString title{};
    QString text{};
    QString caption{};
    /// A last line, in the colour of `tone`, which is also that of a sentence.
    QString note{};
    QColor tone{};
    QString size{};
    /// Of a switch.
    bool on = false;
    /// At the top, or the bottom, of its card.
    bool first = false;
    bool last = false;

    bool operator==(const RulesRow &) const = default;

    /// Whether the keyboard stops here: there is something to be done.
    [[nodiscard]] bool canAct() const;
    /// What stands under the title, for those who hear the screen.
    [[nodiscard]] QString spoken() const;
};

} // namespace Quillbrook

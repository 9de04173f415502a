#pragma once

// The card on which a removal is chosen and confirmed. One item at a time can go, or all of a group, always
// to the Trash, and never without the question before it. Main thread only; what it is made from outlives it.

#include "Advisor/AdvisorChoices.h"
#include "Screens/Advisor/ProposalItemModel.h"

#include <QObject>
#include <QString>
#include <QtQmlIntegration>

#include <optional>

namespace Quillbrook {

class Advisor;
class AppModel;

class ProposalState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    /// Whether there is a card.
    Q_PROPERTY(bool present READ present NOTIFY changed FINAL)
    Q_PROPERTY(QString heading READ heading NOTIFY changed FINAL)
    Q_PROPERTY(QString summary READ summary NOTIFY changed FINAL)
    /// What comes back or does not, of a whole group; empty where an item is chosen.
    Q_PROPERTY(QString consequence READ consequence NOTIFY changed FINAL)
    Q_PROPERTY(Quillbrook::ProposalItemModel *items READ items CONSTANT FINAL)
    /// What else could go; empty where there is nothing.
    Q_PROPERTY(QString alsoConsider READ alsoConsider NOTIFY changed FINAL)
    /// How much the chosen item frees; empty without one.
    Q_PROPERTY(QString frees READ frees NOTIFY chosenChanged FINAL)
    Q_PROPERTY(bool canMove READ canMove NOTIFY chosenChanged FINAL)
    /// The question before the removal.
    Q_PROPERTY(QString confirmTitle READ confirmTitle NOTIFY confirmChanged FINAL)
    Q_PROPERTY(QString confirmMessage READ confirmMessage NOTIFY confirmChanged FINAL)

public:
    ProposalState(AppModel &model, Advisor &advisor, QObject *parent = nullptr);

    /// The line about a group that could go as well.
    [[nodiscard]] static QString alsoConsiderLine(const std::optional<Finding> &finding);
    /// Asks the adviser to clear such a group, as if the person had written it.
    static void askToClear(Advisor &advisor, const std::optional<Finding> &finding);

    /// Nothing for a row that may not be chosen.
    Q_INVOKABLE void choose(int row);
    /// Chooses the next row that may be chosen, up (-1) or down (1) from another; the row that it is then, or
    /// the same where there is none.
    Q_INVOKABLE int step(int row, int direction);
    /// Tells by a signal that it has to be asked about; nothing where there is nothing to move.
    Q_INVOKABLE void askToMove();
    /// Moves what was asked about, unless the card has gone meanwhile.
    Q_INVOKABLE void move();
    Q_INVOKABLE void dismiss();
    Q_INVOKABLE void clearAlso();

    [[nodiscard]] bool present() const;
    [[nodiscard]] QString heading() const;
    [[nodiscard]] QString summary() const;
    [[nodiscard]] QString consequence() const;
    [[nodiscard]] ProposalItemModel *items() { return &m_items; }
    [[nodiscard]] QString alsoConsider() const;
    [[nodiscard]] QString frees() const;
    [[nodiscard]] bool canMove() const;
    [[nodiscard]] QString confirmTitle() const;
    [[nodiscard]] QString confirmMessage() const;

Q_SIGNALS:
    void changed();
    void chosenChanged();
    void confirmChanged();
    void moveAsked();

private:
    struct Asked
    {
        Finding finding{};
        /// Absent: all of the finding.
        std::optional<StorageItem> item{};
    };

    void follow();

    AppModel &m_model;
    Advisor &m_advisor;
    ProposalItemModel m_items;
    std::optional<Asked> m_asked;
};

} // namespace Quillbrook

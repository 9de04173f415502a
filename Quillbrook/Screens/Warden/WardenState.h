#pragma once

// What the screen "Free up space" shows and does: what was found, by how safe it is to clear, what of it is
// ticked, and how much that comes to. Main thread only; the model outlives it.

#include "Catalogue/Finding.h"
#include "Screens/PaneState.h"
#include "Screens/RemovalState.h"
#include "Screens/Warden/EarlierThings.h"
#include "Screens/Warden/WardenListModel.h"

#include <QSet>
#include <QString>
#include <QtQmlIntegration>

namespace Quillbrook {

class AppModel;

class WardenState : public PaneState
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    Q_PROPERTY(Quillbrook::WardenListModel *rows READ rows CONSTANT FINAL)
    /// What is being removed now.
    Q_PROPERTY(Quillbrook::RemovalState *removal READ removal CONSTANT FINAL)
    /// How much is ticked, and how many of how many.
    Q_PROPERTY(QString total READ total NOTIFY selectionChanged FINAL)
    Q_PROPERTY(QString counts READ counts NOTIFY selectionChanged FINAL)
    /// Whether anything is ticked that can go.
    Q_PROPERTY(bool canReclaim READ canReclaim NOTIFY selectionChanged FINAL)
    /// The question before a removal: its words, and those on its button.
    Q_PROPERTY(QString confirmTitle READ confirmTitle NOTIFY confirmChanged FINAL)
    Q_PROPERTY(QString confirmMessage READ confirmMessage NOTIFY confirmChanged FINAL)
    Q_PROPERTY(QString confirmAction READ confirmAction NOTIFY confirmChanged FINAL)
    /// The question before what lies in the Trash goes for good.
    Q_PROPERTY(QString finishTitle READ finishTitle NOTIFY pendingChanged FINAL)
    /// What of that lay there before the move that was made last.
    Q_PROPERTY(Quillbrook::EarlierThings *earlier READ earlier CONSTANT FINAL)
    /// Whether anything that is ticked there can go for good.
    Q_PROPERTY(bool canFinish READ canFinish NOTIFY pendingChanged FINAL)
    /// The sentence of a list without anything to clear; empty otherwise.
    Q_PROPERTY(QString emptyMessage READ emptyMessage NOTIFY emptyMessageChanged FINAL)

public:
    explicit WardenState(AppModel &model, QObject *parent = nullptr);

    [[nodiscard]] WardenListModel *rows() { return &m_rows; }
    [[nodiscard]] RemovalState *removal() { return &m_removal; }
    [[nodiscard]] const QString &total() const { return m_total; }
    [[nodiscard]] const QString &counts() const { return m_counts; }
    [[nodiscard]] const QString &emptyMessage() const { return m_emptyMessage; }
    [[nodiscard]] bool canReclaim() const { return m_canReclaim; }
    [[nodiscard]] QString confirmTitle() const;
    [[nodiscard]] QString confirmMessage() const;
    [[nodiscard]] QString confirmAction() const;
    [[nodiscard]] QString finishTitle() const;
    [[nodiscard]] EarlierThings *earlier() { return &m_earlier; }
    [[nodiscard]] bool canFinish() const;

    /// The ticked findings that are there, in the report's order.
    [[nodiscard]] QList<Finding> chosenFindings() const;
    /// Ids, also of findings that are gone.
    [[nodiscard]] const QSet<QString> &chosen() const { return m_chosen; }
    [[nodiscard]] bool touched() const { return m_touched; }

    /// Ticks a row's finding or thing, or unticks it; nothing for one without a tick, and while something is
    /// being removed.
    Q_INVOKABLE void toggle(int row);
    /// Shows where a row's finding is, or what belongs to a banner, or no longer.
    Q_INVOKABLE void togglePath(int row);
    /// Shows a row's finding in the file manager.
    Q_INVOKABLE void reveal(int row);
    /// Does what a button of a row's banner says, counted from 0, or tells by a signal that it has to be
    /// asked about first.
    Q_INVOKABLE void act(int row, int button = 0);
    /// Takes down what is ticked now, and tells that it has to be asked about. What is ticked, found or
    /// sorted otherwise meanwhile changes nothing about what the answer does.
    Q_INVOKABLE void askToReclaim();
    /// Removes what was asked about, and unticks everything.
    Q_INVOKABLE void reclaim(bool permanently);
    /// Deletes for good what lies in the Trash of what Quillbrook moved there, and what is ticked of it.
    Q_INVOKABLE void finishRemoving();
    /// Asks what still lies in the Trash: it may have been emptied meanwhile.
    void recheck() override;

Q_SIGNALS:
    void selectionChanged();
    void emptyMessageChanged();
    void confirmChanged();
    void pendingChanged();
    void reclaimAsked();
    void finishAsked();

protected:
    /// The ticks are then the default ones.
    void appear() override;

private:
    void tickDefaults();
    void askToFinish();
    void followPhase();
    void followHeld();
    void followRemovals();
    void refresh();
    void setSums();
    void setEmptyMessage();

    AppModel &m_model;
    WardenListModel m_rows;
    QSet<QString> m_chosen;
    /// What is ticked goes, or has just gone.
    bool m_isClearing = false;
    QSet<QString> m_pathShown;
    QList<Finding> m_asked;
    RemovalState m_removal;
    EarlierThings m_earlier;
    HeldRows m_heldRows;
    bool m_heldShown = false;
    bool m_canReclaim = false;
    QString m_total;
    QString m_counts;
    QString m_emptyMessage;
    bool m_touched = false;
};

} // namespace Quillbrook

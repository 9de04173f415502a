#pragma once

// What the screen "Free up space" shows and does: what was found, by how safe it is to clear, what of it is
// ticked, and how much that comes to. Main thread only; the model outlives it.

#include "Screens/WardenListModel.h"

#include <QObject>
#include <QSet>
#include <QString>
#include <QtQmlIntegration>

namespace Quillbrook {

class AppModel;
struct Finding;

class WardenState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    Q_PROPERTY(Quillbrook::WardenListModel *rows READ rows CONSTANT FINAL)
    /// How much is ticked, and how many of how many.
    Q_PROPERTY(QString total READ total NOTIFY selectionChanged FINAL)
    Q_PROPERTY(QString counts READ counts NOTIFY selectionChanged FINAL)
    /// The sentence of a list without anything to clear; empty otherwise.
    Q_PROPERTY(QString emptyMessage READ emptyMessage NOTIFY emptyMessageChanged FINAL)

public:
    explicit WardenState(AppModel &model, QObject *parent = nullptr);

    /// To be called whenever the screen is chosen: the ticks are then the default ones. A scan that stands in
    /// front of the screen for a while does not make it appear anew.
    void appear();

    [[nodiscard]] WardenListModel *rows() { return &m_rows; }
    [[nodiscard]] const QString &total() const { return m_total; }
    [[nodiscard]] const QString &counts() const { return m_counts; }
    [[nodiscard]] const QString &emptyMessage() const { return m_emptyMessage; }

    /// The ticked findings that are there, in the report's order.
    [[nodiscard]] QList<Finding> chosenFindings() const;
    /// Ids, also of findings that are gone.
    [[nodiscard]] const QSet<QString> &chosen() const { return m_chosen; }
    [[nodiscard]] bool touched() const { return m_touched; }

    /// Ticks a row's finding, or unticks it; nothing for one without a tick.
    Q_INVOKABLE void toggle(int row);
    /// Shows where a row's finding is, or no longer.
    Q_INVOKABLE void togglePath(int row);
    /// Shows a row's finding in the file manager.
    Q_INVOKABLE void reveal(int row);
    /// Scans the whole home folder.
    Q_INVOKABLE void scanEverything();

Q_SIGNALS:
    void selectionChanged();
    void emptyMessageChanged();

private:
    void followPhase();
    void refresh();
    void setSums();
    void setEmptyMessage();

    AppModel &m_model;
    WardenListModel m_rows;
    QSet<QString> m_chosen;
    QSet<QString> m_pathShown;
    QString m_total;
    QString m_counts;
    QString m_emptyMessage;
    bool m_touched = false;
};

} // namespace Quillbrook

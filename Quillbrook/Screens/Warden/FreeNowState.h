#pragma once

// The question that comes up when something has just gone to the Trash: whether to free the space at once.
// Main thread only; the model outlives it.

#include "Screens/Warden/WardenListModel.h"

#include <QObject>
#include <QSet>
#include <QString>
#include <QtQmlIntegration>

#include <vector>

namespace Quillbrook {

class AppModel;
struct HeldItem;

class FreeNowState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    /// Whether the question stands.
    Q_PROPERTY(bool asked READ asked NOTIFY changed FINAL)
    Q_PROPERTY(QString title READ title NOTIFY changed FINAL)
    /// What else would go, since it lay in the Trash before: how much that is, and a row for each. Empty
    /// where there is nothing.
    Q_PROPERTY(QString earlier READ earlier NOTIFY changed FINAL)
    Q_PROPERTY(Quillbrook::WardenListModel *rows READ rows CONSTANT FINAL)
    Q_PROPERTY(bool rowsShown READ rowsShown NOTIFY changed FINAL)

public:
    explicit FreeNowState(AppModel &model, QObject *parent = nullptr);

    [[nodiscard]] bool asked() const;
    [[nodiscard]] QString title() const;

    [[nodiscard]] QString earlier() const;
    [[nodiscard]] WardenListModel *rows() { return &m_rows; }
    [[nodiscard]] bool rowsShown() const { return m_rowsShown; }

    /// Ticks one of the rows, or unticks it: what is not ticked stays in the Trash.
    Q_INVOKABLE void toggle(int row);
    Q_INVOKABLE void toggleRows();
    /// Deletes for good what Quillbrook moved, and what of the rest is ticked.
    Q_INVOKABLE void free();
    /// Lets it lie.
    Q_INVOKABLE void keep();

Q_SIGNALS:
    void changed();

private:
    void refresh();
    [[nodiscard]] std::vector<HeldItem> heldBefore() const;

    AppModel &m_model;
    WardenListModel m_rows;
    bool m_rowsShown = false;
    /// Ids of what stays.
    QSet<QString> m_kept;
};

} // namespace Quillbrook

#pragma once

// What Quillbrook has in the Trash from before the move that was made last, for the questions before it goes
// for good: how much that is, and a row for each, which can be unticked to keep it there. Main thread only;
// the model outlives it.

#include "Screens/Warden/HeldRows.h"
#include "Screens/Warden/WardenListModel.h"

#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace Quillbrook {

class AppModel;
struct HeldItem;

class EarlierThings : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("A question is handed its things")

    /// A sentence about what of it goes; empty where there is nothing.
    Q_PROPERTY(QString text READ text NOTIFY changed FINAL)
    /// Empty while they are not shown: there may be a hundred thousand.
    Q_PROPERTY(Quillbrook::WardenListModel *rows READ rows CONSTANT FINAL)
    Q_PROPERTY(bool rowsShown READ rowsShown NOTIFY changed FINAL)

public:
    explicit EarlierThings(AppModel &model, QObject *parent = nullptr);

    [[nodiscard]] const QString &text() const { return m_text; }
    [[nodiscard]] WardenListModel *rows() { return &m_rows; }
    [[nodiscard]] bool rowsShown() const { return m_rowsShown; }

    /// Ticks one of the rows, or unticks it: what is not ticked stays in the Trash.
    Q_INVOKABLE void toggle(int row);
    Q_INVOKABLE void toggleRows();
    /// For a question that is asked anew.
    void hideRows();

Q_SIGNALS:
    void changed();

private:
    void refresh();
    [[nodiscard]] bool isEarlier(const HeldItem &held) const;
    [[nodiscard]] QList<WardenRow> presentRows();
    [[nodiscard]] QString sentence() const;

    AppModel &m_model;
    WardenListModel m_rows;
    HeldRows m_made;
    QString m_text;
    bool m_rowsShown = false;
};

} // namespace Quillbrook

#pragma once

// The list of names that hold the text in the search field.

#include "Screens/Lists/NodeTableState.h"

namespace Quillbrook {

class SearchState : public NodeTableState
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    /// The model's own, so that it outlives the screen.
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged FINAL)

public:
    explicit SearchState(AppModel &model, QObject *parent = nullptr);

    [[nodiscard]] QString text() const;
    void setText(const QString &text);
    [[nodiscard]] QString emptyMessage() const override;

Q_SIGNALS:
    void textChanged();

protected:
    [[nodiscard]] QList<NodeSnapshot> fetch() const override;
};

} // namespace Quillbrook

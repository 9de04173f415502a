#pragma once

// Rows of the screen "Move to another drive" as a list model.

#include "Screens/Offload/OffloadRow.h"
#include "Screens/RowListModel.h"

#include <QtQmlIntegration>

namespace Quillbrook {

class OffloadRowsModel : public RowListModel<OffloadRow>
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its lists")
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY emptyChanged FINAL)

public:
    void setRows(const QList<OffloadRow> &rows);
    [[nodiscard]] bool isEmpty() const { return rows().isEmpty(); }

Q_SIGNALS:
    void emptyChanged();
};

} // namespace Quillbrook

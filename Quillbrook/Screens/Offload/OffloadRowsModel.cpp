#include "Screens/Offload/OffloadRowsModel.h"

namespace Quillbrook {

void OffloadRowsModel::setRows(const QList<OffloadRow> &rows)
{
    const bool wasEmpty = isEmpty();
    RowListModel::setRows(rows);
    if (wasEmpty != isEmpty())
        Q_EMIT emptyChanged();
}

} // namespace Quillbrook

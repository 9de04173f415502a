#include "Screens/Lists/LargestState.h"

#include "Core/AppModel.h"

namespace Quillbrook {

namespace {

constexpr qsizetype rowLimit = 200;

} // namespace

QString LargestState::emptyMessage() const
{
    return tr("No files found.");
}

QList<NodeSnapshot> LargestState::fetch() const
{
    return model().navigation().largestFiles(rowLimit);
}

} // namespace Quillbrook

#include "Screens/Rules/RulesListModel.h"

namespace Quillbrook {

bool RulesListModel::takesKeyboard(int row) const
{
    const auto *line = at(row);
    return line && line->canAct();
}

} // namespace Quillbrook

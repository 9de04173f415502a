#include "Screens/Warden/WardenListModel.h"

namespace Quillbrook {

bool WardenListModel::takesKeyboard(int row) const
{
    const auto *line = at(row);
    return line && (line->kind == WardenLines::Kind::Finding || line->kind == WardenLines::Kind::Held);
}

} // namespace Quillbrook

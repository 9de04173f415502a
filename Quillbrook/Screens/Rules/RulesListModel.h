#pragma once

// The lines of the screen "Automatic rules" as a list model.

#include "Screens/RowListModel.h"
#include "Screens/Rules/RulesRow.h"

#include <QtQmlIntegration>

namespace Quillbrook {

class RulesListModel : public RowListModel<RulesRow>
{
    Q_OBJECT
    QML_ANONYMOUS

public:
    /// Whether the keyboard stops at a line.
    Q_INVOKABLE [[nodiscard]] bool takesKeyboard(int row) const;
};

} // namespace Quillbrook

#pragma once

// The lines of the screen "Free up space" as a list model.

#include "Screens/RowListModel.h"
#include "Screens/Warden/WardenRow.h"

#include <QtQmlIntegration>

namespace Quillbrook {

class WardenListModel : public RowListModel<WardenRow>
{
    Q_OBJECT
    QML_ANONYMOUS

public:
    /// Whether the keyboard stops at a line.
    Q_INVOKABLE [[nodiscard]] bool takesKeyboard(int row) const;
};

} // namespace Quillbrook

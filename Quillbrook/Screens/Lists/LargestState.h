#pragma once

// The list of the biggest files of the whole tree.

#include "Screens/Lists/NodeTableState.h"

namespace Quillbrook {

class LargestState : public NodeTableState
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

public:
    using NodeTableState::NodeTableState;

    [[nodiscard]] QString emptyMessage() const override;

protected:
    [[nodiscard]] QList<NodeSnapshot> fetch() const override;
};

} // namespace Quillbrook

#include "Screens/PaneState.h"

namespace Quillbrook {

void PaneState::setShown(bool shown)
{
    if (m_shown == shown)
        return;
    m_shown = shown;
    if (shown)
        appear();
    else
        disappear();
}

} // namespace Quillbrook

#pragma once

// The state of the main window's content, with what it is made from besides the model.

#include "Core/AppModel.h"
#include "Core/Background.h"
#include "Core/FolderAccess.h"
#include "Screens/Window/ContentState.h"

namespace Quillbrook {

struct WindowContent
{
    /// Of the model's own machine.
    explicit WindowContent(AppModel &model)
        : access(model.services())
        , background(model.services())
        , content(model, access, background)
    {
    }

    FolderAccess access;
    Background background;
    ContentState content;
};

} // namespace Quillbrook

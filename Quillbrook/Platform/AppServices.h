#pragma once

// What the application asks of the machine, gathered once by the application entry and handed down.

#include "Platform/KitServices.h"

namespace Quillbrook {

class FileRevealer;

struct AppServices
{
    KitServices kit;
    FileRevealer &revealer;
};

} // namespace Quillbrook

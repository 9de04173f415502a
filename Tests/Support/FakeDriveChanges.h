#pragma once

// Drives come and go when a test says so.

#include "Platform/DriveChanges.h"

namespace Quillbrook {

class FakeDriveChanges final : public DriveChanges
{
public:
    void setWatched(bool isWatched) override { watched = isWatched; }

    bool watched = false;
};

} // namespace Quillbrook

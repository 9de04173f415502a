#pragma once

// Backups as a test says they are.

#include "Platform/BackupProbe.h"

namespace Quillbrook {

class FakeBackupProbe final : public BackupProbe
{
public:
    [[nodiscard]] Backups find() const override { return backups; }

    Backups backups{ .hasDestination = true };
};

} // namespace Quillbrook

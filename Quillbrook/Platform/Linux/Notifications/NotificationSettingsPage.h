#pragma once

// The page of notification settings that each desktop has.

#include "Platform/Linux/Session/DesktopSession.h"

#include <optional>

namespace Quillbrook {

struct NotificationSettingsPage
{
    /// Absolute.
    QString program{};
    QStringList arguments{};

    /// That of the session's desktop; absent where it has none, where the program for it is not installed,
    /// and in a sandbox, which can't start the desktop's programs.
    [[nodiscard]] static std::optional<NotificationSettingsPage> of(const DesktopSession &session);

    bool operator==(const NotificationSettingsPage &) const = default;
};

} // namespace Quillbrook

#pragma once

// The switches by which a person keeps back the notifications of this one program, in the settings of the
// desktops that have such a switch. Keeping all of them back for a while is no such switch.

#include "Platform/Linux/Session/DesktopSession.h"

#include <QByteArrayView>

namespace Quillbrook {

class FileReading;
class ProcessRunner;

namespace NotificationSwitches {

/// Whether the desktop of the session keeps them back; what can't be found out does not. Runs a program,
/// for three seconds at most. Any thread.
[[nodiscard]] bool areOff(
    const DesktopSession &session, const ProcessRunner &processes, const FileReading &reading);

/// What Plasma's file of notification settings says.
[[nodiscard]] bool plasmaFileSaysOff(QByteArrayView text);

} // namespace NotificationSwitches

} // namespace Quillbrook

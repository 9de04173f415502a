#pragma once

// Whether the desktop deletes by itself what has been in the Trash for some days: both GNOME and Plasma do so
// only when they are told to.

#include "Platform/Linux/Session/DesktopSession.h"

#include <QByteArrayView>

#include <optional>

namespace Quillbrook {

class FileReading;
class ProcessRunner;

namespace TrashEmptying {

/// After how many days; absent where it never does, or it can't be told. Any thread; may take seconds.
[[nodiscard]] std::optional<int> days(
    const DesktopSession &session, const ProcessRunner &processes, const FileReading &reading);

/// The same by the text of ktrashrc, in which each trash has a group. The shortest time where they differ.
[[nodiscard]] std::optional<int> daysInPlasma(QByteArrayView text);

} // namespace TrashEmptying

} // namespace Quillbrook

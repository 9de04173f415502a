#pragma once

// What the system's error numbers mean to a person.

#include <QString>
#include <QStringList>

namespace Quillbrook::LinuxErrorText {

/// A sentence for `error`, an errno, in the words of the program; in the system's own for a rare one.
[[nodiscard]] QString sentence(int error);
/// All sentences of the first kind.
[[nodiscard]] QStringList sentences();
/// Whether it says that there was no space left.
[[nodiscard]] bool isLackOfSpace(int error);

} // namespace Quillbrook::LinuxErrorText

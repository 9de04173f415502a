#pragma once

// File names may hold line feeds, and marks that turn the words around them, which a line of text must not
// follow. Pure; callable from any thread.

#include <QString>

namespace Quillbrook {

/// `text` for a place that has one line: every control character, every separator of lines or paragraphs and
/// every mark that sets the direction of what follows is a blank. As long as `text`.
[[nodiscard]] QString singleLine(const QString &text);

} // namespace Quillbrook

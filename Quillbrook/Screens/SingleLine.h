#pragma once

// File names may hold line feeds and other characters that a row of text can't. Pure; callable from any
// thread.

#include <QString>

namespace Quillbrook {

/// `text` for a place that has one line: every control character and every separator of lines or paragraphs
/// is a blank. As long as `text`.
[[nodiscard]] QString singleLine(const QString &text);

} // namespace Quillbrook

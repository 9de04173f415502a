#pragma once

// How safe it is to take something away. Ordered from the most to the least harmless.

#include <QString>

namespace Quillbrook {

enum class Safety {
    /// Regenerates by itself, nothing of the user's is lost.
    safe = 0,
    /// Can be cleared, with a real cost that the rule's `regenerates` states.
    careful = 1,
    /// Shown and measured, never cleared by the program.
    reportOnly = 2,
};

/// The class in the words that people read.
[[nodiscard]] QString label(Safety safety);

} // namespace Quillbrook

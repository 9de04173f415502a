#pragma once

// Whether a model can be asked, in the words that people read.

#include "Advisor/LanguageModel.h"

namespace Quillbrook::AvailabilityWords {

/// The line of the banner.
[[nodiscard]] QString sentence(const ModelAvailability &availability);
/// Which program and which model answers; empty where none does.
[[nodiscard]] QString answerer(const ModelAvailability &availability);

} // namespace Quillbrook::AvailabilityWords

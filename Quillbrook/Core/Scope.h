#pragma once

namespace Quillbrook {

/// Which folders a scan opens: `quiet` only what raises no consent dialog, `complete` the whole home folder.
enum class Scope { quiet, complete };

} // namespace Quillbrook

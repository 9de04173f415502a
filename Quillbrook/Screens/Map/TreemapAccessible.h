#pragma once

// Shows the tiles of a map to assistive technology: a list whose items are the tiles, named by name and size,
// which can be pressed like a double click. Painted tiles are no objects, so the tree is told by hand.

namespace Quillbrook::TreemapAccessible {

/// Makes the accessibility framework ask here for maps. Only the first call does anything.
void install();

} // namespace Quillbrook::TreemapAccessible

#pragma once

// Whether a property list is small enough, once unfolded, to be given to a parser. In the binary form a few
// hundred bytes can stand for any number of objects, because an object may be named again and again, and can
// nest deeper than a parser's stack. Private to `PropertyList`.

#include <QByteArrayView>

namespace Quillbrook {

[[nodiscard]] bool isWithinPropertyListBounds(QByteArrayView data);

} // namespace Quillbrook

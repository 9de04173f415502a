#pragma once

// A text that is looked for in file names, in any letter case. Texts compare by Unicode canonical
// equivalence. Prepared once, then asked for each name; not changed by asking.

#include "Scan/ByteMarks.h"

#include <QString>

#include <span>
#include <string>
#include <string_view>

namespace Quillbrook {

class NameQuery
{
public:
    explicit NameQuery(const QString &text);

    /// Whether the lower-cased name holds the lower-cased text. `name` is raw bytes; what is not valid UTF-8
    /// in it counts as U+FFFD. An empty text is held by every name.
    [[nodiscard]] bool isHeldBy(std::string_view name) const;

    /// One fast pass over many names at once, which lie back to back in `names`. A name without a marked byte
    /// does not hold the text; one with a marked byte may. REQUIRES: the text is not empty.
    [[nodiscard]] ByteMarks marks(std::span<const char> names) const;

private:
    void markAscii(std::span<const char> names, ByteMarks &marks) const;
    [[nodiscard]] bool isAsciiFoundAt(const char *place) const;

    /// Lower-cased and composed.
    QString m_text;
    std::string m_bytes;
    bool m_isAscii = false;
};

} // namespace Quillbrook

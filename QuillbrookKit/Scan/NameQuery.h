#pragma once

// A text that is looked for in file names, in any letter case. Texts compare by Unicode canonical
// equivalence. Prepared once, then asked for each name; not changed by asking.

#include <QString>

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

private:
    [[nodiscard]] bool isFoundInAscii(std::string_view name) const;
    [[nodiscard]] bool isFoundInText(std::string_view name) const;

    /// Lower-cased and composed.
    QString m_text;
    /// `m_text` in bytes when it is ASCII.
    std::string m_ascii;
    bool m_isAscii = false;
};

} // namespace Quillbrook

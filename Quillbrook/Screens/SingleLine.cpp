#include "Screens/SingleLine.h"

#include <algorithm>

namespace Quillbrook {

namespace {

// The marks that set a direction: with one of them a name could turn the rest of a question around.
bool setsDirection(QChar character)
{
    const auto code = character.unicode();
    return code == 0x061C || code == 0x200E || code == 0x200F || (code >= 0x202A && code <= 0x202E)
        || (code >= 0x2066 && code <= 0x2069);
}

bool doesNotBelong(QChar character)
{
    switch (character.category()) {
    case QChar::Other_Control:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return setsDirection(character);
    }
}

} // namespace

QString singleLine(const QString &text)
{
    // Nearly every name is one already, and stays shared.
    if (std::ranges::none_of(text, doesNotBelong))
        return text;
    auto line = text;
    std::ranges::replace_if(line, doesNotBelong, QChar(u' '));
    return line;
}

} // namespace Quillbrook

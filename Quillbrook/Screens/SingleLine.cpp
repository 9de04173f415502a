#include "Screens/SingleLine.h"

#include <algorithm>

namespace Quillbrook {

namespace {

bool breaksLine(QChar character)
{
    switch (character.category()) {
    case QChar::Other_Control:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return false;
    }
}

} // namespace

QString singleLine(const QString &text)
{
    // Nearly every name is one already, and stays shared.
    if (std::ranges::none_of(text, breaksLine))
        return text;
    auto line = text;
    std::ranges::replace_if(line, breaksLine, QChar(u' '));
    return line;
}

} // namespace Quillbrook

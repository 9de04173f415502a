#include "Screens/Warden/WardenRow.h"

#include <QStringList>

namespace Quillbrook {

using namespace Qt::StringLiterals;

QString WardenRow::spoken() const
{
    QStringList words{ title };
    if (!size.isEmpty())
        words.append(size);
    if (kind == WardenLines::Kind::Heading && !note.isEmpty())
        words.append(note);
    return words.join(u", "_s);
}

} // namespace Quillbrook

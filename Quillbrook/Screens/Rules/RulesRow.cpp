#include "Screens/Rules/RulesRow.h"

#include <QStringList>

namespace Quillbrook {

using namespace Qt::StringLiterals;

bool RulesRow::canAct() const
{
    using enum RulesLines::Kind;
    return kind == Preset || kind == Rule || kind == Suggestion;
}

QString RulesRow::spoken() const
{
    QStringList words{ text, caption, note, size };
    words.removeAll(QString());
    return words.join(u' ');
}

} // namespace Quillbrook

#include "Removal/TrashedItem.h"

#include <QUuid>

namespace Quillbrook {

TrashedItem TrashedItem::moved(TrashedItem facts)
{
    facts.id = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    return facts;
}

TrashedItem TrashedItem::markedByRule() const
{
    auto copy = *this;
    copy.byRule = true;
    return copy;
}

} // namespace Quillbrook

#include "Core/Pane.h"

#include <QCoreApplication>

namespace Quillbrook {

QString title(Pane pane)
{
    return QCoreApplication::translate("Panes", row(pane).title);
}

QString symbol(Pane pane)
{
    return QString::fromLatin1(row(pane).symbol);
}

} // namespace Quillbrook

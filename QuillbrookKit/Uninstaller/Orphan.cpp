#include "Uninstaller/Orphan.h"

#include <QStringList>

namespace Quillbrook {

QString Orphan::guessedApp() const
{
    const auto pieces = bundleID.split(u'.', Qt::SkipEmptyParts);
    auto last = pieces.isEmpty() ? bundleID : pieces.constLast();
    auto words = last.replace(u'-', u' ').split(u' ');
    for (auto &word : words)
        word = word.left(1).toUpper() + word.mid(1).toLower();
    return words.join(u' ');
}

} // namespace Quillbrook

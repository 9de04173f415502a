#include "Platform/Linux/Opening/LinuxLinkOpener.h"

#include <QDesktopServices>
#include <QRegularExpression>

namespace Quillbrook {

using namespace Qt::StringLiterals;

void LinuxLinkOpener::open(const QUrl &url)
{
    static const QRegularExpression component(u"\\A[A-Za-z0-9_][A-Za-z0-9_.-]*\\z"_s);
    const bool isOnline = url.scheme() == u"https"_s && !url.host().isEmpty();
    // Without slashes: an id keeps its capitals only where it isn't the name of a computer.
    const bool isComponent = url.scheme() == u"appstream"_s && url.host().isEmpty() && !url.hasQuery()
        && component.match(url.path()).hasMatch();
    if (url.isValid() && (isOnline || isComponent))
        QDesktopServices::openUrl(url);
}

} // namespace Quillbrook

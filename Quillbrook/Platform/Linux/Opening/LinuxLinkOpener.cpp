#include "Platform/Linux/Opening/LinuxLinkOpener.h"

#include <QDesktopServices>

namespace Quillbrook {

using namespace Qt::StringLiterals;

void LinuxLinkOpener::open(const QUrl &url)
{
    if (url.isValid() && url.scheme() == u"https"_s && !url.host().isEmpty())
        QDesktopServices::openUrl(url);
}

} // namespace Quillbrook

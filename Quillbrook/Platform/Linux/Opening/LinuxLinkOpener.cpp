#include "Platform/Linux/Opening/LinuxLinkOpener.h"

#include <QDesktopServices>

namespace Quillbrook {

using namespace Qt::StringLiterals;

void LinuxLinkOpener::open(const QUrl &url)
{
    const auto scheme = url.scheme();
    const bool isWebAddress = scheme == u"https"_s || scheme == u"http"_s;
    if (isWebAddress && url.isValid() && !url.host().isEmpty())
        QDesktopServices::openUrl(url);
}

} // namespace Quillbrook

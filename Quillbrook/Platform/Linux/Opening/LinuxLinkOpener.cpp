#include "Platform/Linux/Opening/LinuxLinkOpener.h"

#include <QDesktopServices>

namespace Quillbrook {

void LinuxLinkOpener::open(const QUrl &url)
{
    const auto scheme = url.scheme();
    const bool isWebAddress = scheme == QStringLiteral("https") || scheme == QStringLiteral("http");
    if (isWebAddress && url.isValid() && !url.host().isEmpty())
        QDesktopServices::openUrl(url);
}

} // namespace Quillbrook

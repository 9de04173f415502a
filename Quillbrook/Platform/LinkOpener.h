#pragma once

// Opens an address in the person's browser, or an application's page in the software centre
// ("appstream:ID").

#include <QUrl>

namespace Quillbrook {

class LinkOpener
{
public:
    virtual ~LinkOpener() = default;
    /// Returns at once; where nothing can open it nothing happens. Main thread only.
    virtual void open(const QUrl &url) = 0;
};

} // namespace Quillbrook

#pragma once

// Remembers what was to be opened.

#include "Platform/LinkOpener.h"

#include <QList>

namespace Quillbrook {

class FakeLinkOpener final : public LinkOpener
{
public:
    void open(const QUrl &url) override { opened.append(url); }

    QList<QUrl> opened;
};

} // namespace Quillbrook

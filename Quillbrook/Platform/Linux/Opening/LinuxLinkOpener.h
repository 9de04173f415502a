#pragma once

// Opens an address as the desktop opens it. What is no web address is not opened at all: an address may come
// from the network, and must not start anything but a browser.

#include "Platform/LinkOpener.h"

namespace Quillbrook {

class LinuxLinkOpener final : public LinkOpener
{
public:
    void open(const QUrl &url) override;
};

} // namespace Quillbrook

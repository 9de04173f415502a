#pragma once

// Home folders that a test sets; alike, as outside a sandbox, unless it sets them apart.

#include "Platform/HomeFolder.h"

namespace Quillbrook {

class FakeHomeFolder final : public HomeFolder
{
public:
    QString homeDirectory() const override { return home; }
    QString realHomeDirectory() const override { return realHome; }

    QString home = QStringLiteral("/home/someone");
    QString realHome = home;
};

} // namespace Quillbrook

#pragma once

// Home folders that a test sets; alike, as outside a sandbox, unless it sets them apart.

#include "Platform/HomeFolder.h"

#include <optional>

namespace Quillbrook {

class FakeHomeFolder final : public HomeFolder
{
public:
    QString homeDirectory() const override { return home; }
    QString realHomeDirectory() const override { return realHome; }
    std::string rawHomeDirectory() const override { return raw.value_or(home.toStdString()); }
    std::string rawRealHomeDirectory() const override { return raw.value_or(realHome.toStdString()); }

    QString home = QStringLiteral("/home/someone");
    QString realHome = home;
    /// The bytes of both where their texts are not all that they say.
    std::optional<std::string> raw{};
};

} // namespace Quillbrook

#pragma once

// Nobody holds anything, unless a test says so.

#include "Platform/SpaceHolders.h"

namespace Quillbrook {

class FakeSpaceHolders final : public SpaceHolders
{
public:
    std::vector<OpenFiles> open{};

    [[nodiscard]] std::unique_ptr<LinkedFiles> linkedFiles(
        const std::vector<std::string> & /*paths*/) const override
    {
        return nullptr;
    }
    [[nodiscard]] std::vector<OpenFiles> openFiles(const std::vector<std::string> & /*paths*/) const override
    {
        return open;
    }
    [[nodiscard]] std::vector<QString> snapshots(const std::vector<std::string> & /*paths*/) const override
    {
        return {};
    }
    [[nodiscard]] bool countsExactly(const std::string & /*path*/) const override { return false; }
};

} // namespace Quillbrook

#pragma once

// Remembers what was to be revealed.

#include "Platform/FileRevealer.h"

#include <vector>

namespace Quillbrook {

class FakeFileRevealer final : public FileRevealer
{
public:
    void reveal(const std::string &path) override { revealed.push_back(path); }

    std::vector<std::string> revealed;
};

} // namespace Quillbrook

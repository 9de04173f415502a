#pragma once

// Files that exist only in a test, by their paths.

#include "Platform/FileReading.h"

#include <map>

namespace Quillbrook {

class FakeFileReading final : public FileReading
{
public:
    [[nodiscard]] std::optional<QByteArray> contents(const std::string &path, qsizetype limit) const override
    {
        const auto found = files.find(path);
        return found == files.end() || found->second.size() > limit ? std::nullopt
                                                                    : std::optional(found->second);
    }

    std::map<std::string, QByteArray> files{};
};

} // namespace Quillbrook

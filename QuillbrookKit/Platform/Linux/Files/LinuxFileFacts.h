#pragma once

// File facts by statx, never waking an automount and taking what a network file system has at hand.

#include "Platform/FileFacts.h"

namespace Quillbrook {

class LinuxFileFacts final : public FileFacts
{
public:
    [[nodiscard]] std::optional<FileKind> kind(const std::string &path) const override;
    [[nodiscard]] std::optional<FileDates> dates(const std::string &path) const override;
    [[nodiscard]] std::optional<qint64> length(const std::string &path) const override;
};

} // namespace Quillbrook

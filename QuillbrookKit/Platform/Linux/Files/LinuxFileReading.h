#pragma once

// Small files by open and read.

#include "Platform/FileReading.h"

namespace Quillbrook {

class LinuxFileReading final : public FileReading
{
public:
    [[nodiscard]] std::optional<QByteArray> contents(const std::string &path, qsizetype limit) const override;
};

} // namespace Quillbrook

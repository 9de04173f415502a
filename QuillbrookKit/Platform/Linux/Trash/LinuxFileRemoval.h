#pragma once

// Deleting for good by a walk of our own.

#include "Platform/FileRemoval.h"
#include "Platform/Linux/Trash/FileCalls.h"

namespace Quillbrook {

struct Erasure;

class LinuxFileRemoval final : public FileRemoval
{
public:
    /// `calls` outlives this object.
    explicit LinuxFileRemoval(const FileCalls &calls = FileCalls::system());

    [[nodiscard]] std::expected<void, QString> remove(
        const std::string &path, const TakingJudge &judge) override;
    using FileRemoval::remove;

    /// What a deletion that is not complete left, as a sentence or two.
    [[nodiscard]] static QString leftText(const Erasure &erasure);

private:
    const FileCalls &m_calls;
};

} // namespace Quillbrook

#pragma once

// Copies by the system's own tool; everything else by calls on open folders. What is made is known by its
// inode from the moment at which it was made.

#include "Platform/Linux/Trash/FileCalls.h"
#include "Platform/RelocationDisk.h"

namespace Quillbrook {

class LinuxRelocationDisk final : public RelocationDisk
{
public:
    /// `calls` outlives this object.
    explicit LinuxRelocationDisk(const FileCalls &calls = FileCalls::system());

    [[nodiscard]] std::optional<QString> objection(
        const std::string &source, const std::string &folder) const override;
    [[nodiscard]] std::optional<QString> objection(const std::string &source) const override;
    [[nodiscard]] CopyResult copy(const CopyOrder &order) const override;
    void drop(const std::string &path, const FileIdentity &identity) const override;
    [[nodiscard]] bool isStill(const std::string &path, const FileIdentity &identity) const override;
    [[nodiscard]] std::optional<qint64> allocated(const std::string &path) const override;
    [[nodiscard]] std::expected<void, QString> link(
        const std::string &place, const std::string &target) const override;
    [[nodiscard]] std::optional<LinkFacts> linkAt(const std::string &place) const override;
    [[nodiscard]] std::optional<LinkFacts> unfollowedLinkAt(const std::string &place) const override;
    [[nodiscard]] std::expected<void, QString> putInPlaceOfLink(const std::string &copy,
        const FileIdentity &copyIdentity, const std::string &place,
        const FileIdentity &linkIdentity) const override;

private:
    /// Waits until the volume of the open target has written all, unless a stop comes first.
    void writeOut(const CopyOrder &order, int target, CopyResult &result) const;

    const FileCalls &m_calls;
};

} // namespace Quillbrook

#pragma once

// What moving a thing to another volume does to the disk: a copy of it with everything it has, and the links
// that stand for it. Paths are absolute and raw bytes. Everything blocks on the disk and may be called from
// any thread but the main one. Errors are texts for a person, sentences unless said otherwise.

#include <QString>

#include <cstdint>
#include <expected>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>

namespace Quillbrook {

/// What is known again wherever its name is by then.
struct FileIdentity
{
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    /// When it was made, in nanoseconds since 1970: numbers of inodes are given again. 0 where the file
    /// system does not keep that.
    std::int64_t born = 0;

    bool operator==(const FileIdentity &) const = default;
};

struct CopyOrder
{
    /// A folder, or a file.
    std::string source{};
    /// Made by the copying, which ends at once where something is there.
    std::string target{};
    /// Told now and then how many bytes have been written. May be empty.
    std::function<void(qint64 bytes)> onProgress{};
    std::stop_token stop{};
};

struct CopyResult
{
    /// What was made at the target, whole or in part; absent where nothing was, or it is gone again.
    std::optional<FileIdentity> made{};
    /// What was copied.
    FileIdentity source{};
    /// Why it is not whole, as the copying tool says it; absent for a whole copy.
    std::optional<QString> error{};
    bool stopped = false;
    /// Nothing was made, because something is there.
    bool isTaken = false;
};

struct LinkFacts
{
    /// As it stands in the link.
    std::string text{};
    /// Where it leads, without links; the same as far as it can be told where nothing is there.
    std::string target{};
    bool leadsSomewhere = false;
    FileIdentity identity{};

    bool operator==(const LinkFacts &) const = default;
};

class RelocationDisk
{
public:
    virtual ~RelocationDisk() = default;

    /// Why `source` can't be moved into `folder`, by what they are and where they lie; absent when it can.
    [[nodiscard]] virtual std::optional<QString> objection(
        const std::string &source, const std::string &folder) const = 0;
    /// Why `source` can't be copied as a whole; absent when it can.
    [[nodiscard]] virtual std::optional<QString> objection(const std::string &source) const = 0;

    /// Copies with dates, links, hard links, holes, attributes and rights, as far as the target can hold
    /// them, and waits until its volume has written all. Ends with this process, however that ends.
    [[nodiscard]] virtual CopyResult copy(const CopyOrder &order) const = 0;
    /// Deletes what lies at `path` if it is still that; nothing happens otherwise.
    virtual void drop(const std::string &path, const FileIdentity &identity) const = 0;
    /// Whether that still lies at `path`, a link not followed.
    [[nodiscard]] virtual bool isStill(const std::string &path, const FileIdentity &identity) const = 0;
    /// Bytes on disk of the file at `path`; absent for a folder, and where it can't be asked.
    [[nodiscard]] virtual std::optional<qint64> allocated(const std::string &path) const = 0;

    /// Makes a link at `place`, where nothing is.
    [[nodiscard]] virtual std::expected<void, QString> link(
        const std::string &place, const std::string &target) const = 0;
    /// Absent for what is no link.
    [[nodiscard]] virtual std::optional<LinkFacts> linkAt(const std::string &place) const = 0;
    /// The same by the link's own words, as if it led nowhere: no drive is asked but that of `place`.
    [[nodiscard]] virtual std::optional<LinkFacts> unfollowedLinkAt(const std::string &place) const = 0;
    /// Puts the copy, a name beside the link at `place`, in that link's place in one step, and removes the
    /// link. On an error the link is where it was, and the copy too.
    [[nodiscard]] virtual std::expected<void, QString> putInPlaceOfLink(const std::string &copy,
        const FileIdentity &copyIdentity, const std::string &place,
        const FileIdentity &linkIdentity) const = 0;
};

} // namespace Quillbrook

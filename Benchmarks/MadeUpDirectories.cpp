#include "MadeUpDirectories.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <vector>

namespace Quillbrook::Benchmarks {

namespace {

constexpr std::uint64_t filesPerFolder = 24;
constexpr std::uint64_t foldersPerFolder = 8;
constexpr std::uint64_t device = 1;
constexpr std::string_view folderPrefix = "folder ";
constexpr std::string_view filePrefixes[]
    = { "item-", "a-longer-name-", "IMG_2019_0304_", "x", "settings.d.", "report for the month of ", "v1." };

std::uint64_t mixed(std::uint64_t value)
{
    value = (value ^ (value >> 30U)) * 0xbf58476d1ce4e5b9U;
    value = (value ^ (value >> 27U)) * 0x94d049bb133111ebU;
    return value ^ (value >> 31U);
}

struct Shape
{
    std::uint64_t files = 0;
    std::uint64_t folders = 0;

    // The files before this folder's first, when they are shared out evenly.
    [[nodiscard]] std::uint64_t filesBefore(std::uint64_t folder) const
    {
        const auto more = files % folders;
        return folder * (files / folders) + std::min(folder, more);
    }
};

class MadeUpReader : public DirectoryReader
{
public:
    explicit MadeUpReader(Shape shape)
        : m_shape(shape)
    {
    }

    [[nodiscard]] bool open(const std::string &path, OtherDevices /*others*/) override
    {
        m_folder = numberIn(path);
        m_ended = false;
        return m_folder < m_shape.folders;
    }

    [[nodiscard]] std::span<const DirectoryRecord> next() override
    {
        if (m_ended)
            return {};
        m_ended = true;
        m_records.clear();
        m_names.clear();
        m_names.reserve(64 * (foldersPerFolder + filesPerFolder * 2));
        const auto firstChild = m_folder * foldersPerFolder + 1;
        const auto childEnd = std::min(firstChild + foldersPerFolder, m_shape.folders);
        for (auto child = firstChild; child < childEnd; ++child)
            m_records.push_back({ .name = named(folderPrefix, child),
                .device = device,
                .type = DirectoryRecord::Type::directory });
        const auto end = m_shape.filesBefore(m_folder + 1);
        for (auto file = m_shape.filesBefore(m_folder); file < end; ++file)
            addFile(file);
        return m_records;
    }

    void close() override { }

private:
    // A root has no number and is folder 0.
    static std::uint64_t numberIn(const std::string &path)
    {
        std::uint64_t number = 0;
        const auto begin = path.rfind(' ') + 1;
        std::from_chars(path.data() + begin, path.data() + path.size(), number);
        return number;
    }

    void addFile(std::uint64_t file)
    {
        const auto bits = mixed(file + 1);
        m_records.push_back({ .name = named(filePrefixes[bits % std::size(filePrefixes)], file),
            .device = device,
            .fileDevice = device,
            .fileId = file + 1,
            // Mostly a block or none, with a long tail.
            .allocatedSize = static_cast<std::int64_t>(
                4096 * ((bits >> 8U) % 3 + ((bits >> 16U) % 64 == 0 ? bits >> 50U : 0))) });
    }

    // Room was reserved for all names of a folder, so that those handed out stay where they are.
    std::string_view named(std::string_view prefix, std::uint64_t number)
    {
        char digits[24];
        const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
        const auto start = m_names.size();
        m_names.append(prefix);
        m_names.append(digits, end);
        return std::string_view(m_names).substr(start);
    }

    Shape m_shape;
    std::uint64_t m_folder = 0;
    bool m_ended = true;
    std::string m_names;
    std::vector<DirectoryRecord> m_records;
};

class MadeUpSession : public DirectorySession
{
public:
    explicit MadeUpSession(Shape shape)
        : m_shape(shape)
    {
    }

    [[nodiscard]] std::optional<std::uint64_t> rootDevice() const override { return device; }
    [[nodiscard]] std::unique_ptr<DirectoryReader> makeReader() override
    {
        return std::make_unique<MadeUpReader>(m_shape);
    }

private:
    Shape m_shape;
};

} // namespace

MadeUpDirectories::MadeUpDirectories(std::uint64_t files)
    : m_files(files)
{
}

std::unique_ptr<DirectorySession> MadeUpDirectories::session(const std::string & /*rootPath*/)
{
    return std::make_unique<MadeUpSession>(
        Shape{ .files = m_files, .folders = std::max<std::uint64_t>(1, m_files / filesPerFolder) });
}

} // namespace Quillbrook::Benchmarks

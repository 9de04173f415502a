#include "Platform/Linux/Processes/LinuxHostCounters.h"

#include "Platform/Linux/Files/LinuxFileReading.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <map>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace Quillbrook {

namespace {

constexpr qsizetype longestText = qsizetype{ 4 } * 1024 * 1024;
constexpr std::uint64_t bytesOfKilobyte = 1024;
// Of one compressed drive: its data as they were, as they are, and what all of that takes up.
constexpr size_t placeOfMemoryTaken = 2;

std::string textOf(const std::string &path)
{
    return LinuxFileReading().contents(path, longestText).value_or(QByteArray()).toStdString();
}

/// The numbers that a line holds, in their order; what is none is passed over.
std::vector<std::uint64_t> numbersIn(std::string_view line)
{
    std::vector<std::uint64_t> numbers;
    while (!line.empty()) {
        const auto start = line.find_first_of("0123456789");
        if (start == std::string_view::npos)
            break;
        line.remove_prefix(start);
        std::uint64_t number = 0;
        const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
        numbers.push_back(error == std::errc() ? number : 0);
        line.remove_prefix(static_cast<size_t>(end - line.data()));
    }
    return numbers;
}

std::string_view takeLine(std::string_view &text)
{
    const auto end = std::min(text.find('\n'), text.size());
    const auto line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

/// Bytes by name.
std::map<std::string_view, std::uint64_t> memoryIn(std::string_view text)
{
    std::map<std::string_view, std::uint64_t> bytes;
    while (!text.empty()) {
        const auto line = takeLine(text);
        const auto colon = line.find(':');
        if (colon == std::string_view::npos)
            continue;
        if (const auto numbers = numbersIn(line.substr(colon)); !numbers.empty())
            bytes[line.substr(0, colon)] = numbers.front() * bytesOfKilobyte;
    }
    return bytes;
}

} // namespace

LinuxHostCounters::LinuxHostCounters()
    : LinuxHostCounters(Sources{ .pageBytes = static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE)) })
{
}

LinuxHostCounters::LinuxHostCounters(Sources sources)
    : m_sources(std::move(sources))
{
}

std::optional<ProcessorTicks> LinuxHostCounters::ticksIn(QByteArrayView text)
{
    enum { user, nice, system, idle, waiting, interrupts, softInterrupts, stolen, fields };
    std::string_view rest(text.data(), static_cast<size_t>(text.size()));
    while (!rest.empty()) {
        const auto line = takeLine(rest);
        if (!line.starts_with("cpu "))
            continue;
        auto ticks = numbersIn(line);
        if (ticks.size() <= idle)
            return std::nullopt;
        ticks.resize(fields);
        return ProcessorTicks{ .user = ticks[user],
            .system = ticks[system] + ticks[interrupts] + ticks[softInterrupts] + ticks[stolen],
            .idle = ticks[idle] + ticks[waiting],
            .nice = ticks[nice] };
    }
    return std::nullopt;
}

std::optional<ProcessorTicks> LinuxHostCounters::processorTicks() const
{
    const auto text = textOf(m_sources.proc + "/stat");
    return ticksIn(QByteArrayView(text.data(), static_cast<qsizetype>(text.size())));
}

std::optional<MemoryPages> LinuxHostCounters::memoryPages() const
{
    const auto text = textOf(m_sources.proc + "/meminfo");
    const auto bytes = memoryIn(text);
    if (!bytes.contains("AnonPages") || m_sources.pageBytes == 0)
        return std::nullopt;
    const auto pages = [&](std::initializer_list<std::string_view> names) {
        std::uint64_t sum = 0;
        for (const auto name : names)
            if (const auto found = bytes.find(name); found != bytes.end())
                sum += found->second;
        return sum / m_sources.pageBytes;
    };
    return MemoryPages{ .active = pages({ "AnonPages", "Shmem" }),
        .wired = pages({ "Unevictable", "SUnreclaim", "KernelStack", "PageTables", "Percpu", "Hugetlb" }),
        .compressed = pages({ "Zswap" }) + compressedBytes() / m_sources.pageBytes,
        .pageBytes = m_sources.pageBytes };
}

std::uint64_t LinuxHostCounters::physicalMemory() const
{
    const auto text = textOf(m_sources.proc + "/meminfo");
    const auto bytes = memoryIn(text);
    const auto total = bytes.find("MemTotal");
    return total == bytes.end() ? 0 : total->second;
}

// Drives that are kept in memory in compressed form, which hold what was moved out of it.
std::uint64_t LinuxHostCounters::compressedBytes() const
{
    std::uint64_t sum = 0;
    std::error_code error;
    std::filesystem::directory_iterator drive(m_sources.sys + "/block", error);
    // A step throws where it is not given an error to fill.
    for (; drive != std::filesystem::directory_iterator(); drive.increment(error)) {
        if (!drive->path().filename().string().starts_with("zram"))
            continue;
        const auto numbers = numbersIn(textOf(drive->path().string() + "/mm_stat"));
        if (numbers.size() > placeOfMemoryTaken)
            sum += numbers[placeOfMemoryTaken];
    }
    return sum;
}

} // namespace Quillbrook

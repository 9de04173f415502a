#include "Platform/Linux/Processes/LinuxProcessors.h"

#include "Platform/Linux/Files/LinuxFileReading.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>
#include <sched.h>
#include <thread>

namespace Quillbrook {

namespace {

// A machine with more processors than this tells nothing we can use.
constexpr int mostProcessors = 8192;
// Capacities of one kind of core differ a little by favoured clock rates; the slow kind is far below this.
constexpr double sameKindShare = 0.75;
// What the kernel tells here takes some lines; all control groups of a process do too.
constexpr qsizetype longestText = qsizetype{ 1024 } * 1024;

std::optional<std::string> textOf(const std::string &path)
{
    const auto text = LinuxFileReading().contents(path, longestText);
    return text ? std::optional(text->toStdString()) : std::nullopt;
}

std::optional<long> numberIn(std::string_view text)
{
    long value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{})
        return std::nullopt;
    return value;
}

std::optional<long> numberInFile(const std::string &path)
{
    const auto text = textOf(path);
    return text ? numberIn(*text) : std::nullopt;
}

std::vector<int> allowedProcessors()
{
    auto *set = CPU_ALLOC(mostProcessors);
    const auto bytes = CPU_ALLOC_SIZE(mostProcessors);
    std::vector<int> allowed;
    if (::sched_getaffinity(0, bytes, set) == 0) {
        for (int processor = 0; processor < mostProcessors; ++processor) {
            if (CPU_ISSET_S(static_cast<size_t>(processor), bytes, set))
                allowed.push_back(processor);
        }
    }
    CPU_FREE(set);
    return allowed;
}

// "max 100000" is no limit; "150000 100000" pays for one processor and a half, which keeps two busy.
int processorsPaidBy(std::string_view quotaAndPeriod)
{
    constexpr auto unlimited = std::numeric_limits<int>::max();
    const auto quota = numberIn(quotaAndPeriod);
    const auto blank = quotaAndPeriod.find(' ');
    if (!quota || *quota <= 0 || blank == std::string_view::npos)
        return unlimited;
    const auto period = numberIn(quotaAndPeriod.substr(blank + 1));
    if (!period || *period <= 0)
        return unlimited;
    return static_cast<int>(std::min<long>((*quota - 1) / *period + 1, unlimited));
}

// The path of the own group in the unified hierarchy: the line "0::/path". Empty for its root, which is what
// a container is told of its own group; absent where there is no such hierarchy.
std::optional<std::string> groupPathIn(std::string_view text)
{
    while (!text.empty()) {
        const auto length = std::min(text.find('\n'), text.size());
        const auto line = text.substr(0, length);
        if (line.starts_with("0::/"))
            return std::string(line == "0::/" ? std::string_view() : line.substr(3));
        text.remove_prefix(std::min(length + 1, text.size()));
    }
    return std::nullopt;
}

} // namespace

std::vector<int> parseProcessorList(std::string_view text)
{
    std::vector<int> processors;
    while (!text.empty() && text.back() == '\n')
        text.remove_suffix(1);
    while (!text.empty()) {
        const auto length = std::min(text.find(','), text.size());
        const auto range = text.substr(0, length);
        const auto dash = std::min(range.find('-'), range.size());
        const auto first = numberIn(range.substr(0, dash));
        const auto last = dash == range.size() ? first : numberIn(range.substr(dash + 1));
        if (!first || !last || *first < 0 || *last >= mostProcessors)
            return {};
        for (auto processor = *first; processor <= *last; ++processor)
            processors.push_back(static_cast<int>(processor));
        text.remove_prefix(std::min(length + 1, text.size()));
    }
    std::ranges::sort(processors);
    return processors;
}

LinuxProcessors::LinuxProcessors()
    : LinuxProcessors(Sources{})
{
}

LinuxProcessors::LinuxProcessors(Sources sources)
    : m_sources(std::move(sources))
{
}

std::optional<int> LinuxProcessors::performanceCores() const
{
    const auto allowed = allowedProcessors();
    if (allowed.empty())
        return std::nullopt;
    return withinQuota(static_cast<int>(fastest(allowed).size()));
}

int LinuxProcessors::activeProcessors() const
{
    const auto allowed = allowedProcessors();
    const auto count = allowed.empty() ? std::thread::hardware_concurrency() : allowed.size();
    return withinQuota(std::max(static_cast<int>(count), 1));
}

// Intel lists its fast cores by name; elsewhere each processor tells its capacity. A process that is kept to
// the slow ones has those as its fastest.
std::vector<int> LinuxProcessors::fastest(const std::vector<int> &allowed) const
{
    if (const auto text = textOf(m_sources.sys + "/devices/cpu_core/cpus")) {
        std::vector<int> fast;
        std::ranges::set_intersection(allowed, parseProcessorList(*text), std::back_inserter(fast));
        return fast.empty() ? allowed : fast;
    }
    std::vector<long> capacities;
    for (const auto processor : allowed) {
        const auto folder = m_sources.sys + "/devices/system/cpu/cpu" + std::to_string(processor);
        const auto capacity = numberInFile(folder + "/cpu_capacity");
        if (!capacity)
            return allowed;
        capacities.push_back(*capacity);
    }
    const auto needed = static_cast<double>(std::ranges::max(capacities)) * sameKindShare;
    std::vector<int> fast;
    for (size_t i = 0; i < allowed.size(); ++i) {
        if (static_cast<double>(capacities[i]) >= needed)
            fast.push_back(allowed[i]);
    }
    return fast;
}

// A limit on any enclosing group holds for the own one.
int LinuxProcessors::withinQuota(int count) const
{
    const auto groups = textOf(m_sources.ownControlGroup);
    for (auto path = groups ? groupPathIn(*groups) : std::nullopt; path;) {
        if (const auto limit = textOf(m_sources.sys + "/fs/cgroup" + *path + "/cpu.max"))
            count = std::min(count, processorsPaidBy(*limit));
        path = path->empty() ? std::nullopt : std::optional(path->substr(0, path->rfind('/')));
    }
    return std::max(count, 1);
}

} // namespace Quillbrook

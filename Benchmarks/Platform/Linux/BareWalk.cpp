#include "Platform/Linux/BareWalk.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace Quillbrook::Benchmarks {

namespace {

constexpr std::size_t listingBytes = 262144;
constexpr auto attributeFlags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;
constexpr auto attributeMask = STATX_TYPE | STATX_INO | STATX_NLINK | STATX_BLOCKS | STATX_MNT_ID;

// The record of getdents64, which no header declares.
struct ListedEntry
{
    std::uint64_t inode;
    std::int64_t offset;
    unsigned short length;
    unsigned char type;
    char name[1];
};

// A folder that stays open until the last of its child folders has been opened.
struct OpenFolder
{
    OpenFolder(int opened, int children)
        : descriptor(opened)
        , waiting(children)
    {
    }

    int descriptor;
    std::atomic<int> waiting;
};

struct Job
{
    OpenFolder *parent = nullptr;
    std::string name{};
};

void childWasOpened(OpenFolder *parent)
{
    if (parent && parent->waiting.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        ::close(parent->descriptor);
        delete parent;
    }
}

// What workers hand to one another.
class Exchange
{
public:
    explicit Exchange(int workers)
        : m_working(workers)
    {
    }

    [[nodiscard]] bool somebodyWaits() const { return m_waiting.load(std::memory_order_relaxed) > 0; }

    // Gives away the older half, which has the larger subtrees below it.
    void giveHalf(std::vector<Job> &jobs)
    {
        const auto half = jobs.begin() + static_cast<std::ptrdiff_t>(jobs.size() / 2);
        {
            const std::scoped_lock lock(m_lock);
            std::move(jobs.begin(), half, std::back_inserter(m_jobs));
        }
        jobs.erase(jobs.begin(), half);
        m_changed.notify_all();
    }

    // Waits for work; false when there is none left anywhere.
    bool take(std::vector<Job> &jobs)
    {
        std::unique_lock lock(m_lock);
        if (--m_working == 0)
            m_changed.notify_all();
        m_waiting.fetch_add(1, std::memory_order_relaxed);
        m_changed.wait(lock, [this] { return !m_jobs.empty() || m_working == 0; });
        m_waiting.fetch_sub(1, std::memory_order_relaxed);
        if (m_jobs.empty())
            return false;
        ++m_working;
        // Its share, so that it comes back only after a good deal of work.
        const auto sharers = static_cast<std::size_t>(m_waiting.load(std::memory_order_relaxed)) + 1;
        const auto share
            = m_jobs.end() - static_cast<std::ptrdiff_t>((m_jobs.size() + sharers - 1) / sharers);
        std::move(share, m_jobs.end(), std::back_inserter(jobs));
        m_jobs.erase(share, m_jobs.end());
        return true;
    }

    void put(Job job) { m_jobs.push_back(std::move(job)); }

private:
    std::mutex m_lock;
    std::condition_variable m_changed;
    std::vector<Job> m_jobs;
    int m_working;
    std::atomic<int> m_waiting = 0;
};

class Worker
{
public:
    Worker(Exchange &exchange, const std::string &root, std::uint64_t rootMount)
        : m_exchange(exchange)
        , m_root(root)
        , m_rootMount(rootMount)
        , m_listing(std::make_unique_for_overwrite<char[]>(listingBytes))
    {
    }

    void run()
    {
        do {
            while (!m_jobs.empty()) {
                const auto job = std::move(m_jobs.back());
                m_jobs.pop_back();
                walkFolder(job);
                if (m_jobs.size() > 1 && m_exchange.somebodyWaits())
                    m_exchange.giveHalf(m_jobs);
            }
        } while (m_exchange.take(m_jobs));
    }

    [[nodiscard]] const BareWalkResult &counted() const { return m_counted; }

private:
    void walkFolder(const Job &job)
    {
        constexpr auto flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
        const auto folder = job.parent
            ? ::openat(job.parent->descriptor, job.name.c_str(), flags | O_NOFOLLOW)
            : ::open(m_root.c_str(), flags);
        childWasOpened(job.parent);
        if (folder < 0) {
            ++m_counted.failures;
            return;
        }
        ++m_counted.folders;
        m_children.clear();
        long length = 0;
        while ((length = ::syscall(SYS_getdents64, folder, m_listing.get(), listingBytes)) > 0)
            measure(folder, length);
        if (m_children.empty()) {
            ::close(folder);
            return;
        }
        auto *parent = new OpenFolder(folder, static_cast<int>(m_children.size()));
        for (auto &name : m_children)
            m_jobs.push_back({ parent, std::move(name) });
    }

    void measure(int folder, long length)
    {
        for (long at = 0; at < length;) {
            const auto *entry = reinterpret_cast<const ListedEntry *>(m_listing.get() + at);
            at += entry->length;
            if (std::strcmp(entry->name, ".") == 0 || std::strcmp(entry->name, "..") == 0)
                continue;
            struct statx attributes;
            if (::statx(folder, entry->name, attributeFlags, attributeMask, &attributes) != 0)
                continue;
            m_counted.blocks += attributes.stx_blocks;
            if (!S_ISDIR(attributes.stx_mode))
                ++m_counted.files;
            else if (attributes.stx_mnt_id == m_rootMount)
                m_children.emplace_back(entry->name);
        }
    }

    Exchange &m_exchange;
    const std::string &m_root;
    std::uint64_t m_rootMount;
    std::unique_ptr<char[]> m_listing;
    std::vector<Job> m_jobs;
    std::vector<std::string> m_children;
    BareWalkResult m_counted;
};

std::uint64_t mountOf(const std::string &root)
{
    struct statx attributes = {};
    ::statx(AT_FDCWD, root.c_str(), 0, attributeMask, &attributes);
    return attributes.stx_mnt_id;
}

} // namespace

BareWalkResult bareWalk(const std::string &root, int threads)
{
    const auto start = std::chrono::steady_clock::now();
    const auto count = std::max(1, threads);
    Exchange exchange(count);
    exchange.put({});
    std::vector<Worker> workers;
    workers.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        workers.emplace_back(exchange, root, mountOf(root));
    {
        std::vector<std::jthread> running;
        running.reserve(workers.size());
        for (auto &worker : workers)
            running.emplace_back([&worker] { worker.run(); });
    }
    BareWalkResult result;
    for (const auto &worker : workers) {
        result.folders += worker.counted().folders;
        result.files += worker.counted().files;
        result.blocks += worker.counted().blocks;
        result.failures += worker.counted().failures;
    }
    result.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return result;
}

} // namespace Quillbrook::Benchmarks

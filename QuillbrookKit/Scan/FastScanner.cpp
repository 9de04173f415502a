#include "Scan/FastScanner.h"

#include "Platform/DirectoryReader.h"
#include "Platform/Processors.h"
#include "Scan/ScanWorker.h"
#include "Scan/WorkerThread.h"
#include "StandardisedPath.h"

#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

namespace Quillbrook {

namespace {

constexpr int mostThreads = 32;

std::string rootPathOf(const FastScanner::Request &request)
{
    return request.rootPath == "/" ? request.rootPath : standardisedPath(request.rootPath, request.home);
}

void runWorkers(ScanState &state, DirectorySession &session, int count)
{
    const auto work = [&state, &session] { ScanWorker(state, session.makeReader()).run(); };
    std::vector<std::unique_ptr<WorkerThread>> threads;
    for (int i = 0; i < count; ++i)
        threads.push_back(std::make_unique<WorkerThread>(work));
    if (!threads.front()->hasStarted())
        work();
}

} // namespace

FastScanner::FastScanner(DirectoryReading &directories)
    : m_directories(directories)
    , m_state(std::make_unique<ScanState>())
{
}

FastScanner::~FastScanner() = default;

FastScanner::Result FastScanner::scan(const Request &request)
{
    const auto start = std::chrono::steady_clock::now();
    auto &state = *m_state;
    const auto rootPath = rootPathOf(request);
    const auto session = m_directories.session(rootPath);
    state.admission = FolderAdmission(request.exclusions, request.allowlist);
    state.staysOnOneDevice = !request.crossDevices;
    state.tree = std::make_shared<FileTree>(request.expectedNodes);
    state.countedFiles.clear();
    state.filesSeen = 0;
    state.bytesSeen = 0;
    state.unreadable = 0;
    state.unmeasured = 0;
    state.cancelled = false;
    state.rootDevice = session->rootDevice().value_or(state.rootDevice);
    const auto root = state.tree->addNode(FileTree::noNode, rootPath, 0, FileTree::Flags::directory);
    state.queue.restart({ rootPath, root });
    // All that a cancel writes is new from here on, so that a stop which was requested earlier is not undone.
    const std::stop_callback cancelling(request.stop, [this] { cancel(); });
    const auto threads = std::clamp(request.threads, 1, mostThreads);
    runWorkers(state, *session, threads);
    state.tree->rollUp();
    state.tree->sortChildrenBySize(threads);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    return { .tree = std::exchange(state.tree, nullptr),
        .root = root,
        .duration = elapsed.count(),
        .unreadableDirectories = state.unreadable,
        .unmeasuredFiles = state.unmeasured };
}

FastScanner::Progress FastScanner::progress() const
{
    return { .filesSeen = m_state->filesSeen,
        .bytesSeen = m_state->bytesSeen,
        .directoriesQueued = m_state->queue.size() };
}

void FastScanner::cancel()
{
    m_state->cancelled = true;
    m_state->queue.finish();
}

int FastScanner::defaultThreadCount(const Processors &processors)
{
    if (const auto cores = processors.performanceCores(); cores && *cores >= 1)
        return *cores;
    return std::max(processors.activeProcessors() / 2, 1);
}

} // namespace Quillbrook

#include "MicroTree.h"

#include <benchmark/benchmark.h>
#include <chrono>

namespace {

using namespace Quillbrook;
using namespace Quillbrook::Benchmarks;

double secondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void addNode(benchmark::State &state)
{
    const auto finished = finishedTree(state.range(0));
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(unfinishedCopy(*finished));
    state.SetItemsProcessed(state.iterations() * finished->nodeCount());
}

// Both change the tree and so get a fresh one each time, whose making is not counted.
void rollUp(benchmark::State &state)
{
    const auto finished = finishedTree(state.range(0));
    for ([[maybe_unused]] auto _ : state) {
        const auto tree = unfinishedCopy(*finished);
        const auto start = std::chrono::steady_clock::now();
        tree->rollUp();
        state.SetIterationTime(secondsSince(start));
    }
    state.SetItemsProcessed(state.iterations() * finished->nodeCount());
}

void sortChildrenBySize(benchmark::State &state)
{
    const auto finished = finishedTree(state.range(0));
    for ([[maybe_unused]] auto _ : state) {
        const auto tree = unfinishedCopy(*finished);
        tree->rollUp();
        const auto start = std::chrono::steady_clock::now();
        tree->sortChildrenBySize();
        state.SetIterationTime(secondsSince(start));
    }
    state.SetItemsProcessed(state.iterations() * finished->nodeCount());
}

BENCHMARK(addNode)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(rollUp)->Arg(100'000)->Arg(1'000'000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(sortChildrenBySize)->Arg(100'000)->Arg(1'000'000)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

#include "MicroTree.h"
#include "Scan/TreeQueries.h"

#include <benchmark/benchmark.h>

namespace {

using namespace Quillbrook;
using namespace Quillbrook::Benchmarks;

constexpr qsizetype largestShown = 200;
constexpr qsizetype foundShown = 300;

void largestFiles(benchmark::State &state)
{
    const auto tree = finishedTree(state.range(0));
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(TreeQueries::largestFiles(*tree, 0, largestShown));
    state.SetItemsProcessed(state.iterations() * tree->nodeCount());
}

void searchFor(benchmark::State &state, const char *word)
{
    const auto tree = finishedTree(state.range(0));
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(TreeQueries::search(*tree, 0, QString::fromUtf8(word), foundShown));
    state.SetItemsProcessed(state.iterations() * tree->nodeCount());
}

BENCHMARK(largestFiles)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
// Met often, never, and never with a query that is not ASCII.
BENCHMARK_CAPTURE(searchFor, common, "report")->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(searchFor, absent, "quokka")->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(searchFor, absentUmlaut, "größe")->Arg(1'000'000)->Unit(benchmark::kMillisecond);

} // namespace

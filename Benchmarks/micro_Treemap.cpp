#include "MicroTree.h"
#include "Scan/Treemap.h"

#include <benchmark/benchmark.h>

namespace {

using namespace Quillbrook;
using namespace Quillbrook::Benchmarks;

void layout(benchmark::State &state)
{
    const auto tree = finishedTree(state.range(0));
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(
            Treemap::layout({ .tree = *tree, .node = 0, .in = QRectF(0, 0, 1000, 600) }));
}

BENCHMARK(layout)->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

} // namespace

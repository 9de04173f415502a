#include "CatalogueHome.h"

#include <benchmark/benchmark.h>

namespace {

using namespace Quillbrook;
using namespace Quillbrook::Benchmarks;
using namespace Qt::StringLiterals;

const auto home = u"/home/nobody here"_s;

const HostCatalogue &host()
{
    static const auto catalogue = LinuxCatalogue::catalogue({}, home);
    return catalogue;
}

void evaluate(benchmark::State &state, const FileTree &tree)
{
    CatalogueMachine machine;
    qsizetype findings = 0;
    for (auto _ : state)
        findings = StorageCatalogue::evaluate(machine.services(),
            { .tree = tree, .root = 0, .places = { .homeDirectory = home, .host = &host() } })
                       .findings.size();
    state.counters["findings"] = static_cast<double>(findings);
}

void evaluateEveryLocation(benchmark::State &state)
{
    CatalogueHome maker(home);
    maker.addEveryLocation(host());
    evaluate(state, *maker.finish());
}

// As many further children as told in each of the four folders that nearly all locations lie below.
void evaluateBelowWideFolders(benchmark::State &state, const char *name)
{
    CatalogueHome maker(home);
    maker.addEveryLocation(host());
    for (const auto *folder : { "", ".config", ".cache", ".local/share" })
        for (qint64 i = 0; i < state.range(0); ++i)
            maker.file(maker.folder(folder), name + std::to_string(i));
    evaluate(state, *maker.finish());
}

BENCHMARK(evaluateEveryLocation)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(evaluateBelowWideFolders, ascii, "some-file-")
    ->Arg(1'000)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(evaluateBelowWideFolders, notAscii, "Übersicht-")
    ->Arg(1'000)
    ->Arg(10'000)
    ->Unit(benchmark::kMillisecond);

} // namespace

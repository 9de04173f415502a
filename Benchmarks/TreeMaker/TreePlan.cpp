#include "TreeMaker/TreePlan.h"

#include "TreeMaker/Names.h"
#include "TreeMaker/Random.h"

#include <algorithm>
#include <array>

namespace Quillbrook::Benchmarks {

namespace {

// To be raised whenever the same request would give another tree, so that no old tree is taken for a new one.
constexpr int planVersion = 1;

constexpr std::uint64_t filesPerFolder = 24;
constexpr std::uint64_t filesPerChainLink = 10;

// How many files a folder holds, before all counts are scaled to the wanted total.
struct Crowd
{
    std::uint64_t thousandths;
    std::uint64_t fewest;
    std::uint64_t most;
};

constexpr std::array crowds{
    Crowd{ .thousandths = 150, .fewest = 0, .most = 0 },
    Crowd{ .thousandths = 290, .fewest = 1, .most = 5 },
    Crowd{ .thousandths = 330, .fewest = 5, .most = 20 },
    Crowd{ .thousandths = 172, .fewest = 20, .most = 70 },
    Crowd{ .thousandths = 48, .fewest = 70, .most = 200 },
    Crowd{ .thousandths = 9, .fewest = 200, .most = 900 },
    Crowd{ .thousandths = 1, .fewest = 1000, .most = 7000 },
};

std::uint64_t crowd(Random &random)
{
    auto left = random.below(1000);
    for (const auto &row : crowds) {
        if (left < row.thousandths)
            return random.between(row.fewest, row.most);
        left -= row.thousandths;
    }
    return 0;
}

// Scales the counts so that they add up to exactly `total`, rounding the running sum so that no error piles
// up.
void spreadFiles(TreePlan &plan, const std::vector<std::uint64_t> &crowdOf, std::uint64_t total)
{
    std::uint64_t sum = 0;
    for (const auto count : crowdOf)
        sum += count;
    if (sum == 0) {
        plan.folders.front().files = static_cast<std::uint32_t>(total);
        return;
    }
    std::uint64_t running = 0;
    std::uint64_t given = 0;
    for (size_t folder = 0; folder < plan.folders.size(); ++folder) {
        running += crowdOf[folder];
        const auto upToHere = static_cast<std::uint64_t>(static_cast<long double>(running)
            * static_cast<long double>(total) / static_cast<long double>(sum));
        plan.folders[folder].files = static_cast<std::uint32_t>(upToHere - given);
        given = upToHere;
    }
}

NameStyle styleOf(Random &random)
{
    constexpr std::array styles{ NameStyle::source, NameStyle::source, NameStyle::source, NameStyle::package,
        NameStyle::package, NameStyle::package, NameStyle::hashes, NameStyle::hashes, NameStyle::photos,
        NameStyle::documents };
    return random.pick(std::span(styles));
}

void planHome(TreePlan &plan, Random &random)
{
    const auto count = std::max<std::uint64_t>(1, plan.request.files / filesPerFolder);
    std::vector<std::uint64_t> crowdOf;
    plan.folders.reserve(count + 1);
    plan.folders.push_back({});
    crowdOf.push_back(0);
    while (plan.folders.size() <= count) {
        auto parent = random.below(plan.folders.size());
        while (plan.folders[parent].depth >= maximumDepth)
            parent = static_cast<std::uint64_t>(plan.folders[parent].parent);
        const auto style = styleOf(random);
        plan.folders.push_back({ .parent = static_cast<std::int32_t>(parent),
            .depth = static_cast<std::uint16_t>(plan.folders[parent].depth + 1),
            .style = style,
            .name = makeFolderName(style, plan.folders.size(), random) });
        crowdOf.push_back(crowd(random));
    }
    spreadFiles(plan, crowdOf, plan.request.files);
}

void planDeep(TreePlan &plan)
{
    auto left = plan.request.files;
    std::int32_t parent = -1;
    while (parent == -1 || left > 0) {
        const auto files = std::min(left, filesPerChainLink);
        plan.folders.push_back({ .parent = parent,
            .depth = static_cast<std::uint16_t>(parent + 1),
            .files = static_cast<std::uint32_t>(files),
            .name = parent == -1 ? "" : "one level further down" });
        left -= files;
        ++parent;
    }
}

std::string_view kindName(TreeKind kind)
{
    switch (kind) {
    case TreeKind::home:
        return "home";
    case TreeKind::wide:
        return "wide";
    case TreeKind::deep:
        return "deep";
    }
    return "";
}

} // namespace

TreePlan makePlan(const TreeRequest &request)
{
    TreePlan plan{ .request = request };
    Random random(request.seed);
    switch (request.kind) {
    case TreeKind::home:
        planHome(plan, random);
        break;
    case TreeKind::wide:
        plan.folders.push_back({ .files = static_cast<std::uint32_t>(request.files) });
        break;
    case TreeKind::deep:
        planDeep(plan);
        break;
    }
    return plan;
}

std::string relativePath(const TreePlan &plan, std::size_t folder)
{
    std::string path;
    for (; folder != 0; folder = static_cast<std::size_t>(plan.folders[folder].parent)) {
        if (!path.empty())
            path.insert(path.begin(), '/');
        path.insert(0, plan.folders[folder].name);
    }
    return path;
}

std::string folderName(const TreeRequest &request)
{
    return std::string(kindName(request.kind)) + "-" + std::to_string(request.files) + "-seed"
        + std::to_string(request.seed) + "-v" + std::to_string(planVersion);
}

std::string description(const TreePlan &plan)
{
    return "quillbrook benchmark tree v" + std::to_string(planVersion)
        + " kind=" + std::string(kindName(plan.request.kind)) + " files=" + std::to_string(plan.request.files)
        + " folders=" + std::to_string(plan.folders.size()) + " seed=" + std::to_string(plan.request.seed)
        + "\n";
}

} // namespace Quillbrook::Benchmarks

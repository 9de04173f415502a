// Makes a tree to measure, or takes the one that stands, and prints its path.
//
//     TreeMaker [--kind home|wide|deep] [--files N] [--seed N] [--directory FOLDER]
//     TreeMaker --remove [--directory FOLDER]
//
// The folder defaults to quillbrook-bench-UID in TMPDIR (else /tmp), and is made for the user alone.

#include "TreeMaker/TreeWriter.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <string_view>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace Quillbrook::Benchmarks;
namespace fs = std::filesystem;

constexpr std::uint64_t mostFiles = 100'000'000;

struct Arguments
{
    TreeRequest request{};
    std::optional<std::uint64_t> files{};
    fs::path directory{};
    bool remove = false;
};

int fail(const std::string &message)
{
    std::cerr << "TreeMaker: " << message << '\n';
    return 1;
}

std::optional<std::uint64_t> number(std::string_view text)
{
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc{} && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

std::optional<TreeKind> kindOf(std::string_view text)
{
    if (text == "home")
        return TreeKind::home;
    if (text == "wide")
        return TreeKind::wide;
    if (text == "deep")
        return TreeKind::deep;
    return std::nullopt;
}

std::uint64_t usualFiles(TreeKind kind)
{
    switch (kind) {
    case TreeKind::home:
        return 1'000'000;
    case TreeKind::wide:
        return 300'000;
    case TreeKind::deep:
        return 20'000;
    }
    return 0;
}

bool take(Arguments &arguments, std::string_view option, std::string_view value)
{
    if (option == "--kind") {
        const auto kind = kindOf(value);
        arguments.request.kind = kind.value_or(TreeKind::home);
        return kind.has_value();
    }
    if (option == "--directory") {
        arguments.directory = value;
        return !value.empty();
    }
    const auto parsed = number(value);
    if (option == "--files")
        arguments.files = parsed;
    else if (option == "--seed")
        arguments.request.seed = parsed.value_or(0);
    else
        return false;
    return parsed && *parsed <= mostFiles;
}

std::optional<Arguments> parse(int count, char **texts)
{
    Arguments arguments;
    for (int i = 1; i < count; ++i) {
        if (std::string_view(texts[i]) == "--remove")
            arguments.remove = true;
        else if (i + 1 >= count || !take(arguments, texts[i], texts[i + 1]))
            return std::nullopt;
        else
            ++i;
    }
    arguments.request.files = arguments.files.value_or(usualFiles(arguments.request.kind));
    return arguments;
}

// The usual folder, made if need be. It lies where anybody may write, so one that is a link or another
// user's is not taken.
std::optional<fs::path> usualDirectory()
{
    const auto *temporary = std::getenv("TMPDIR");
    const auto path = fs::path(temporary && *temporary ? temporary : "/tmp")
        / ("quillbrook-bench-" + std::to_string(::getuid()));
    ::mkdir(path.c_str(), 0700);
    struct stat status = {};
    const bool ours = ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode)
        && status.st_uid == ::getuid() && (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
    return ours ? std::optional(path) : std::nullopt;
}

// Removing a long chain of folders holds one descriptor a level.
void allowManyDescriptors()
{
    rlimit limit = {};
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = limit.rlim_max;
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
}

} // namespace

int main(int count, char **texts)
{
    auto arguments = parse(count, texts);
    if (!arguments)
        return fail("see the head of Benchmarks/TreeMaker/main.cpp for what it takes");
    if (arguments->directory.empty()) {
        const auto usual = usualDirectory();
        if (!usual)
            return fail("the temporary folder for benchmarks is not ours alone");
        arguments->directory = *usual;
    }
    allowManyDescriptors();
    std::error_code error;
    fs::create_directories(arguments->directory, error);
    if (arguments->remove) {
        const auto removed = removeTrees(arguments->directory);
        if (!removed)
            return fail(removed.error());
        std::cout << *removed << '\n';
        return 0;
    }
    const auto tree = ensureTree(makePlan(arguments->request), arguments->directory);
    if (!tree)
        return fail(tree.error());
    settle(*tree);
    std::cout << tree->path.string() << '\n';
    return 0;
}

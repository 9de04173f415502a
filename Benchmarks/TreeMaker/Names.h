#pragma once

// Names for the files and folders of a made-up tree: of the lengths and kinds that are met in home folders,
// around 19 bytes, up to about 130. A name is unique in its folder because the file's number in it is part of
// it.

#include "TreeMaker/TreePlan.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace Quillbrook::Benchmarks {

class Random;

/// About three files in a hundred have it in its name.
inline constexpr std::string_view commonWord = "index";
/// One file in 80,000 has it, and no other name does.
inline constexpr std::string_view rareWord = "quokka";
inline constexpr std::uint64_t rareWordEvery = 80'000;

[[nodiscard]] std::string makeFolderName(NameStyle style, std::uint64_t number, Random &random);

/// `number` is the file's number in its folder, `serial` its number in the whole tree.
[[nodiscard]] std::string makeFileName(
    NameStyle style, std::uint64_t number, std::uint64_t serial, Random &random);

} // namespace Quillbrook::Benchmarks

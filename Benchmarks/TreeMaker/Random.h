#pragma once

// The random numbers that trees are made from. Written out here because a tree made from one seed has to be
// the same everywhere, which the distributions of the standard library do not promise.

#include <cstdint>
#include <span>

namespace Quillbrook::Benchmarks {

class Random
{
public:
    explicit Random(std::uint64_t seed)
        : m_state(seed)
    {
    }

    /// The next 64 bits (a counter through an avalanche mix).
    std::uint64_t next()
    {
        m_state += 0x9e3779b97f4a7c15U;
        auto mixed = m_state;
        mixed = (mixed ^ (mixed >> 30U)) * 0xbf58476d1ce4e5b9U;
        mixed = (mixed ^ (mixed >> 27U)) * 0x94d049bb133111ebU;
        return mixed ^ (mixed >> 31U);
    }

    /// A whole number from 0 up to, not including, `bound`. REQUIRES: bound > 0.
    std::uint64_t below(std::uint64_t bound) { return next() % bound; }

    /// A whole number from `first` to `last`, both included.
    std::uint64_t between(std::uint64_t first, std::uint64_t last) { return first + below(last - first + 1); }

    /// True in `thousandths` of 1000 cases.
    bool chance(std::uint64_t thousandths) { return below(1000) < thousandths; }

    template <typename T, std::size_t size>
    const T &pick(std::span<const T, size> choices)
    {
        return choices[below(choices.size())];
    }

private:
    std::uint64_t m_state;
};

} // namespace Quillbrook::Benchmarks

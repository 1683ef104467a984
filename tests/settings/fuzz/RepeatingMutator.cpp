// SPDX-License-Identifier: AGPL-3.0-only
// Makes a large block of a small one now and then. libFuzzer alone changes a few bytes at a time, and what takes long
// is what stands in a block a hundred thousand times.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string_view>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate (std::uint8_t* data, std::size_t size, std::size_t maximum);

extern "C" std::size_t
LLVMFuzzerCustomMutator (std::uint8_t* data, std::size_t size, std::size_t maximum, unsigned seed)
{
    constexpr std::string_view frame = "VC2!\xff\xff\xff\x7f"; // one that claims as much as there is
    constexpr std::size_t small = 8192;
    constexpr unsigned repeatsOneIn = 200; // a large block takes as long as hundreds of small ones
    std::minstd_rand random (seed);

    // What is made of a large block is small again, or soon there were no others.
    size = std::min (size, small);

    if (size <= frame.size() || random() % repeatsOneIn != 0)
        return LLVMFuzzerMutate (data, size, std::min (maximum, small));

    // Some bytes, or those up to where the first of them comes again, which is a tag, an attribute or a reference: in
    // place of themselves as often as they fit, or nearly so.
    const std::vector<std::uint8_t> block (data, data + size);
    const auto start = frame.size() + random() % (size - frame.size());
    const auto first = block.begin() + static_cast<std::ptrdiff_t> (start);
    const auto again = static_cast<std::size_t> (std::find (first + 1, block.end(), *first) - first);
    const auto piece = random() % 2 == 0 ? again : std::min<std::size_t> (1 + random() % 16, size - start);
    const auto most = (maximum - size) / piece;
    const auto count = random() % 4 == 0 ? random() % (most + 1) : most;

    auto* end = std::copy_n (block.begin(), start, data);

    for (std::size_t i = 0; i <= count; ++i)
        end = std::copy_n (first, piece, end);

    end = std::copy (first + static_cast<std::ptrdiff_t> (piece), block.end(), end);
    std::ranges::copy (frame, data);
    return static_cast<std::size_t> (end - data);
}

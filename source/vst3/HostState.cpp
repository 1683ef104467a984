// SPDX-License-Identifier: AGPL-3.0-only
#include "vst3/HostState.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

using namespace std::string_view_literals;

namespace larkspire
{

namespace
{
constexpr auto headerMagic = "VstW"sv;
constexpr auto bankMagic = "CcnK"sv;
constexpr auto chunkMagic = "FBCh"sv;

/** The fields of a wrapping from its beginning on, numbers big-endian. Behind its end there are zeros. */
class Fields
{
public:
    explicit Fields (std::string_view bytes) : rest (bytes) {}

    std::string_view take (std::size_t size)
    {
        isWhole = isWhole && size <= rest.size();
        const auto taken = rest.substr (0, size);
        rest.remove_prefix (taken.size());
        return taken;
    }

    std::uint32_t number()
    {
        std::uint32_t value = 0;

        for (const char byte : take (4))
            value = value << 8u | static_cast<unsigned char> (byte);

        return value;
    }

    bool isWhole = true; // nothing was taken that is not there

private:
    std::string_view rest;
};

/** What stands behind the chunk: nothing or one value of a tree of JUCE's, its length, and a word. */
std::string trailer (std::optional<bool> isBypassed)
{
    constexpr auto word = "JUCEPrivateData"sv;
    constexpr char isTrue = 2;
    constexpr char isFalse = 3;
    std::string tree;

    if (isBypassed)
    {
        tree.append (word).append ("\0\1\1Bypass\0\1\1"sv); // one value, its name and length
        tree += *isBypassed ? isTrue : isFalse;
        tree += '\0'; // no branches
    }

    const std::string noNumber (sizeof (std::uint64_t), '\0');
    auto length = noNumber;
    length.front() = static_cast<char> (tree.size());
    return noNumber + tree + length + std::string (word);
}

HostState withoutTrailer (std::string_view bytes)
{
    constexpr std::array<std::optional<bool>, 3> all { false, true, std::nullopt };

    for (const auto isBypassed : all)
        if (const auto end = trailer (isBypassed); bytes.ends_with (end))
            return { std::string (bytes.substr (0, bytes.size() - end.size())), isBypassed };

    return { std::string (bytes), std::nullopt };
}

bool isWrapped (std::string_view bytes)
{
    return bytes.starts_with (headerMagic) || bytes.starts_with (bankMagic);
}

std::optional<HostState> unwrapped (std::string_view bytes)
{
    std::optional<bool> isBypassed;
    Fields fields (bytes);

    if (bytes.starts_with (headerMagic))
    {
        fields.take (12); // and the header's size and version
        isBypassed = fields.number() != 0;
    }

    if (fields.take (4) != bankMagic)
        return {};

    fields.number(); // the size of the rest

    if (fields.take (4) != chunkMagic)
        return {};

    const auto version = fields.number();
    fields.take (12); // the plug-in's id and version, the count of programs

    if (version >= 1)
        fields.take (128); // the current program, and room for more

    const auto size = fields.number();
    const auto chunk = fields.take (size);

    if (! fields.isWhole || chunk.empty() || isWrapped (chunk))
        return {};

    auto state = withoutTrailer (chunk);

    if (isBypassed)
        state.isBypassed = isBypassed;

    return state;
}
} // namespace

std::optional<HostState> HostState::read (std::string_view bytes)
{
    return isWrapped (bytes) ? unwrapped (bytes) : withoutTrailer (bytes);
}

std::string HostState::withTrailer() const
{
    return chunk + trailer (isBypassed);
}

} // namespace larkspire

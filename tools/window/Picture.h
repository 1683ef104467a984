// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <vector>

namespace larkspire::window
{

/** A colour of eight bits a channel. */
struct Colour
{
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    bool operator== (const Colour&) const = default;
};

/** A rectangle of opaque pixels, row by row from the top left. */
struct Picture
{
    int width = 0;
    int height = 0;
    std::vector<Colour> pixels;

    /** The pixel in column x and row y; both must lie inside. */
    Colour at (int x, int y) const
    {
        return pixels.at (static_cast<std::size_t> (y) * static_cast<std::size_t> (width)
                          + static_cast<std::size_t> (x));
    }

    bool operator== (const Picture&) const = default;
};

/** Writes a picture as a PNG file. Throws Failure if that does not work. */
void writePng (const Picture& picture, const std::filesystem::path& path);

/** Reads a PNG file; transparency is taken as black. Throws Failure if that does not work. */
Picture readPng (const std::filesystem::path& path);

} // namespace larkspire::window

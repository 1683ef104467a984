// SPDX-License-Identifier: AGPL-3.0-only
#include "windows/host/Commands.h"
#include "windows/host/Files.h"
#include "windows/host/HostedPlugin.h"
#include "windows/host/Layouts.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace
{
/** A sound through a fresh instance, in and out as bytes of interleaved stereo floats. */
std::string rendered (const std::string& library, int position, const Layout& layout, const std::string& bytes)
{
    const auto frames = bytes.size() / (2 * sizeof (float));
    std::vector<float> samples (2 * frames);
    std::memcpy (samples.data(), bytes.data(), samples.size() * sizeof (float));

    const auto plugin = openPlugin (library);
    plugin->setPosition (position);
    plugin->start (layout.rate, blockSize, layout.isMono);

    for (std::size_t from = 0; from < frames; from += blockSize)
    {
        const auto count = std::min<std::size_t> (blockSize, frames - from);
        std::vector<float> left (count);
        std::vector<float> right (count);

        for (std::size_t i = 0; i < count; ++i)
        {
            left[i] = samples[2 * (from + i)];
            right[i] = samples[2 * (from + i) + 1];
        }

        float* const channels[] = { left.data(), right.data() };
        plugin->process (channels, count);

        for (std::size_t i = 0; i < count; ++i)
        {
            samples[2 * (from + i)] = left[i];
            samples[2 * (from + i) + 1] = right[i];
        }
    }

    return { reinterpret_cast<const char*> (samples.data()), samples.size() * sizeof (float) };
}
} // namespace

void commands::render (const Arguments& arguments)
{
    const auto anchor = openPlugin (arguments.at (0)); // keeps the library loaded
    std::string all;

    for (std::size_t i = 3; i < arguments.size(); ++i)
        for (const auto& layout : layouts)
            all += rendered (arguments[0], std::stoi (arguments[1]), layout, readFile (arguments[i]));

    writeFile (arguments.at (2), all);
}

void commands::save (const Arguments& arguments)
{
    const auto plugin = openPlugin (arguments.at (0));
    plugin->setPosition (std::stoi (arguments.at (1)));
    writeFile (arguments.at (2), plugin->save());
}

void commands::restore (const Arguments& arguments)
{
    for (std::size_t i = 1; i + 1 < arguments.size(); i += 2)
    {
        const auto plugin = openPlugin (arguments[0]);
        plugin->load (readFile (arguments[i]));
        std::printf ("parameter: %.9g\n", static_cast<double> (plugin->getParameter()));
        writeFile (arguments[i + 1], plugin->save());
    }
}

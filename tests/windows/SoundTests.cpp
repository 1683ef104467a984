// SPDX-License-Identifier: AGPL-3.0-only
// The sound of the Windows libraries under Wine, beside each other and beside the Linux library.
#include "support/Comparison.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"
#include "windows/WineHost.h"
#include "windows/host/Layouts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace
{
std::string nameOf (const Layout& layout)
{
    return (layout.isMono ? "mono, " : "stereo, ") + std::to_string (static_cast<int> (layout.rate)) + " Hz";
}

std::string interleaved (const Signal& signal)
{
    std::string bytes (signal.left.size() * 2 * sizeof (float), '\0');

    for (std::size_t i = 0; i < signal.left.size(); ++i)
    {
        const float frame[] = { signal.left[i], signal.right[i] };
        std::memcpy (bytes.data() + i * sizeof (frame), frame, sizeof (frame));
    }

    return bytes;
}

/** Signals as the Windows library of a format renders them, each in every layout. */
std::vector<Signal> onWindows (Format format, int position, const std::vector<Signal>& signals)
{
    const TemporaryFolder folder;
    std::vector<std::string> arguments { std::to_string (position), folder / "out" };

    for (const auto& signal : signals)
    {
        arguments.push_back (folder / signal.name);
        writeBytes (arguments.back(), interleaved (signal));
    }

    WineHost::run ("render", arguments, format);
    const auto bytes = bytesOf (folder / "out");
    std::vector<Signal> rendered;
    std::size_t at = 0;

    for (const auto& signal : signals)
        for (const auto& layout : layouts)
        {
            auto& sound = rendered.emplace_back (signal);
            sound.name += ", " + nameOf (layout);

            for (std::size_t i = 0; i < sound.left.size(); ++i, at += 2 * sizeof (float))
            {
                float frame[2];
                bytes.substr (at, sizeof (frame)).copy (reinterpret_cast<char*> (frame), sizeof (frame));
                sound.left[i] = frame[0];
                sound.right[i] = frame[1];
            }
        }

    EXPECT_EQ (at, bytes.size());
    return rendered;
}

Signal onLinux (int position, const Layout& layout, Signal signal)
{
    const auto plugin = openPlugin (Format::vst2);
    plugin->setParameter (knobPosition (position));
    plugin->start (layout.rate, blockSize, layout.isMono);
    const auto frames = signal.left.size();

    for (std::size_t from = 0; from < frames; from += blockSize)
        plugin->process (signal, from, std::min<std::size_t> (blockSize, frames - from));

    return signal;
}

class WindowsSound : public testing::TestWithParam<int>
{
};

INSTANTIATE_TEST_SUITE_P (AtPosition, WindowsSound, testing::Values (0, 1, 2, 3, 4, 9));

TEST_P (WindowsSound, IsThatOfTheLinuxLibrary)
{
    const auto sound = voice (480000); // ten seconds
    const auto vst2 = onWindows (Format::vst2, GetParam(), { sound });
    const auto vst3 = onWindows (Format::vst3, GetParam(), { sound });
    double largest = 0.0;

    for (std::size_t i = 0; i < layouts.size(); ++i)
    {
        const auto linux = onLinux (GetParam(), layouts[i], sound);

        for (const auto& windows : { vst2[i], vst3[i] })
        {
            const auto difference = compare (windows, linux).worst;
            EXPECT_LE (difference, GetParam() == 0 ? 0.0 : 2e-5) << windows.name;
            largest = std::max (largest, difference);
        }
    }

    std::printf ("largest difference %g of full scale\n", largest);
}

TEST_P (WindowsSound, IsTheSameInBothFormatsToTheBit)
{
    const auto sounds = testSignals (16 * blockSize + 11);
    const auto vst2 = onWindows (Format::vst2, GetParam(), sounds);
    const auto vst3 = onWindows (Format::vst3, GetParam(), sounds);

    for (std::size_t i = 0; i < vst2.size(); ++i)
        EXPECT_TRUE (compare (vst3[i], vst2[i]).sameBits) << vst2[i].name;
}
} // namespace

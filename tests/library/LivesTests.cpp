// SPDX-License-Identifier: AGPL-3.0-only
// Instances that come and go by the thousand, and the library with them.
#include "support/Comparison.h"
#include "support/PluginUnderTest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <dlfcn.h>
#include <filesystem>
#include <iostream>
#include <malloc.h>
#include <memory>
#include <numeric>
#include <random>

namespace
{
constexpr unsigned int seed = 20240611;

/** What the C library may put aside for itself, in bytes, while something is done so many times: less than the smallest
    piece of memory that could be left behind each time, which takes 32. */
constexpr std::size_t slackFor (std::size_t times)
{
    return 24 * times;
}

/** Bytes that this process has asked of the C library and not given back. */
std::size_t memoryInUse()
{
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

std::size_t entriesOf (const char* folder)
{
    const std::filesystem::directory_iterator begin (folder);
    return static_cast<std::size_t> (std::distance (begin, std::filesystem::directory_iterator()));
}

bool isLoaded (Format format)
{
    auto* library = dlopen (libraryPath (format).c_str(), RTLD_NOW | RTLD_NOLOAD);

    if (library != nullptr)
        dlclose (library);

    return library != nullptr;
}

/** An instance that has been used: a mode, a block of sound, a save. */
std::unique_ptr<PluginUnderTest> usedInstance (Format format, std::size_t number)
{
    auto plugin = openPlugin (format);
    plugin->setParameter (knobPosition (static_cast<int> (number % 4)));
    plugin->start (48000.0f);
    auto signal = noise (16, -12.0, 1);
    plugin->process (signal, 0, 16);
    plugin->save();
    return plugin;
}

/** Makes so many instances and drops each at some time, never more than so many at once. */
void liveThrough (Format format, std::size_t total, std::size_t most)
{
    std::mt19937 random (seed);
    std::vector<std::unique_ptr<PluginUnderTest>> alive;

    for (std::size_t made = 0; made < total || ! alive.empty();)
    {
        const bool makes = made < total && alive.size() < most && (alive.empty() || random() % 2 == 0);

        if (makes)
        {
            alive.push_back (usedInstance (format, made++));
        }
        else
        {
            std::swap (alive[random() % alive.size()], alive.back());
            alive.pop_back();
        }
    }
}

class Lives : public testing::TestWithParam<Format>
{
};

INSTANTIATE_TEST_SUITE_P (By, Lives, testing::ValuesIn (allFormats), testing::PrintToStringParamName());

TEST_P (Lives, OfTenThousandInstancesLeaveNoMemoryBehind)
{
    constexpr std::size_t count = 10000;
    const auto anchor = openPlugin (GetParam()); // keeps the library loaded; that has a test of its own
    liveThrough (GetParam(), 500, 32);           // JUCE and the C library set themselves up
    const auto before = memoryInUse();
    liveThrough (GetParam(), count, 32);
    const auto after = memoryInUse();
    EXPECT_LT (after, before + slackFor (count)) << "of " << before;
    std::cout << "memory after ten thousand instances: " << static_cast<long> (after - before) << " bytes more\n";
}

TEST_P (Lives, OfFiveHundredAndTwelveAtOnceDoNotTouchEachOther)
{
    constexpr std::size_t count = 512;
    constexpr std::size_t frames = 1000;
    const auto input = noise (frames, -12.0, 1);
    std::vector<std::unique_ptr<PluginUnderTest>> hosts;
    std::vector<Signal> outputs (count, input);
    std::vector<std::size_t> turns (count);
    std::iota (turns.begin(), turns.end(), std::size_t { 0 });

    for (std::size_t i = 0; i < count; ++i)
    {
        hosts.push_back (openPlugin (GetParam()));
        hosts.back()->setParameter (knobPosition (static_cast<int> (i % 8)));
        hosts.back()->start (i % 16 < 8 ? 48000.0f : 96000.0f);
    }

    // In another order every time, a few frames each; meanwhile saves and loads of one go on beside the sound of
    // another.
    std::mt19937 random (seed);

    for (std::size_t done = 0; done < frames; done += 50)
    {
        std::ranges::shuffle (turns, random);

        for (const auto i : turns)
        {
            hosts[i]->process (outputs[i], done, 50);

            if (random() % 16 == 0)
                hosts[i]->save();
        }
    }

    for (std::size_t i = 0; i < count; ++i)
        EXPECT_TRUE (compare (outputs[i], outputs[i % 16]).sameBits) << i;

    for (std::size_t i = 0; i < 16; ++i)
    {
        auto alone = input;
        const auto host = openPlugin (GetParam());
        host->setParameter (knobPosition (static_cast<int> (i % 8)));
        host->start (i < 8 ? 48000.0f : 96000.0f);
        host->process (alone, 0, frames);
        EXPECT_TRUE (compare (outputs[i], alone).sameBits) << i;
    }

    // Half of them go, and the others stay as they are.
    std::ranges::shuffle (turns, random);

    for (std::size_t k = 0; k < count / 2; ++k)
        hosts[turns[k]].reset();

    for (std::size_t k = count / 2; k < count; ++k)
        EXPECT_EQ (hosts[turns[k]]->getParameter(), knobPosition (static_cast<int> (turns[k] % 8)));
}

TEST_P (Lives, OfTheLibraryItselfLeaveNothingBehind)
{
    const auto loadAndUnload = []
    {
        usedInstance (GetParam(), 2).reset();
        ASSERT_FALSE (isLoaded (GetParam())) << "something keeps the library in the process";
    };

    constexpr std::size_t count = 300;

    for (std::size_t i = 0; i < count; ++i)
        loadAndUnload();

    const auto memory = memoryInUse();
    const auto files = entriesOf ("/proc/self/fd");
    const auto threads = entriesOf ("/proc/self/task");

    for (std::size_t i = 0; i < count; ++i)
        loadAndUnload();

    const auto after = memoryInUse();
    EXPECT_LT (after, memory + slackFor (count)) << "of " << memory;
    EXPECT_EQ (entriesOf ("/proc/self/fd"), files);
    EXPECT_EQ (entriesOf ("/proc/self/task"), threads);
    std::cout << "memory after " << count << " loads of the library: " << static_cast<long> (after - memory)
              << " bytes more\n";
}
} // namespace

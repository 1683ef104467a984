// SPDX-License-Identifier: AGPL-3.0-only
// States that hosts hand to the VST 3 library: whole, wrapped and damaged.
#include "support/Comparison.h"
#include "support/Paths.h"
#include "support/PluginUnderTest.h"
#include "support/VstW.h"
#include "support/vst3/Vst3Instance.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <ctime>

namespace
{
/** What JUCE's wrapper writes last. */
const std::string trailerMagic = "JUCEPrivateData";

std::string littleEndian (std::uint64_t number)
{
    std::string bytes;

    for (unsigned int shift = 0; shift < 64; shift += 8)
        bytes += static_cast<char> (number >> shift & 0xffu);

    return bytes;
}

class Vst3State : public testing::Test
{
protected:
    /** The chunk of VST 2 at "Powerful". */
    static std::string chunk()
    {
        const auto plugin = openPlugin (Format::vst2);
        plugin->setParameter (knobPosition (3));
        return plugin->save();
    }

    double mode() const { return instance.getParameter (instance.modeId()); }
    double bypass() const { return instance.getParameter (instance.bypassId()); }

    void set (double position, double isBypassed)
    {
        instance.setParameter (instance.modeId(), position);
        instance.setParameter (instance.bypassId(), isBypassed);
        instance.flush();
    }

    /** A state of VST 3 at "Powerful". */
    std::string saved (bool isBypassed)
    {
        set (3.0 / 9.0, isBypassed ? 1.0 : 0.0);
        return instance.save();
    }

    /** Whether what is played comes out as it went in. */
    bool isPassing()
    {
        auto played = noise (64, -12.0, 1);
        const auto before = played;
        float* const channels[] = { played.left.data(), played.right.data() };
        instance.setUp (48000.0, 64);
        instance.activate();
        instance.process (channels, channels, played.left.size());
        instance.deactivate();
        return compare (played, before).sameBits;
    }

    /** Restores what does harm, if it does, by a crash or by taking its time. */
    void restoreWithoutHarm (const std::string& state)
    {
        const auto start = std::clock();
        instance.load (state);
        EXPECT_LT (static_cast<double> (std::clock() - start) / CLOCKS_PER_SEC, 1.0) << "seconds of processor time";
    }

    Vst3Module module { paths::vst3() };
    Vst3Instance instance { module };
};

TEST_F (Vst3State, HoldsTheHostsBypass)
{
    for (const bool isBypassed : { true, false })
    {
        const auto state = saved (isBypassed);
        set (1.0 / 9.0, isBypassed ? 0.0 : 1.0);
        EXPECT_TRUE (instance.load (state));
        EXPECT_NEAR (mode(), 3.0 / 9.0, 5e-5);
        EXPECT_EQ (bypass(), isBypassed ? 1.0 : 0.0);
        EXPECT_EQ (isPassing(), isBypassed);
    }
}

TEST_F (Vst3State, TakesTheBypassOfVst2FromTheHostsWrapping)
{
    for (const bool isBypassed : { true, false })
    {
        set (1.0 / 9.0, isBypassed ? 0.0 : 1.0);
        EXPECT_TRUE (instance.load (wrapped::vstW (chunk(), isBypassed)));
        EXPECT_NEAR (mode(), 3.0 / 9.0, 5e-5);
        EXPECT_EQ (bypass(), isBypassed ? 1.0 : 0.0);
        EXPECT_EQ (isPassing(), isBypassed);
    }
}

TEST_F (Vst3State, LeavesTheBypassWhereItTellsOfNone)
{
    for (const auto& state : { chunk(), wrapped::bank (chunk()) })
        for (const double isBypassed : { 0.0, 1.0 })
        {
            set (1.0 / 9.0, isBypassed);
            EXPECT_TRUE (instance.load (state));
            EXPECT_NEAR (mode(), 3.0 / 9.0, 5e-5);
            EXPECT_EQ (bypass(), isBypassed);
        }
}

TEST_F (Vst3State, IsRefusedWhereAWrappingWasCutOff)
{
    const auto state = wrapped::vstW (chunk(), true);

    for (const auto& whole : { state, wrapped::bank (chunk()) })
        for (std::size_t length = 4; length < whole.size(); ++length)
        {
            set (1.0 / 9.0, 0.0);
            EXPECT_FALSE (instance.load (whole.substr (0, length))) << length;
            ASSERT_NEAR (mode(), 1.0 / 9.0, 5e-5) << length;
            ASSERT_EQ (bypass(), 0.0) << length;
        }
}

TEST_F (Vst3State, IsRefusedWhereAWrappingClaimsMoreThanThereIs)
{
    constexpr std::size_t placeOfSize = 156;
    set (1.0 / 9.0, 0.0);

    for (const std::uint32_t size : { 0xffffffffu, 0xfffffff0u, 0x80000000u, 0x7fffffffu, 0x10000000u, 0u })
    {
        auto state = wrapped::bank (chunk());
        state.replace (placeOfSize, 4, wrapped::bigEndian (size));
        restoreWithoutHarm (state);
        EXPECT_NEAR (mode(), 1.0 / 9.0, 5e-5);
    }
}

TEST_F (Vst3State, IsRefusedWhereABankHoldsProgramsInPlaceOfAChunk)
{
    set (1.0 / 9.0, 0.0);

    for (const std::uint32_t programs : { 0xffffffffu, 0x7fffffffu, 0x01000000u, 1u, 0u })
    {
        auto state = wrapped::bank (chunk());
        state.replace (8, 4, "FxBk");
        state.replace (24, 4, wrapped::bigEndian (programs));
        restoreWithoutHarm (state);
        EXPECT_NEAR (mode(), 1.0 / 9.0, 5e-5);
    }
}

TEST_F (Vst3State, IsNotWrappedTwice)
{
    set (1.0 / 9.0, 0.0);
    auto inner = wrapped::bank (chunk());
    inner.replace (156, 4, wrapped::bigEndian (0xfffffff0u));
    restoreWithoutHarm (wrapped::bank (inner));
    EXPECT_NEAR (mode(), 1.0 / 9.0, 5e-5);
}

TEST_F (Vst3State, KeepsItsKnobWhereTheTrailersSizeIsWrong)
{
    const auto state = saved (true);
    const auto placeOfSize = state.size() - trailerMagic.size() - 8;

    for (const std::uint64_t size : { std::uint64_t { 1 } << 40,
                                      ~std::uint64_t { 0 },
                                      std::uint64_t { 1 } << 63,
                                      std::uint64_t { 0x7fffffff },
                                      std::uint64_t { state.size() },
                                      std::uint64_t { placeOfSize },
                                      std::uint64_t { placeOfSize - 1 },
                                      std::uint64_t { 1 } })
    {
        auto damaged = state;
        damaged.replace (placeOfSize, 8, littleEndian (size));
        set (1.0 / 9.0, 0.0);
        restoreWithoutHarm (damaged);
        EXPECT_NEAR (mode(), 3.0 / 9.0, 5e-5) << size;
        EXPECT_EQ (bypass(), 0.0) << size;
    }
}

TEST_F (Vst3State, SurvivesATrailerAlone)
{
    for (const auto& state : { trailerMagic, littleEndian (0) + trailerMagic, littleEndian (1) + trailerMagic })
        restoreWithoutHarm (state);
}

TEST_F (Vst3State, SurvivesEveryFlippedBitOfItsTrailer)
{
    const auto state = saved (true);

    for (std::size_t place = state.find ('\0', 8); place < state.size(); ++place)
        for (unsigned int bit = 0; bit < 8; ++bit)
        {
            auto damaged = state;
            damaged[place] = static_cast<char> (static_cast<unsigned char> (damaged[place]) ^ 1u << bit);
            restoreWithoutHarm (damaged);
        }
}

TEST_F (Vst3State, SurvivesATrailerThatClaimsMuch)
{
    // As many attributes, or as long a value, as a number of four bytes can say.
    const std::string mostAsNumber = "\x04\xff\xff\xff\x7f";
    const std::string name = std::string ("JUCEPrivateData") + '\0';

    for (const auto& tree : { name + mostAsNumber,
                              name + "\x01\x01" + "Bypass" + '\0' + mostAsNumber + "\x08",
                              name + '\0' + mostAsNumber })
        restoreWithoutHarm (chunk() + littleEndian (0) + tree + littleEndian (tree.size()) + trailerMagic);
}
} // namespace

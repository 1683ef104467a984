// SPDX-License-Identifier: AGPL-3.0-only
// The library in the DAW Ardour: found, set, saved, opened again and exported, each in a process of its own.
#include "daws/Ardour.h"
#include "support/Child.h"
#include "support/FirstMatch.h"
#include "support/RawHost.h"
#include "support/Signals.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace
{
using testing::HasSubstr;

constexpr std::size_t length = 240000; // frames: five seconds

constexpr std::size_t block = 1024;   // frames that Ardour processes at a time
constexpr std::size_t leadIn = 96000; // frames that an export runs ahead of its start, two seconds

/** What the library makes of two channels when it is called directly, after that many frames of silence. */
Channels processed (Channels channels, int index, std::size_t silence = leadIn)
{
    RawHost host;
    host.setParameter (knobPosition (index));
    host.start (48000.0f, static_cast<int> (block));

    for (std::size_t from = 0; from < silence; from += block)
    {
        std::vector<float> left (block), right (block);
        host.process (left, right, 0, std::min (block, silence - from));
    }

    for (std::size_t from = 0; from < channels[0].size(); from += block)
        host.process (channels[0], channels[1], from, std::min (block, channels[0].size() - from));

    return channels;
}

Channels startOf (const Channels& channels)
{
    Channels start;

    for (const auto& channel : channels)
        start.emplace_back (channel.begin(),
                            channel.begin() + static_cast<std::ptrdiff_t> (std::min (channel.size(), 2 * block)));

    return start;
}

/** What an export has to be, going by its start. The library's gains move in silence too, and ahead of the start Ardour
    runs the plug-in on silence: for the lead-in of an export, and for some blocks while the engine gets going. The
    start of the sound tells how many those were; with that number every frame has to be right. */
Channels expectedFor (const Channels& exported, const Channels& input, int index)
{
    for (std::size_t blocks = 0; blocks < 200; ++blocks)
        if (processed (startOf (input), index, leadIn + blocks * block) == startOf (exported))
            return processed (input, index, leadIn + blocks * block);

    return processed (input, index);
}

std::string decodedBase64 (const std::string& text)
{
    const TemporaryFolder folder;
    writeBytes (folder / "text", text);
    return outputOf ({ .arguments = { "--decode", "--ignore-garbage", folder / "text" }, .program = "base64" });
}

class ArdourHost : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        // Without this variable JUCE connects to the first X server that it finds.
        setenv ("DISPLAY", ":none", 1);
        ardour = std::make_unique<Ardour>();
    }

    static void TearDownTestSuite() { ardour.reset(); }

    static inline std::unique_ptr<Ardour> ardour;
};

TEST_F (ArdourHost, FindsThePluginWithItsNameAndChannels)
{
    const auto report = ardour->scan();
    EXPECT_EQ (found (report, " name=\"([^\"]*)\""), "Quendal Larkspire");
    EXPECT_EQ (found (report, " creator=\"([^\"]*)\""), "Quendal");
    EXPECT_EQ (found (report, " id=\"([^\"]*)\""), std::to_string (0x546d7771));
    EXPECT_EQ (found (report, " category=\"([^\"]*)\""), "Effect");
    EXPECT_EQ (found (report, " n_inputs=\"([^\"]*)\""), "2");
    EXPECT_EQ (found (report, " n_outputs=\"([^\"]*)\""), "2");
    EXPECT_EQ (found (report, " n_midi_inputs=\"([^\"]*)\""), "0");
    EXPECT_EQ (found (report, " is_instrument=\"([^\"]*)\""), "0");
    EXPECT_EQ (found (report, " has_editor=\"([^\"]*)\""), "1");
}

TEST_F (ArdourHost, StoresTheParameterAndTheStateInTheSession)
{
    ardour->makeSession ("stored", { .channels = stereoVoice (length), .parameter = knobPosition (3) });
    const auto session = bytesOf (ardour->sessionPath ("stored"));
    EXPECT_THAT (found (session, "<Controllable name=\"Mode\"[^>]* value=\"([^\"]*)\""),
                 testing::StartsWith ("0.333333"));

    const auto state = decodedBase64 (found (session, "<chunk[^>]*>([^<]*)</chunk>"));
    ASSERT_GT (state.size(), 9u);
    EXPECT_EQ (state.substr (0, 4), "VC2!");
    EXPECT_EQ (found (state, " mode=\"([^\"]*)\""), "0.3333");
    EXPECT_EQ (found (state, " daw=\"([^\"]*)\""), "lib/ardour7/luasession");
    EXPECT_EQ (found (state, " samplerate=\"([^\"]*)\""), "48000");
}

TEST_F (ArdourHost, OpensASessionWithThePluginAsItWasSet)
{
    ardour->makeSession ("set", { .channels = stereoVoice (length), .parameter = knobPosition (1) });
    const auto report = ardour->openSession ("set");
    EXPECT_THAT (report, HasSubstr ("name: Quendal Larkspire\n"));
    EXPECT_THAT (report, HasSubstr ("parameters: 1\n"));
    EXPECT_THAT (report, HasSubstr ("parameter: Mode\n"));
    EXPECT_THAT (report, HasSubstr ("value: 0.111100\n")) << "the state has four decimals";
    EXPECT_THAT (report, HasSubstr ("active: true\n"));
}

TEST_F (ArdourHost, PassesTheInputWhileThePluginIsDeactivated)
{
    const auto input = stereoVoice (length);
    ASSERT_NE (processed (input, 3), input);

    ardour->makeSession ("deactivated", { .channels = input, .parameter = knobPosition (3), .active = false });
    EXPECT_THAT (ardour->openSession ("deactivated"), HasSubstr ("active: false\n"));
    const auto isInput = [&input] (const Channels& exported) { return exported == input; };
    expectSameBits (ardour->exportSession ("deactivated", isInput), input);
}

class ArdourSound : public ArdourHost, public testing::WithParamInterface<int>
{
protected:
    /** Expects that a session's export is what the library makes of the input at the knob's position. */
    static void expectProcessed (const std::string& name, const Channels& input)
    {
        const auto isRight = [&input] (const Channels& exported)
        { return exported == expectedFor (exported, input, GetParam()); };
        const auto exported = ardour->exportSession (name, isRight);
        expectSameBits (exported, expectedFor (exported, input, GetParam()));
    }
};

INSTANTIATE_TEST_SUITE_P (AtPosition, ArdourSound, testing::Range (0, 4));

TEST_P (ArdourSound, OfAStereoTrackIsThatOfTheLibrary)
{
    const auto input = stereoVoice (length);
    ASSERT_EQ (processed (input, GetParam()) == input, GetParam() == 0);

    const auto name = "stereo" + std::to_string (GetParam());
    ardour->makeSession (name, { .channels = input, .parameter = knobPosition (GetParam()) });
    expectProcessed (name, input);
}

TEST_P (ArdourSound, OfAMonoTrackIsThatOfTheLibrary)
{
    const auto input = stereoVoice (length).front();
    const auto name = "mono" + std::to_string (GetParam());
    ardour->makeSession (name, { .channels = { input }, .parameter = knobPosition (GetParam()) });
    expectProcessed (name, { input, input });
}
} // namespace

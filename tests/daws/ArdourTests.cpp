// SPDX-License-Identifier: AGPL-3.0-only
// The plug-in in the DAW Ardour, as VST 2, as VST 3 and as LV2: found, set, saved, opened again and exported, each in a
// process of its own.
#include "daws/Ardour.h"
#include "support/Child.h"
#include "support/FirstMatch.h"
#include "support/RawHost.h"
#include "support/Signals.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <tuple>

namespace
{
using testing::HasSubstr;

constexpr std::size_t length = 240000; // frames: five seconds

constexpr std::size_t block = 1024;   // frames that Ardour processes at a time
constexpr std::size_t leadIn = 96000; // frames that an export runs ahead of its start, two seconds

/** What the VST 2 library makes of two channels when it is called directly, after that many frames of silence. */
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

/** What Ardour has of a format that it has not of the others. */
struct Expected
{
    std::map<std::string, std::string> scanned {}; // attributes that the scan writes
    int parameters = 0;                            // ports, in LV2
    std::string savedAs {};                        // how the state in a session begins
    std::size_t stateAt = 0;                       // where in it the plug-in's own state is
};

Expected expectedOf (Format format)
{
    if (format == Format::lv2)
        return { .parameters = 5 };

    if (format == Format::vst2)
        return { .scanned = { { "creator", "Quendal" },
                              { "id", std::to_string (0x546d7771) },
                              { "category", "Effect" },
                              { "is_instrument", "0" },
                              { "has_editor", "1" } },
                 .parameters = 1,
                 .savedAs = "VC2!",
                 .stateAt = 0 };

    return { .scanned = { { "vendor", "Quendal" },
                          { "uid", "ABCDEF019182FAEB5175656E546D7771" },
                          { "category", "Fx|Dynamics" },
                          { "n_aux_inputs", "0" },
                          { "n_aux_outputs", "0" },
                          { "n_midi_outputs", "0" } },
             .parameters = 2, // the second is the format's own bypass
             .savedAs = std::string ("VST3\1\0\0\0", 8) + "ABCDEF019182FAEB5175656E546D7771",
             .stateAt = 48 };
}

/** What the parameter is set to for a position: LV2 counts them, the others have the knob's way. */
float parameterAt (Format format, int position)
{
    return format == Format::lv2 ? static_cast<float> (position) : knobPosition (position);
}

class ArdourHost : public testing::Test
{
protected:
    // Without this variable JUCE connects to the first X server that it finds.
    static void SetUpTestSuite() { setenv ("DISPLAY", ":none", 1); }
    static void TearDownTestSuite() { ardours.clear(); }

    /** One that has the plug-in in that format, the same for all tests. */
    static const Ardour& ardourWith (Format format) { return ardours.try_emplace (format, format).first->second; }

    /** Expects that the export of a session is the voice as it came in. */
    static void expectInput (const Ardour& ardour, const std::string& session, const Channels& input)
    {
        const auto isInput = [&input] (const Channels& exported) { return exported == input; };
        expectSameBits (ardour.exportSession (session, isInput), input);
    }

private:
    static inline std::map<Format, Ardour> ardours;
};

TEST_F (ArdourHost, PassesTheInputWhileTheBypassOfVst3IsOn)
{
    const auto input = stereoVoice (length);
    ASSERT_NE (processed (input, 3), input);

    const auto& ardour = ardourWith (Format::vst3);
    ardour.makeSession ("bypassed",
                        { .channels = input, .parameter = knobPosition (3), .position = PluginSwitch::bypassed });
    const auto report = ardour.openSession ("bypassed");
    EXPECT_THAT (report, HasSubstr ("value: 0.333300\n"));
    EXPECT_THAT (report, HasSubstr ("active: true\n"));
    EXPECT_THAT (report, HasSubstr ("enabled: false\n"));
    expectInput (ardour, "bypassed", input);
}

class ArdourSession : public ArdourHost, public testing::WithParamInterface<Format>
{
protected:
    static const Ardour& ardour() { return ardourWith (GetParam()); }
};

INSTANTIATE_TEST_SUITE_P (With, ArdourSession, testing::ValuesIn (allFormats), testing::PrintToStringParamName());

/** Those with a scan and a state. */
class ArdourVstSession : public ArdourSession
{
};

INSTANTIATE_TEST_SUITE_P (With, ArdourVstSession, testing::ValuesIn (vstFormats), testing::PrintToStringParamName());

TEST_P (ArdourVstSession, FindsThePluginWithItsNameAndChannels)
{
    const auto report = ardour().scan();
    EXPECT_EQ (found (report, " name=\"([^\"]*)\""), "Quendal Larkspire");
    EXPECT_EQ (found (report, " n_inputs=\"([^\"]*)\""), "2");
    EXPECT_EQ (found (report, " n_outputs=\"([^\"]*)\""), "2");
    EXPECT_EQ (found (report, " n_midi_inputs=\"([^\"]*)\""), "0");

    const auto expected = expectedOf (GetParam());

    for (const auto& [attribute, value] : expected.scanned)
        EXPECT_EQ (found (report, " " + attribute + "=\"([^\"]*)\""), value) << attribute;
}

TEST_P (ArdourVstSession, StoresTheParameterAndTheState)
{
    ardour().makeSession ("stored", { .channels = stereoVoice (length), .parameter = knobPosition (3) });
    const auto session = bytesOf (ardour().sessionPath ("stored"));
    EXPECT_THAT (found (session, "<Controllable name=\"Mode\"[^>]* value=\"([^\"]*)\""),
                 testing::StartsWith ("0.333333"));

    const auto expected = expectedOf (GetParam());
    const auto state = decodedBase64 (found (session, "<chunk[^>]*>([^<]*)</chunk>"));
    ASSERT_GT (state.size(), expected.stateAt + 9u);
    EXPECT_THAT (state, testing::StartsWith (expected.savedAs));
    EXPECT_EQ (state.substr (expected.stateAt, 4), "VC2!");
    EXPECT_EQ (found (state, " mode=\"([^\"]*)\""), "0.3333");
    EXPECT_EQ (found (state, " daw=\"([^\"]*)\""), "lib/ardour7/luasession");
    EXPECT_EQ (found (state, " samplerate=\"([^\"]*)\""), "48000");
}

TEST_F (ArdourHost, StoresTheModeOfLv2AndNothingElse)
{
    const auto& ardour = ardourWith (Format::lv2);
    ardour.makeSession ("stored", { .channels = stereoVoice (length), .parameter = 3.0f });
    const auto session = bytesOf (ardour.sessionPath ("stored"));
    EXPECT_EQ (allFound (session, "<Port (symbol=\"[^>]*)/>"),
               std::vector<std::string> { "symbol=\"mode\" value=\"3\"" });
    EXPECT_THAT (session, testing::Not (HasSubstr ("state-dir")));
}

TEST_P (ArdourSession, OpensWithThePluginAsItWasSet)
{
    ardour().makeSession ("set", { .channels = stereoVoice (length), .parameter = parameterAt (GetParam(), 1) });
    const auto report = ardour().openSession ("set");
    EXPECT_THAT (report, HasSubstr ("name: Quendal Larkspire\n"));
    EXPECT_THAT (report, HasSubstr ("parameters: " + std::to_string (expectedOf (GetParam()).parameters) + "\n"));
    EXPECT_THAT (report, HasSubstr ("parameter: Mode\n"));
    EXPECT_THAT (report, HasSubstr (GetParam() == Format::lv2 ? "value: 1.000000\n" : "value: 0.111100\n"))
        << "the state has four decimals";
    EXPECT_THAT (report, HasSubstr ("active: true\n"));
    EXPECT_THAT (report, HasSubstr ("enabled: true\n"));
}

TEST_P (ArdourSession, PassesTheInputWhileThePluginIsDeactivated)
{
    const auto input = stereoVoice (length);
    ASSERT_NE (processed (input, 3), input);

    ardour().makeSession (
        "deactivated", { .channels = input, .parameter = parameterAt (GetParam(), 3), .position = PluginSwitch::off });
    EXPECT_THAT (ardour().openSession ("deactivated"), HasSubstr ("active: false\n"));
    expectInput (ardour(), "deactivated", input);
}

class ArdourSound : public ArdourHost, public testing::WithParamInterface<std::tuple<Format, int>>
{
protected:
    static const Ardour& ardour() { return ardourWith (std::get<Format> (GetParam())); }
    static int position() { return std::get<int> (GetParam()); }
    static float parameter() { return parameterAt (std::get<Format> (GetParam()), position()); }

    /** Expects that a session's export is what the VST 2 library makes of the input at the knob's position. */
    static void expectProcessed (const std::string& session, const Channels& input)
    {
        const auto isRight = [&input] (const Channels& exported)
        { return exported == expectedFor (exported, input, position()); };
        const auto exported = ardour().exportSession (session, isRight);
        expectSameBits (exported, expectedFor (exported, input, position()));
    }
};

INSTANTIATE_TEST_SUITE_P (With,
                          ArdourSound,
                          testing::Combine (testing::ValuesIn (allFormats), testing::Range (0, 4)),
                          [] (const auto& test)
                          {
                              return std::string (nameOf (std::get<Format> (test.param))) + "AtPosition"
                                     + std::to_string (std::get<int> (test.param));
                          });

TEST_P (ArdourSound, OfAStereoTrackIsThatOfTheVst2Library)
{
    const auto input = stereoVoice (length);
    ASSERT_EQ (processed (input, position()) == input, position() == 0);

    const auto session = "stereo" + std::to_string (position());
    ardour().makeSession (session, { .channels = input, .parameter = parameter() });
    expectProcessed (session, input);
}

TEST_P (ArdourSound, OfAMonoTrackIsThatOfTheVst2Library)
{
    const auto input = stereoVoice (length).front();
    const auto session = "mono" + std::to_string (position());
    ardour().makeSession (session, { .channels = { input }, .parameter = parameter() });
    expectProcessed (session, { input, input });
}
} // namespace

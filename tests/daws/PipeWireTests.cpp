// SPDX-License-Identifier: AGPL-3.0-only
// The plug-in on a microphone in PipeWire, as larkspire-microphone puts it there: its sound, its mode and its
// microphone.
#include "daws/PipeWire.h"
#include "support/RawHost.h"
#include "support/Recording.h"
#include "support/Signals.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>

namespace
{
using testing::HasSubstr;
using testing::Not;

constexpr std::size_t block = PipeWire::block;
constexpr std::size_t length = 24 * block; // frames: four seconds

std::vector<float> spokenSound()
{
    return voice (length).left;
}

/** The library on a mono track, called as often as PipeWire calls the plug-in. */
class Track
{
public:
    explicit Track (int mode)
    {
        setMode (mode);
        host.start (48000.0f, static_cast<int> (block), true);
    }

    void setMode (int mode) { host.setParameter (knobPosition (mode)); }

    void processSilence (std::size_t blocks)
    {
        std::vector<float> silence (block), other (block);

        for (std::size_t i = 0; i < blocks; ++i)
        {
            std::fill (silence.begin(), silence.end(), 0.0f);
            host.process (silence, other, 0, block);
        }
    }

    /** Processes in place, whole blocks. */
    void process (std::vector<float>& samples, std::size_t from, std::size_t to)
    {
        std::vector<float> other (samples.size());

        for (; from < to; from += block)
            host.process (samples, other, from, std::min (block, to - from));
    }

private:
    RawHost host;
};

/** What the library makes of a sound after some blocks of silence, and in another mode from a frame on. */
std::vector<float> processed (std::vector<float> samples, int mode, std::size_t silence)
{
    Track track (mode);
    track.processSilence (silence);
    track.process (samples, 0, samples.size());
    return samples;
}

/** What a recording has to be, going by its start. The gains move in silence too, and PipeWire runs the plug-in from
   the moment on that somebody records; with the right number of blocks every sample has to be right. */
std::vector<float> expectedFor (const std::vector<float>& recorded, const std::vector<float>& played, int mode)
{
    const auto startOf = [] (const std::vector<float>& samples)
    { return std::vector (samples.begin(), samples.begin() + 2 * block); };

    for (std::size_t silence = 0; silence < 200; ++silence)
        if (processed (startOf (played), mode, silence) == startOf (recorded))
            return processed (played, mode, silence);

    return processed (played, mode, 0);
}

class PipeWireHost : public testing::Test
{
protected:
    /** Expects that PipeWire still runs and ends when it is asked to. */
    void expectEnd()
    {
        const auto outcome = pipewire.stop();
        EXPECT_EQ (outcome.signal, 0) << outcome.errors;
        EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;
    }

    PipeWire pipewire;
};

class PipeWireSound : public PipeWireHost, public testing::WithParamInterface<int>
{
};

INSTANTIATE_TEST_SUITE_P (InMode, PipeWireSound, testing::Range (0, 4));

TEST_P (PipeWireSound, OfTheMicrophoneIsThatOfTheLibrary)
{
    constexpr std::array names { "bypass", "Gentle", "Medium", "Powerful" };
    const auto played = spokenSound();
    pipewire.microphone ({ names[static_cast<std::size_t> (GetParam())] });
    pipewire.start();
    const auto recorded = pipewire.record ("larkspire", "desk_mic", played);
    EXPECT_EQ (recorded == played, GetParam() == 0);
    expectSameBits ({ recorded }, { expectedFor (recorded, played, GetParam()) });
    expectEnd();
}

TEST_F (PipeWireHost, ChangesTheModeWhileSomebodyRecords)
{
    const auto played = spokenSound();
    pipewire.microphone ({ "bypass" });
    pipewire.start();
    const auto recorded =
        pipewire.record ("larkspire",
                         "desk_mic",
                         played,
                         [this] {
                             EXPECT_EQ (pipewire.microphone ({ "Powerful" }),
                                        "Larkspire microphone: Powerful, from the default microphone\n");
                         });

    const auto difference = std::mismatch (recorded.begin(), recorded.end(), played.begin()).first - recorded.begin();
    const auto change = static_cast<std::size_t> (difference) / block * block;
    ASSERT_GT (change, 2 * block);
    ASSERT_LT (change, length - 2 * block);

    auto expected = played;
    Track track (0);
    track.process (expected, 0, change);
    track.setMode (3);
    track.process (expected, change, length);
    expectSameBits ({ recorded }, { expected });
    EXPECT_THAT (pipewire.microphone ({ "--status" }), HasSubstr ("Powerful, from desk_mic (desk_mic)\n"));
    expectEnd();
}

TEST_F (PipeWireHost, GoesIntoBypassWhileSomebodyRecords)
{
    const auto played = spokenSound();
    pipewire.microphone ({ "Powerful" });
    pipewire.start();
    const auto recorded =
        pipewire.record ("larkspire", "desk_mic", played, [this] { pipewire.microphone ({ "bypass" }); });

    // From the end on backwards: the input from the change on, the processed voice before it.
    const auto same = std::mismatch (recorded.rbegin(), recorded.rend(), played.rbegin()).first - recorded.rbegin();
    const auto change = (length - static_cast<std::size_t> (same)) / block * block;
    ASSERT_GT (change, 2 * block);
    ASSERT_LT (change, length - 2 * block);

    const auto startOf = [change] (std::vector<float> samples)
    {
        samples.resize (change);
        return samples;
    };
    expectSameBits ({ startOf (recorded) }, { expectedFor (startOf (recorded), startOf (played), 3) });
    expectEnd();
}

TEST_F (PipeWireHost, HasTheMicrophoneThatWasChosen)
{
    pipewire.microphone ({ "bypass", "--from", "other_mic" });
    pipewire.start();
    EXPECT_THAT (pipewire.microphone ({ "--status" }), HasSubstr ("bypass, from other_mic (other_mic)\n"));
    EXPECT_EQ (pipewire.microphone ({ "--list" }), "* desk_mic (desk_mic)\n  other_mic (other_mic)\n");

    const auto played = spokenSound();
    expectSameBits ({ pipewire.record ("larkspire", "other_mic", played) }, { played });
    expectEnd();
}

TEST_F (PipeWireHost, TakesTheDefaultWhileTheChosenMicrophoneIsUnplugged)
{
    pipewire.microphone ({ "--from", "unplugged_mic" });
    pipewire.start();
    EXPECT_THAT (pipewire.microphone ({ "--status" }), HasSubstr (", from desk_mic (desk_mic)\n"));
    expectEnd();
}

TEST_F (PipeWireHost, DoesNotTakeItselfWhenItIsTheDefault)
{
    pipewire.microphone ({});
    pipewire.start();
    pipewire.call ("wpctl", { "set-default", pipewire.idOf ("larkspire") });
    const auto input = spokenSound();
    const auto recorded = pipewire.record ("larkspire", "desk_mic", input);
    expectSameBits ({ recorded }, { expectedFor (recorded, input, 2) });
    EXPECT_THAT (pipewire.microphone ({ "--status" }), HasSubstr ("Medium, from desk_mic (desk_mic)\n"));
    EXPECT_EQ (pipewire.microphone ({ "--list" }), "  desk_mic (desk_mic)\n  other_mic (other_mic)\n");
    expectEnd();
}

TEST_F (PipeWireHost, AppearsAndGoesWithARestart)
{
    pipewire.start();
    EXPECT_THAT (pipewire.microphone ({}), HasSubstr ("restart it, which interrupts all sound"));
    EXPECT_THAT (pipewire.microphone ({ "--status" }), HasSubstr ("Microphone: not there\n"));

    expectEnd();
    pipewire.start();
    EXPECT_THAT (pipewire.microphone ({ "--status" }), HasSubstr ("Medium, from desk_mic (desk_mic)\n"));
    EXPECT_THAT (pipewire.call ("pw-cli", { "info", pipewire.idOf ("larkspire") }),
                 HasSubstr ("node.description = \"Larkspire microphone\""));
    EXPECT_THAT (pipewire.microphone ({ "--remove" }), HasSubstr ("until PipeWire is restarted"));

    expectEnd();
    pipewire.start();
    EXPECT_THAT (pipewire.microphone ({ "--status" }),
                 testing::AllOf (HasSubstr ("File:       none\n"), HasSubstr ("Microphone: not there\n")));
    expectEnd();
}

TEST_F (PipeWireHost, StartsWithoutThePluginAllTheSame)
{
    pipewire.microphone ({});
    pipewire.removePlugin();
    pipewire.start();
    EXPECT_THAT (pipewire.microphone ({ "--status" }),
                 testing::AllOf (HasSubstr ("Plug-in:    not found\n"), HasSubstr ("Microphone: not there\n")));
    expectEnd();
}
} // namespace

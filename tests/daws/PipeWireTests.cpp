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
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace
{
using testing::HasSubstr;

constexpr std::size_t block = PipeWire::block;
constexpr std::size_t length = 32 * block; // frames: more than five seconds

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

/** What the library makes of a sound after some blocks of silence. */
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

/** The start of the cycle that a frame belongs to. */
std::size_t cycleOf (std::ptrdiff_t frame)
{
    return static_cast<std::size_t> (frame) / block * block;
}

class PipeWireHost : public testing::Test
{
protected:
    /** What is done with a PipeWire that was started anew, after a call of larkspire-microphone. */
    struct Session
    {
        std::vector<std::string> arguments;
        std::string microphone = "desk_mic";
        std::function<void()> afterStart = [] {};
        std::function<void()> meanwhile {}; // while it records
    };

    /** Records the Larkspire microphone while the voice is played into a microphone, until a recording is right: gives
        that, or the last. On a busy machine player and recorder are late now and then, and PipeWire does not wait. */
    std::vector<float> record (const Session& session, const std::function<bool (const std::vector<float>&)>& isRight)
    {
        std::vector<float> recorded;

        for (int tries = 0; tries < 8; ++tries)
        {
            pipewire.microphone (session.arguments);
            pipewire.start();
            session.afterStart();
            recorded = pipewire.record ("larkspire", session.microphone, played, session.meanwhile);
            expectEnd();

            if (isRight (recorded))
                return recorded;

            std::printf ("recording %d: other samples\n", tries + 1);
        }

        return recorded;
    }

    /** Expects that PipeWire still runs and ends when it is asked to. */
    void expectEnd()
    {
        const auto outcome = pipewire.stop();
        EXPECT_EQ (outcome.signal, 0) << outcome.errors;
        EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;
    }

    const std::vector<float> played = spokenSound();
    PipeWire pipewire;
};

class PipeWireSound : public PipeWireHost, public testing::WithParamInterface<int>
{
};

INSTANTIATE_TEST_SUITE_P (InMode, PipeWireSound, testing::Range (0, 4));

TEST_P (PipeWireSound, OfTheMicrophoneIsThatOfTheLibrary)
{
    constexpr std::array names { "bypass", "Gentle", "Medium", "Powerful" };
    const auto expected = [this] (const std::vector<float>& recorded)
    { return expectedFor (recorded, played, GetParam()); };
    const auto recorded = record ({ .arguments = { names[static_cast<std::size_t> (GetParam())] } },
                                  [&] (const auto& candidate) { return candidate == expected (candidate); });
    EXPECT_EQ (recorded == played, GetParam() == 0);
    expectSameBits ({ recorded }, { expected (recorded) });
}

TEST_F (PipeWireHost, ChangesTheModeWhileSomebodyRecords)
{
    const auto change = [this]
    {
        EXPECT_EQ (pipewire.microphone ({ "Powerful" }),
                   "Larkspire microphone: Powerful, from the default microphone\n");
        EXPECT_THAT (pipewire.microphone ({ "--status" }), HasSubstr ("Powerful, from desk_mic (desk_mic)\n"));
    };

    // The input until the change, which is between two cycles, then the processed voice.
    const auto changedAt = [this] (const std::vector<float>& recorded)
    { return cycleOf (std::mismatch (recorded.begin(), recorded.end(), played.begin()).first - recorded.begin()); };
    const auto expected = [&] (const std::vector<float>& recorded)
    {
        auto samples = played;
        Track track (0);
        track.process (samples, 0, changedAt (recorded));
        track.setMode (3);
        track.process (samples, changedAt (recorded), length);
        return samples;
    };

    const auto recorded = record ({ .arguments = { "bypass" }, .meanwhile = change },
                                  [&] (const auto& candidate) { return candidate == expected (candidate); });
    EXPECT_GT (changedAt (recorded), 2 * block);
    EXPECT_LT (changedAt (recorded), length - 2 * block);
    expectSameBits ({ recorded }, { expected (recorded) });
}

TEST_F (PipeWireHost, GoesIntoBypassWhileSomebodyRecords)
{
    // From the end on backwards: the input from the change on, the processed voice before it.
    const auto changedAt = [this] (const std::vector<float>& recorded)
    { return cycleOf (recorded.rend() - std::mismatch (recorded.rbegin(), recorded.rend(), played.rbegin()).first); };
    const auto before = [&] (std::vector<float> samples, std::size_t change)
    {
        samples.resize (change);
        return samples;
    };
    const auto isRight = [&] (const std::vector<float>& recorded)
    {
        const auto change = changedAt (recorded);
        return change > 2 * block && change < length - 2 * block
               && before (recorded, change) == expectedFor (before (recorded, change), before (played, change), 3);
    };

    const auto recorded =
        record ({ .arguments = { "Powerful" }, .meanwhile = [this] { pipewire.microphone ({ "bypass" }); } }, isRight);
    EXPECT_TRUE (isRight (recorded)) << "changed at " << changedAt (recorded);
}

TEST_F (PipeWireHost, HasTheMicrophoneThatWasChosen)
{
    const auto check = [this]
    {
        EXPECT_THAT (pipewire.microphone ({ "--status" }), HasSubstr ("bypass, from other_mic (other_mic)\n"));
        EXPECT_EQ (pipewire.microphone ({ "--list" }), "* desk_mic (desk_mic)\n  other_mic (other_mic)\n");
    };
    const auto recorded =
        record ({ .arguments = { "bypass", "--from", "other_mic" }, .microphone = "other_mic", .afterStart = check },
                [this] (const auto& candidate) { return candidate == played; });
    expectSameBits ({ recorded }, { played });
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
    const auto makeDefault = [this] { pipewire.call ("wpctl", { "set-default", pipewire.idOf ("larkspire") }); };
    const auto check = [this]
    {
        EXPECT_THAT (pipewire.microphone ({ "--status" }), HasSubstr ("bypass, from desk_mic (desk_mic)\n"));
        EXPECT_EQ (pipewire.microphone ({ "--list" }), "  desk_mic (desk_mic)\n  other_mic (other_mic)\n");
    };
    const auto recorded = record ({ .arguments = { "bypass" }, .afterStart = makeDefault, .meanwhile = check },
                                  [this] (const auto& candidate) { return candidate == played; });
    expectSameBits ({ recorded }, { played });
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

// SPDX-License-Identifier: AGPL-3.0-only
// What a host's project keeps of the built library, as the program's chunk and as the bank's. Chunks are written and
// read here as bytes and as text.
#include "library/ChunkBytes.h"
#include "support/Comparison.h"
#include "support/RawHost.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <regex>
#include <thread>
#include <unistd.h>

namespace
{
const std::vector<std::string> freshNames { "mode",          "date_modified", "daw",     "plugin",
                                            "pluginversion", "samplerate",    "username" };

constexpr float gentle = knobPosition (1);
constexpr float powerful = knobPosition (3);

/** Every test is run for the bank's chunk and for the program's. */
class Chunk : public RawHost::Anchored<testing::TestWithParam<bool>>
{
protected:
    static std::string save (RawHost& from) { return from.chunk (GetParam()); }
    static void load (RawHost& into, const std::string& bytes) { into.setChunk (bytes, GetParam()); }

    RawHost host;
};

INSTANTIATE_TEST_SUITE_P (Of,
                          Chunk,
                          testing::Bool(),
                          [] (const auto& kind) { return kind.param ? "TheProgram" : "TheBank"; });

TEST_P (Chunk, OfAFreshInstanceIsOneLineOfXmlInAFrame)
{
    const auto text = textOf (save (host));
    EXPECT_EQ (namesOf (text), freshNames);
    EXPECT_TRUE (std::regex_match (
        text,
        std::regex ("<\\?xml version=\"1\\.0\" encoding=\"UTF-8\"\\?> <settings mode=\"0\\.2222\" "
                    "date_modified=\"\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\dZ\" daw=\"[^\"\n]*\" "
                    "plugin=\"Quendal Larkspire\" pluginversion=\"242\" samplerate=\"0\" username=\"[^\"\n]*\"/>")))
        << text;
}

TEST_P (Chunk, HoldsTheParameterToFourDecimals)
{
    for (const auto& [value, saved] : { std::pair { 0.0f, "0.0000" },
                                        { 1.0f, "1.0000" },
                                        { 1.0f / 3.0f, "0.3333" },
                                        { 2.0f / 3.0f, "0.6667" },
                                        { 0.12346f, "0.1235" } })
    {
        host.setParameter (value);
        EXPECT_EQ (valueOf (textOf (save (host)), "mode"), saved);
    }
}

TEST_P (Chunk, HoldsTheRateOnceTheHostHasGivenOne)
{
    EXPECT_EQ (valueOf (textOf (save (host)), "samplerate"), "0");
    host.start (44100.0f);
    EXPECT_EQ (valueOf (textOf (save (host)), "samplerate"), "44100");
    host.suspend();
    host.start (88200.5f);
    EXPECT_EQ (valueOf (textOf (save (host)), "samplerate"), "88200");
}

TEST_P (Chunk, HoldsTheTailOfTheHostsPathAndTheUser)
{
    std::vector<char> path (4096);
    const auto length = readlink ("/proc/self/exe", path.data(), path.size());
    ASSERT_GT (length, 0);
    const std::string hostPath (path.data(), static_cast<std::size_t> (length));

    const auto text = textOf (save (host));
    const auto daw = valueOf (text, "daw");
    EXPECT_TRUE (hostPath.ends_with ("/" + daw)) << daw << " of " << hostPath;
    EXPECT_FALSE (valueOf (text, "username").empty());
}

TEST_P (Chunk, ComesBackAsItWent)
{
    for (int step = 0; step <= 100; ++step)
    {
        const auto value = static_cast<float> (step) / 100.0f * 0.99987f;
        host.setParameter (value);
        const auto saved = save (host);

        RawHost other;
        load (other, saved);
        ASSERT_NEAR (other.getParameter(), value, 0.0001f);
        ASSERT_EQ (withoutDate (textOf (save (other))), withoutDate (textOf (saved)));
    }
}

TEST_P (Chunk, IsTheSameTwiceButForTheDate)
{
    host.start (48000.0f);
    EXPECT_EQ (withoutDate (textOf (save (host))), withoutDate (textOf (save (host))));
}

TEST_P (Chunk, IsTheSameForProgramAndBank)
{
    load (host, withAttributes ("mode=\"0.5\" theirs=\"value\""));
    EXPECT_EQ (withoutDate (textOf (host.chunk (true))), withoutDate (textOf (host.chunk (false))));
}

TEST_P (Chunk, CarriesWhatItDoesNotKnowInOrderUntilADocumentLacksIt)
{
    load (host, withAttributes ("mode=\"0.5\" zoom=\"2\" Engineer=\"J&#246;rg &lt;&amp;&gt;\" date=\"x\" MODE=\"1\""));
    const std::vector<std::string> names { "mode",   "Engineer",      "MODE",       "date",     "date_modified", "daw",
                                           "plugin", "pluginversion", "samplerate", "username", "zoom" };

    for (int turn = 0; turn < 3; ++turn)
    {
        const auto text = textOf (save (host));
        EXPECT_EQ (namesOf (text), names);
        EXPECT_EQ (valueOf (text, "mode"), "0.5000");
        EXPECT_EQ (valueOf (text, "Engineer"), "J&#246;rg &lt;&amp;&gt;");
        EXPECT_EQ (valueOf (text, "zoom"), "2");
    }

    load (host, around ("no document"));
    EXPECT_EQ (namesOf (textOf (save (host))), names);

    load (host, withAttributes ("mode=\"0.5\""));
    EXPECT_EQ (namesOf (textOf (save (host))), freshNames);
}

TEST_P (Chunk, NeverHoldsAStaleParameter)
{
    load (host, withAttributes ("mode=\"0.1111\""));
    host.setParameter (powerful);
    const auto text = textOf (save (host));
    EXPECT_EQ (namesOf (text), freshNames);
    EXPECT_EQ (valueOf (text, "mode"), "0.3333");
}

TEST_P (Chunk, OfAnotherPluginIsTakenIn)
{
    load (host, withAttributes ("plugin=\"Another\" pluginversion=\"9999\" mode=\"0.25\""));
    EXPECT_EQ (host.getParameter(), 0.25f);
    EXPECT_EQ (valueOf (textOf (save (host)), "plugin"), "Quendal Larkspire");
}

TEST_P (Chunk, IsNotSeenByAHostThatSeesEverythingElse)
{
    host.start (48000.0f);
    host.takeCalls();
    load (host, withAttributes ("mode=\"0.25\""));
    save (host);
    EXPECT_TRUE (host.takeCalls().empty());

    auto signal = noise (64, -12.0, 6);
    host.process (signal.left, signal.right, 0, 64);
    EXPECT_FALSE (host.takeCalls().empty()) << "a block asks the host for its time";
}

TEST_P (Chunk, IsHeardFromTheNextSampleOn)
{
    const auto input = noise (2000, -12.0, 7);

    for (const std::size_t change : { 1u, 500u, 1024u })
    {
        auto expected = input;
        RawHost steady;
        steady.setParameter (gentle);
        steady.start (48000.0f);
        steady.process (expected.left, expected.right, 0, change);

        auto actual = input;
        RawHost restored;
        restored.setParameter (gentle);
        restored.start (48000.0f);
        restored.process (actual.left, actual.right, 0, change);
        ASSERT_TRUE (compare (actual, expected).sameBits);

        load (restored, withAttributes ("mode=\"0.0000\""));
        restored.process (actual.left, actual.right, change, 2000 - change);

        // Without a sample on the old settings in between, which a change by the host has.
        for (std::size_t i = change; i < 2000; ++i)
        {
            ASSERT_EQ (actual.left[i], input.left[i]) << "frame " << i << " of a restore at " << change;
            ASSERT_EQ (actual.right[i], input.right[i]);
        }
    }
}

TEST_P (Chunk, BringsTheModeThatWasSavedBackIntoTheSound)
{
    const auto input = noise (4000, -12.0, 8);

    for (const float value : { 0.0f, gentle, knobPosition (2), powerful, 0.5f })
    {
        auto expected = input;
        RawHost first;
        first.setParameter (value);
        first.start (48000.0f);
        first.process (expected.left, expected.right, 0, 4000);

        auto actual = input;
        RawHost second;
        load (second, save (first));
        second.start (48000.0f);
        second.process (actual.left, actual.right, 0, 4000);
        EXPECT_TRUE (compare (actual, expected).sameBits) << value;
    }
}

TEST_P (Chunk, CutOffSetsTheParameterOnlyWhereItsValueIsComplete)
{
    const auto whole = withAttributes ("theirs=\"value\" mode=\"0.2500\" zoom=\"2\"");
    const auto start = whole.find ("mode=\"") + 6;
    const auto end = whole.find ('"', start);
    int left = 0;

    for (std::size_t size = 1; size < whole.size(); ++size)
    {
        load (host, withAttributes ("mode=\"0.625\""));
        load (host, whole.substr (0, size));

        // A value whose first character is cut off is empty.
        const float mode = host.getParameter();
        EXPECT_EQ (mode, size > end && mode != 0.625f ? 0.25f : size == start ? 0.0f : 0.625f) << size;
        left += mode == 0.625f ? 1 : 0;
    }

    EXPECT_GT (left, static_cast<int> (whole.size()) * 3 / 4);
}

TEST_P (Chunk, WithAByteFlippedLeavesTheParameterOrTakesTheDocument)
{
    const auto whole = withAttributes ("theirs=\"value\" mode=\"0.2500\" zoom=\"2\"");
    const auto start = whole.find ("mode=\"") + 6;

    for (std::size_t position = 0; position < whole.size(); ++position)
    {
        load (host, withAttributes ("mode=\"0.625\" kept=\"entry\""));
        auto flipped = whole;
        flipped[position] = static_cast<char> (~static_cast<unsigned char> (flipped[position]));
        load (host, flipped);

        const float mode = host.getParameter();
        const bool kept = textOf (save (host)).find (" kept=\"entry\"") != std::string::npos;
        SCOPED_TRACE (position);

        if (kept)
            EXPECT_EQ (mode, 0.625f) << "no document, and yet the parameter is another";
        else if (position < start - 6 || position > start + 6)
            EXPECT_TRUE (mode == 0.25f || mode == 0.625f) << "the damage is elsewhere";
        else
            EXPECT_TRUE (mode >= 0.0f && mode <= 1.0f);

        EXPECT_TRUE (kept || position >= 4) << "another magic number";
    }
}

TEST_P (Chunk, MayBeSavedAndRestoredWhileAudioRunsAndTheHostAutomates)
{
    constexpr int turns = 10000;
    host.start (48000.0f, 64);
    std::atomic<bool> stopping { false };
    std::atomic<bool> audioIsInOrder { true };
    std::atomic<long> blocks { 0 };
    std::atomic<long> moves { 0 };

    std::thread audio (
        [&]
        {
            while (! stopping)
            {
                auto signal = noise (64, -12.0, 9);
                host.process (signal.left, signal.right, 0, 64);

                for (const float sample : signal.left)
                    if (! (std::abs (sample) <= 1.0f))
                        audioIsInOrder = false;

                ++blocks;
            }
        });

    std::thread automation (
        [&]
        {
            while (! stopping)
                host.setParameter (knobPosition (static_cast<int> (moves++ % 4)));
        });

    for (int turn = 0; turn < turns; ++turn)
    {
        const auto number = std::to_string (turn);
        load (host, withAttributes ("mode=\"0.5000\" turn=\"" + number + "\""));
        const auto text = textOf (save (host));
        ASSERT_EQ (valueOf (text, "turn"), number);
        ASSERT_EQ (namesOf (text).size(), 8u);

        // Whoever was last has set it.
        const auto mode = valueOf (text, "mode");
        ASSERT_TRUE (mode == "0.5000" || mode == "0.0000" || mode == "0.1111" || mode == "0.2222" || mode == "0.3333")
            << mode;
    }

    stopping = true;
    audio.join();
    automation.join();
    EXPECT_TRUE (audioIsInOrder);
    EXPECT_GT (blocks, 0);
    EXPECT_GT (moves, 0);

    // What was asked for last is what sounds from the next sample on.
    load (host, withAttributes ("mode=\"0.0000\""));
    auto signal = noise (64, -12.0, 10);
    const auto input = signal;
    host.process (signal.left, signal.right, 0, 64);
    EXPECT_TRUE (compare (signal, input).sameBits);
}
} // namespace

// SPDX-License-Identifier: AGPL-3.0-only
// What becomes of left and right: in the fold's own code, and of the built library.
#include "base/Texts.h"
#include "chain/StereoFold.h"
#include "measure/Envelope.h"
#include "measure/Instance.h"
#include "measure/Measurements.h"
#include "measure/Tone.h"
#include "measure/VoiceModes.h"

#include <cmath>
#include <cstddef>

namespace larkspire::measure
{

namespace
{
constexpr double frequency = 997.0 / usualRate;
constexpr double speakingLevel = -20.0; // dBFS
constexpr double restLevel = -80.0;     // dBFS
constexpr int largestDifference = 30;   // dB

/** A tone on the left, and weaker on the right by a difference in dB; infinity makes the right silent. */
std::vector<float> panned (Tone& tone, std::size_t frames, double level, double difference)
{
    const auto left = tone.next (frames, level);
    const auto factor = static_cast<float> (fromDecibels (-difference));
    std::vector<float> interleaved;
    interleaved.reserve (2 * frames);

    for (const auto sample : left)
    {
        interleaved.push_back (sample);
        interleaved.push_back (factor * sample);
    }

    return interleaved;
}

struct Channels
{
    std::vector<float> left;
    std::vector<float> right;
};

Channels apart (const std::vector<float>& interleaved)
{
    Channels channels;

    for (std::size_t i = 0; i < interleaved.size(); i += 2)
    {
        channels.left.push_back (interleaved[i]);
        channels.right.push_back (interleaved[i + 1]);
    }

    return channels;
}

/** By how much left is louder than right. */
double differenceIn (const std::vector<float>& interleaved)
{
    const auto channels = apart (interleaved);
    return levelOf (channels.left) - levelOf (channels.right);
}

/** Output differences of one instance that goes through these input differences, for so long each. */
std::vector<double>
differences (Instance& instance, const std::vector<double>& inputs, double level, std::size_t settling)
{
    Tone tone (frequency);
    std::vector<double> outputs;

    for (const auto input : inputs)
    {
        instance.process (panned (tone, settling, level, input));
        outputs.push_back (differenceIn (instance.process (panned (tone, usualRate, level, input))));
    }

    return outputs;
}
} // namespace

Table measureFold (const Subject&)
{
    Table table { .keyColumn = "source", .columns = { "left", "right" } };
    const auto add = [&] (const char* source, float left, float right)
    {
        const auto folded = sampleOf (foldTowardsMiddle (pairOf ({ left, right })));
        table.add (source, { static_cast<double> (folded.first), static_cast<double> (folded.second) });
    };
    add ("middle", 1.0f, 1.0f);
    add ("left only", 1.0f, 0.0f);
    add ("right only", 0.0f, 1.0f);
    add ("out of phase", 1.0f, -1.0f);
    return table;
}

Table measureImage (const Subject& subject)
{
    Table table { .keyColumn = "input_db", .columns = columnsForModes ({ "settled_db" }) };
    table.columns.insert (table.columns.begin(), "at_rest_db");

    // From one side to the middle: so the weaker channel rises, and its leveller settles by its quick way.
    std::vector<double> inputs { INFINITY };

    for (int difference = largestDifference; difference >= 0; --difference)
        inputs.push_back (difference);

    const auto& medium = voiceModes[1];
    Instance atRest (subject, medium, Instance::Start::atRest, usualRate, 2);
    std::vector<std::vector<double>> lists { differences (atRest, inputs, restLevel, usualRate / 10) };

    for (const auto& mode : voiceModes)
    {
        Instance instance (subject, mode, Instance::Start::fresh, usualRate, 2);
        lists.push_back (differences (instance, inputs, speakingLevel, usualRate));
    }

    for (std::size_t row = 0; row < inputs.size(); ++row)
        table.addAcross (std::isinf (inputs[row]) ? "left only" : fixed (inputs[row], 0), lists, row);

    return table;
}

Table measureImageOverTime (const Subject& subject)
{
    constexpr std::size_t shown = 150; // periods, which are milliseconds
    Table table { .keyColumn = "time_ms", .columns = columnsForModes ({ "db" }) };
    std::vector<std::vector<double>> lists;

    for (const auto& mode : voiceModes)
    {
        Instance instance (subject, mode, Instance::Start::atRest, usualRate, 2);
        Tone tone (1.0 / Envelope::period);
        const auto [left, right] =
            apart (instance.process (panned (tone, shown * Envelope::period, speakingLevel, INFINITY)));
        Envelope ofLeft;
        Envelope ofRight;
        ofLeft.add (left);
        ofRight.add (right);
        const auto leftLevels = ofLeft.ofPeriods();
        const auto rightLevels = ofRight.ofPeriods();
        auto& list = lists.emplace_back();

        for (std::size_t i = 0; i < shown; ++i)
            list.push_back (toDecibels (leftLevels[i] / rightLevels[i]));
    }

    // Half a millisecond past the whole one is the middle of the period.
    for (std::size_t i = 0; i < shown; ++i)
        table.addAcross (fixed (static_cast<double> (i) + 0.5, 1), lists, i);

    return table;
}

} // namespace larkspire::measure

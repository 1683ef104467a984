// SPDX-License-Identifier: AGPL-3.0-only
// The committed levels, harmonics and images against what follows from the settings on paper.
#include "measure/CommittedTables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

namespace
{
constexpr double pi = std::numbers::pi;

struct Levels
{
    std::string mode;
    double expanderThreshold, expanderScale;
    double outputGain;
    double heldPeak;
    float levellerRelease;
};

// Written down once more; the plug-in's own table is not asked.
const Levels levels[] = { { "gentle", 0.0001, std::sqrt (0.75), 25.0, 0.375, 5.4113156e-07f },
                          { "medium", 0.0002, std::sqrt (0.9), 12.0, 0.18, 1.5935553e-05f },
                          { "powerful", 0.00025, 1.0, 9.0, 0.135, 6.791503e-05f } };

double decibels (double ratio)
{
    return 20.0 * std::log10 (ratio);
}

/** The gain of the filters at 1 kHz lies within this of 1, in dB. */
constexpr double filtersAt1k = 0.3;

/** How far up the leveller's gain comes by itself: in 32-bit floats a step ends the way that rounds to nothing. */
double restingGain (float release)
{
    float gain = 0.5f;

    while ((1.0f - gain) * release + gain > gain)
        gain = (1.0f - gain) * release + gain;

    return static_cast<double> (gain);
}

TEST (LevelTruth, BelowTheLevellerATwoStepGainIsAllThatHappens)
{
    const auto table = committed ("static-level");

    for (const auto& l : levels)
    {
        const double open = decibels (1.5 * l.outputGain * restingGain (l.levellerRelease));
        const double closed = open + decibels (0.2 * l.expanderScale + 1.0 - l.expanderScale);
        const double gainWhenClosed = table.at ("-80.0", l.mode + "_rising_dbfs") + 80.0;
        const double gainWhenOpen = table.at ("-46.0", l.mode + "_rising_dbfs") + 46.0;
        EXPECT_NEAR (gainWhenClosed, closed, filtersAt1k) << l.mode;
        EXPECT_NEAR (gainWhenOpen, open, filtersAt1k) << l.mode;

        // The filters' part is the same in both, and so drops out.
        EXPECT_NEAR (gainWhenOpen - gainWhenClosed, open - closed, 0.05) << l.mode;
        EXPECT_NEAR (table.at ("-46.0", l.mode + "_falling_dbfs") + 46.0, gainWhenOpen, 0.02) << l.mode;
        EXPECT_NEAR (table.at ("-80.0", l.mode + "_falling_dbfs") + 80.0, gainWhenClosed, 0.02) << l.mode;
    }
}

/** What a sine of a gain-scaled peak of so many thresholds does to the logarithm of the expander's gain on average, per
    sample: it grows with the sample where that is above the threshold and decays elsewhere. */
double driftOfExpander (double peak, double gain)
{
    const double scaled = gain * peak;
    const double below = scaled > 1.0 ? std::asin (1.0 / scaled) : 0.5 * pi;
    return (8.565843e-06 * peak * std::cos (below) - 0.00020002 * below) * 2.0 / pi;
}

/** The level at which the expander keeps a gain of this, in dB above the threshold. */
double balanceOf (double gain)
{
    double low = 1.0;
    double high = 1000.0;

    while (high - low > 1e-6)
    {
        const double middle = 0.5 * (low + high);
        (driftOfExpander (middle, gain) > 0.0 ? high : low) = middle;
    }

    return decibels (high);
}

/** The input level of the row before the steepest rise. */
double jumpOf (const larkspire::measure::Table& table, const std::string& column)
{
    const auto values = table.column (column);
    std::size_t steepest = 1;

    for (std::size_t i = 1; i < values.size(); ++i)
        if (values[i] - values[i - 1] > values[steepest] - values[steepest - 1])
            steepest = i;

    return table.keys()[steepest - 1];
}

TEST (LevelTruth, TheExpanderOpensAndClosesWhereGrowthAndDecayBalance)
{
    const auto table = committed ("static-level");

    for (const auto& l : levels)
    {
        // Rows are 0.5 dB apart; the balance lies between the rows of the jump, but for the high-pass's part.
        const double threshold = decibels (l.expanderThreshold);
        EXPECT_NEAR (jumpOf (table, l.mode + "_rising_dbfs") + 0.25, threshold + balanceOf (0.2), 0.5) << l.mode;
        EXPECT_NEAR (jumpOf (table, l.mode + "_falling_dbfs") + 0.25, threshold + balanceOf (1.0), 0.75) << l.mode;
    }
}

TEST (LevelTruth, TheLevellerHoldsItsThresholdTimesItsMakeUp)
{
    const auto plateau = committed ("plateau");
    const auto table = committed ("static-level");

    for (const auto& l : levels)
    {
        EXPECT_NEAR (plateau.at (l.mode, "held"), l.heldPeak, 1e-4);
        EXPECT_NEAR (plateau.at (l.mode, "peak"), 0.9885 * std::sin (l.heldPeak), 0.05 * l.heldPeak) << l.mode;

        // Held at any input: 36 dB more are within half a decibel.
        const auto inputs = table.keys();
        const auto outputs = table.column (l.mode + "_rising_dbfs");

        for (std::size_t i = 0; i < inputs.size(); ++i)
        {
            if (inputs[i] < -36.0)
                continue;

            EXPECT_NEAR (outputs[i], plateau.at (l.mode, "level_dbfs"), 0.5) << l.mode << " at " << inputs[i];
        }
    }
}

TEST (LevelTruth, TheSoftClipIsASineUpToAQuarterTurn)
{
    const auto table = committed ("soft-clip");
    const auto inputs = table.keys();
    const auto outputs = table.column ("output");

    for (std::size_t i = 0; i < inputs.size(); ++i)
        EXPECT_NEAR (outputs[i], 0.9885 * std::sin (std::clamp (inputs[i], -0.5 * pi, 0.5 * pi)), 1e-4);
}

TEST (LevelTruth, HarmonicsOfTheSoftClipAreBesselFunctions)
{
    const auto table = committed ("harmonics");
    int compared = 0;

    for (const auto& row : table.rows)
    {
        // sin (a sin t) = 2 J1 (a) sin t + 2 J3 (a) sin 3t + ... as long as the limit is not reached.
        const double peak = std::pow (10.0, std::stod (row.key) / 20.0);

        if (peak > 0.5 * pi)
            continue;

        const double first = std::cyl_bessel_j (1.0, peak);
        EXPECT_NEAR (
            table.at (row.key, "third_db"), std::max (-100.0, decibels (std::cyl_bessel_j (3.0, peak) / first)), 0.1);
        EXPECT_NEAR (
            table.at (row.key, "fifth_db"), std::max (-100.0, decibels (std::cyl_bessel_j (5.0, peak) / first)), 0.3);
        ++compared;
    }

    EXPECT_GT (compared, 60);
}

TEST (LevelTruth, TheFoldHasItsFactors)
{
    const auto fold = committed ("fold");
    const auto expect = [&] (const char* source, double left, double right)
    {
        EXPECT_EQ (fold.at (source, "left"), left) << source;
        EXPECT_EQ (fold.at (source, "right"), right) << source;
    };
    expect ("middle", 1.5, 1.5);
    expect ("left only", 1.125, 0.375);
    expect ("right only", 0.375, 1.125);
    expect ("out of phase", 0.75, -0.75);
}

TEST (LevelTruth, TheImageIsThatOfTheFoldAtRestAndGoneWhenSettled)
{
    const auto image = committed ("image");

    for (const auto& row : image.rows)
    {
        const double right = row.key == "left only" ? 0.0 : std::pow (10.0, -std::stod (row.key) / 20.0);
        EXPECT_NEAR (
            image.at (row.key, "at_rest_db"), decibels ((1.125 + 0.375 * right) / (0.375 + 1.125 * right)), 0.02)
            << row.key;

        for (const auto& l : levels)
            EXPECT_NEAR (image.at (row.key, l.mode + "_settled_db"), 0.0, 0.2) << l.mode << ", " << row.key;
    }
}

TEST (LevelTruth, TheVoiceStaysBelowTheCeilingAndFillsIt)
{
    const auto wave = committed ("voice-wave");
    const auto summary = committed ("voice-summary");

    for (const std::string version : { "input", "gentle", "medium", "powerful" })
    {
        const auto high = wave.column (version + "_high");
        const auto low = wave.column (version + "_low");
        const auto peak =
            std::max (*std::max_element (high.begin(), high.end()), -*std::min_element (low.begin(), low.end()));
        EXPECT_LE (peak, 0.9885) << version;
        EXPECT_NEAR (decibels (peak), summary.at (version, "peak_dbfs"), 0.01) << version;
    }
}
} // namespace

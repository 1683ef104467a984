// SPDX-License-Identifier: AGPL-3.0-only
// Spot checks of the committed measurements against what textbooks say follows from the settings. All of them are held
// against the library as it is built in DriftTests.cpp.
#include "measure/CommittedTables.h"
#include "reference/Modes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <span>
#include <string>

namespace
{
constexpr double pi = std::numbers::pi;

/** Gentle, Medium and Powerful. */
constexpr auto modes = std::span (reference::modes).subspan (1);

double decibels (double ratio)
{
    return 20.0 * std::log10 (ratio);
}

/** A frequency on the axis of the analogue prototype, where the bilinear transform puts it: 1 at the centre. */
std::complex<double> warped (double frequency, double centre)
{
    constexpr double rate = 48000.0;
    return { 0.0, std::tan (pi * frequency / rate) / std::tan (pi * centre / rate) };
}

/** A second-order high-pass, s^2 / (s^2 + s / Q + 1), in dB. */
double highPass (const reference::Mode& mode, double frequency)
{
    const auto s = warped (frequency, mode.corner);
    return decibels (std::abs (s * s / (s * s + s / static_cast<double> (mode.q) + 1.0)));
}

/** The peaking equaliser of R. Bristow-Johnson's Audio EQ Cookbook, (s^2 + s A width + 1) / (s^2 + s width / A + 1), in
    dB; its alpha, which is width / 2 sin (w0), is at most 1.5 here. */
double peaking (const reference::Peak& peak, double frequency)
{
    const double a = std::pow (10.0, static_cast<double> (peak.gainDb) / 40.0);
    const double w0 = 2.0 * pi * static_cast<double> (peak.frequency) / 48000.0;
    const double octaves = static_cast<double> (peak.bandwidth);
    const double alpha = std::sin (w0) * std::sinh (0.5 * std::numbers::ln2 * octaves * w0 / std::sin (w0));
    const double width = 2.0 * std::min (1.5, alpha) / std::sin (w0);
    const auto s = warped (frequency, static_cast<double> (peak.frequency));
    return decibels (std::abs ((s * s + s * width * a + 1.0) / (s * s + s * width / a + 1.0)));
}

TEST (Truth, CurvesOfTheFiltersAreThoseOfTheirPrototypes)
{
    const auto table = committed ("filters");
    ASSERT_GT (table.rows.size(), 100u);

    for (const auto& mode : modes)
        for (const auto& row : table.rows)
        {
            const double frequency = std::stod (row.key);
            const auto expect = [&] (const char* filter, double wanted)
            {
                const auto column = std::string (mode.name) + "_" + filter + "_db";
                EXPECT_NEAR (table.at (row.key, column), wanted, 0.01) << column << " at " << row.key;
            };
            expect ("high_pass", highPass (mode, frequency));
            expect ("body", peaking (mode.body, frequency));
            expect ("air", peaking (mode.air, frequency));
        }
}

TEST (Truth, LoudTonesGainNoMoreAirThanTheArcTangentHasToGive)
{
    const auto table = committed ("air");
    constexpr double dry = 0.501187 * 1.5;              // -6 dBFS behind the fold
    constexpr double most = 0.02 * 0.5 * pi * 4.0 / pi; // the fundamental of a square wave of its bound

    for (const std::string mode : { "gentle", "medium", "powerful" })
    {
        for (const auto gain : table.column (mode + "_at_-6_db"))
            EXPECT_LT (gain, decibels ((dry + most) / dry) + 0.03) << mode;

        EXPECT_GT (table.at ("12589.25", mode + "_at_-54_db"), table.at ("12589.25", mode + "_at_-18_db") + 5.0);
    }
}

/** The expander's applied gain when it is closed. */
double closedGain (const reference::Mode& mode)
{
    return 0.2 * static_cast<double> (mode.expander.gainScale) + static_cast<double> (mode.expander.gainOffset);
}

TEST (Truth, TheExpanderClosesByItsDecay)
{
    const auto times = committed ("times");

    for (const auto& mode : modes)
    {
        // Nine tenths of the way in dB, where the running gain is 0.9998 to the power of the frames.
        const double running = (std::pow (closedGain (mode), 0.9) - static_cast<double> (mode.expander.gainOffset))
                               / static_cast<double> (mode.expander.gainScale);
        const double expected = std::log (running) / std::log (0.9998);

        // The filters' ringing keeps it open for a moment longer.
        for (const std::string rate : { "44100", "48000", "96000" })
        {
            const double closing = times.at ("expander closes", std::string (mode.name) + "_" + rate + "_frames");
            EXPECT_GT (closing, 0.995 * expected) << mode.name << " at " << rate;
            EXPECT_LT (closing, 1.03 * expected) << mode.name << " at " << rate;
        }
    }
}

/** One step of the leveller's way back. In 32-bit floats, where it ends because a step rounds to nothing. */
float returned (const reference::Mode& mode, float gain)
{
    return (1.0f - gain) * mode.leveller.releaseRate + gain;
}

float restingGain (const reference::Mode& mode, float from)
{
    while (returned (mode, from) > from)
        from = returned (mode, from);

    return from;
}

TEST (Truth, TheLevellerReturnsByItsRelease)
{
    const auto times = committed ("times");

    for (const auto& mode : modes)
    {
        // A tone at -22 dBFS behind the fold and the filters, which have 1.03 at 1 kHz, over the threshold.
        const auto lowered = 0.015f / (std::pow (10.0f, -22.0f / 20.0f) * 1.5f * 1.03f);
        const auto end = restingGain (mode, lowered);
        const float wanted = end * std::pow (lowered / end, 0.1f);
        double expected = 0;

        for (float gain = lowered; gain < wanted; gain = returned (mode, gain))
            expected += 1.0;

        for (const std::string rate : { "44100", "48000", "96000" })
            EXPECT_NEAR (times.at ("leveller returns", std::string (mode.name) + "_" + rate + "_frames"),
                         expected,
                         0.03 * expected)
                << mode.name << " at " << rate;
    }
}

TEST (Truth, BelowTheLevellerATwoStepGainIsAllThatHappens)
{
    const auto table = committed ("static-level");

    for (const auto& mode : modes)
    {
        const auto gainAt = [&] (const char* input, const char* way)
        { return table.at (input, mode.name + std::string (way)) - std::stod (input); };
        const double makeUp = static_cast<double> (mode.leveller.outputGain * restingGain (mode, 0.5f));
        const double open = decibels (1.5 * makeUp);
        const double closed = open + decibels (closedGain (mode));

        // The filters' gain at 1 kHz lies within 0.3 dB of 1. It is the same in both, and so drops out of the
        // difference.
        EXPECT_NEAR (gainAt ("-80.0", "_rising_dbfs"), closed, 0.3) << mode.name;
        EXPECT_NEAR (gainAt ("-46.0", "_rising_dbfs"), open, 0.3) << mode.name;
        EXPECT_NEAR (gainAt ("-46.0", "_rising_dbfs") - gainAt ("-80.0", "_rising_dbfs"), open - closed, 0.05);
        EXPECT_NEAR (gainAt ("-46.0", "_falling_dbfs"), gainAt ("-46.0", "_rising_dbfs"), 0.02) << mode.name;
        EXPECT_NEAR (gainAt ("-80.0", "_falling_dbfs"), gainAt ("-80.0", "_rising_dbfs"), 0.02) << mode.name;
    }
}

TEST (Truth, HarmonicsOfTheSoftClipAreBesselFunctions)
{
    const auto table = committed ("harmonics");
    int compared = 0;

    for (const auto& row : table.rows)
    {
        // The Jacobi-Anger expansion: sin (a sin t) = 2 J1 (a) sin t + 2 J3 (a) sin 3t + ... up to the limit.
        const double peak = std::pow (10.0, std::stod (row.key) / 20.0);

        if (peak > 0.5 * pi)
            continue;

        const auto level = [peak] (double order)
        { return std::max (-100.0, decibels (std::cyl_bessel_j (order, peak) / std::cyl_bessel_j (1.0, peak))); };
        EXPECT_NEAR (table.at (row.key, "third_db"), level (3.0), 0.1);
        EXPECT_NEAR (table.at (row.key, "fifth_db"), level (5.0), 0.3);
        ++compared;
    }

    EXPECT_GT (compared, 60);
}
} // namespace

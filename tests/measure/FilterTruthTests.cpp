// SPDX-License-Identifier: AGPL-3.0-only
// The committed frequency responses against the formulas that the filters are known by, in 64-bit floats.
#include "measure/CommittedTables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <string>

namespace
{
constexpr double pi = std::numbers::pi;

struct Filters
{
    std::string mode;
    double corner, q;                         // high-pass: Hz
    double airDb, airFrequency, airBandwidth; // dB, Hz, octaves
    double bodyDb, bodyFrequency, bodyBandwidth;
};

// Written down once more; the plug-in's own table is not asked.
const Filters filters[] = { { "gentle", 150.0, 0.707, 7.0, 13000.0, 2.0, 1.0, 150.0, 2.3 },
                            { "medium", 135.0, 0.85, 12.0, 15000.0, 1.8, 1.5, 120.0, 2.3 },
                            { "powerful", 125.0, 1.0, 12.0, 15000.0, 1.8, 3.0, 120.0, 2.3 } };

double decibels (double ratio)
{
    return 20.0 * std::log10 (ratio);
}

/** A second-order high-pass, s^2 / (s^2 + s / Q + 1), on the warped frequency axis of the bilinear transform. */
std::complex<double> highPass (const Filters& f, double rate, double frequency)
{
    const std::complex<double> s (0.0, std::tan (pi * frequency / rate) / std::tan (pi * f.corner / rate));
    return s * s / (s * s + s / f.q + 1.0);
}

/** The analogue prototype of the peaking equaliser, (s^2 + s A alpha' + 1) / (s^2 + s alpha' / A + 1), likewise; alpha'
   is alpha / sin (w0) times two, and alpha is at most 1.5. */
std::complex<double> peaking (double db, double centre, double bandwidth, double rate, double frequency)
{
    const double amplitude = std::pow (10.0, db / 40.0);
    const double w0 = 2.0 * pi * centre / rate;
    const double alpha =
        std::min (1.5, std::sin (w0) * std::sinh (0.5 * std::numbers::ln2 * bandwidth * w0 / std::sin (w0)));
    const double width = 2.0 * alpha / std::sin (w0);
    const std::complex<double> s (0.0, std::tan (pi * frequency / rate) / std::tan (0.5 * w0));
    return (s * s + s * width * amplitude + 1.0) / (s * s + s * width / amplitude + 1.0);
}

std::complex<double> air (const Filters& f, double rate, double frequency)
{
    return peaking (f.airDb, f.airFrequency, f.airBandwidth, rate, frequency);
}

std::complex<double> body (const Filters& f, double rate, double frequency)
{
    return peaking (f.bodyDb, f.bodyFrequency, f.bodyBandwidth, rate, frequency);
}

/** The chain where it is linear: the body filter, and what the air filter adds to its input. */
double chain (const Filters& f, double rate, double frequency)
{
    return std::abs (highPass (f, rate, frequency) * (body (f, rate, frequency) + air (f, rate, frequency) - 1.0));
}

TEST (FilterTruth, CurvesOfTheFiltersAreThoseOfTheirFormulas)
{
    const auto table = committed ("filters");
    ASSERT_GT (table.rows.size(), 100u);

    for (const auto& f : filters)
        for (const auto& row : table.rows)
        {
            const double frequency = std::stod (row.key);
            SCOPED_TRACE (f.mode + " at " + row.key);
            EXPECT_NEAR (table.at (row.key, f.mode + "_high_pass_db"),
                         decibels (std::abs (highPass (f, 48000.0, frequency))),
                         0.01);
            EXPECT_NEAR (
                table.at (row.key, f.mode + "_body_db"), decibels (std::abs (body (f, 48000.0, frequency))), 0.01);
            EXPECT_NEAR (
                table.at (row.key, f.mode + "_air_db"), decibels (std::abs (air (f, 48000.0, frequency))), 0.01);
        }
}

TEST (FilterTruth, GentlesHighPassIsThreeDecibelsDownAtItsCorner)
{
    const auto table = committed ("filters");
    const auto frequencies = table.keys();
    const auto gains = table.column ("gentle_high_pass_db");
    const auto above = std::upper_bound (gains.begin(), gains.end(), -3.0113) - gains.begin();
    const auto i = static_cast<std::size_t> (above);
    const auto corner = frequencies[i - 1]
                        + (frequencies[i] - frequencies[i - 1]) * (-3.0113 - gains[i - 1]) / (gains[i] - gains[i - 1]);
    EXPECT_NEAR (corner, 150.0, 0.5);
}

TEST (FilterTruth, PeaksHaveTheirGainAtTheirCentre)
{
    const auto table = committed ("filters");

    for (const auto& f : filters)
        for (const auto& [column, gain, centre] : { std::tuple { "_air_db", f.airDb, f.airFrequency },
                                                    std::tuple { "_body_db", f.bodyDb, f.bodyFrequency } })
        {
            const auto gains = table.column (f.mode + column);
            const auto highest = std::max_element (gains.begin(), gains.end());
            EXPECT_NEAR (*highest, gain, 0.02) << f.mode << column;
            EXPECT_NEAR (
                std::log2 (table.keys()[static_cast<std::size_t> (highest - gains.begin())] / centre), 0.0, 0.05)
                << f.mode << column;
        }
}

TEST (FilterTruth, TheWholeAtRestIsTheSumOfItsFiltersAtEveryRate)
{
    const auto table = committed ("response");
    ASSERT_GT (table.rows.size(), 100u);

    for (const auto& f : filters)
        for (const int rate : { 44100, 48000, 96000 })
            for (const auto& row : table.rows)
            {
                const double frequency = std::stod (row.key);
                const double expected = decibels (chain (f, rate, frequency) / chain (f, rate, 1000.0));
                EXPECT_NEAR (table.at (row.key, f.mode + "_" + std::to_string (rate) + "_db"), expected, 0.04)
                    << f.mode << " at " << rate << " Hz, " << row.key;
            }
}

TEST (FilterTruth, TheAirTermIsTheSameInTheLibraryAsAlone)
{
    const auto table = committed ("air");

    for (const auto& f : filters)
        for (const auto& row : table.rows)
        {
            // At 500 Hz the high-pass still counts, which is in the library only.
            const double frequency = std::stod (row.key);
            const double ofHighPass =
                decibels (std::abs (highPass (f, 48000.0, frequency) / highPass (f, 48000.0, 1000.0)));
            EXPECT_NEAR (table.at (row.key, f.mode + "_library_at_-54_db"),
                         table.at (row.key, f.mode + "_at_-54_db") + ofHighPass,
                         0.03)
                << f.mode << " at " << row.key;
        }
}

TEST (FilterTruth, LoudTonesGainNoMoreAirThanTheArcTangentHasToGive)
{
    const auto table = committed ("air");
    constexpr double dry = 0.501187 * 1.5;              // -6 dBFS behind the fold
    constexpr double most = 0.02 * 0.5 * pi * 4.0 / pi; // the fundamental of a square wave of its bound

    for (const auto& f : filters)
        for (const auto gain : table.column (f.mode + "_at_-6_db"))
            EXPECT_LT (gain, decibels ((dry + most) / dry) + 0.03) << f.mode;

    for (const auto& f : filters)
        EXPECT_GT (table.at ("12589.25", f.mode + "_at_-54_db"), table.at ("12589.25", f.mode + "_at_-18_db") + 5.0);
}
} // namespace

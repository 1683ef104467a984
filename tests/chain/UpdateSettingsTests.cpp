// SPDX-License-Identifier: AGPL-3.0-only
#include "chain/ModeTable.h"
#include "support/OpenProcessor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>

namespace
{
float position (int index)
{
    return knobPosition (index);
}

void expectRow (const larkspire::LevelRider& rider, const larkspire::RiderSettings& row)
{
    EXPECT_EQ (rider.threshold, row.threshold);
    EXPECT_EQ (rider.attackRate, row.attackRate);
    EXPECT_EQ (rider.releaseRate, row.releaseRate);
    EXPECT_EQ (rider.gainScale, row.gainScale);
    EXPECT_EQ (rider.gainOffset, row.gainOffset);
    EXPECT_EQ (rider.outputGain, row.outputGain);
}

/** The coefficients of a peaking filter that was designed for these settings. */
larkspire::PeakingFilter designed (double rate, const larkspire::PeakSettings& peak)
{
    larkspire::PeakingFilter filter;
    designPeaking (filter, static_cast<float> (rate), peak.gainDb, peak.frequency, peak.bandwidth);
    return filter;
}

constexpr auto coefficientBytes = offsetof (larkspire::PeakingFilter, left);

class UpdateSettings : public testing::TestWithParam<int>
{
};

TEST_P (UpdateSettings, BringsTheWholeRowOfThePositionIntoForce)
{
    const int index = GetParam();
    OpenProcessor processor;
    processor.giveRate (48000.0);
    processor.adoptMode (position (index));
    const auto& row = larkspire::modeForIndex (index);

    EXPECT_EQ (processor.modeIndex, index);
    expectRow (*processor.leveller, row.leveller);
    expectRow (*processor.expander, row.expander);

    const auto air = designed (48000.0, row.air);
    const auto body = designed (48000.0, row.body);
    EXPECT_EQ (std::memcmp (processor.airFilter, &air, coefficientBytes), 0);
    EXPECT_EQ (std::memcmp (processor.bodyFilter, &body, coefficientBytes), 0);
}

TEST_P (UpdateSettings, DesignsTheHighPassInDoublePrecision)
{
    const int index = GetParam();
    const double piCorners[] = { 62.83185307179586, 471.23889803846896, 424.11500823462205, 392.6990816987241 };
    const double inverseQs[] = { 1.0, 1.4144271226587684, 1.1764705552361838, 1.0 };
    const auto row = static_cast<std::size_t> (index <= 3 ? index : 0);

    for (const double rate : { 1000.0, 8000.0, 44100.0, 96000.0, 192000.0, 44100.5 })
    {
        OpenProcessor processor;
        processor.giveRate (rate);
        processor.adoptMode (position (index));

        const double k = std::tan (piCorners[row] / rate);
        const double c = 1.0 / ((k * inverseQs[row] + 1.0) + k * k);
        const double wanted[] = { c, c * -2.0, c, (c + c) * (k * k - 1.0), ((1.0 - k * inverseQs[row]) + k * k) * c };
        const auto left = processor.highPassLeft.getCoefficients();
        const auto right = processor.highPassRight.getCoefficients();

        for (std::size_t i = 0; i < 5; ++i)
        {
            EXPECT_EQ (left.coefficients[i], static_cast<float> (wanted[i])) << "coefficient " << i << " at " << rate;
            EXPECT_EQ (right.coefficients[i], left.coefficients[i]);
        }
    }
}

INSTANTIATE_TEST_SUITE_P (Positions, UpdateSettings, testing::Range (0, 10));

TEST (UpdateSettings, CoversHalfAStepToEitherSideOfAPosition)
{
    OpenProcessor processor;
    const std::pair<float, int> table[] = { { 0.0f, 0 },         { 0.49f / 9.0f, 0 }, { 0.51f / 9.0f, 1 },
                                            { 1.49f / 9.0f, 1 }, { 1.51f / 9.0f, 2 }, { 3.49f / 9.0f, 3 },
                                            { 3.51f / 9.0f, 4 }, { 0.5f, 5 },         { 1.0f, 9 } };

    for (const auto& [value, index] : table)
    {
        processor.adoptMode (value);
        EXPECT_EQ (processor.modeIndex, index) << value;
    }
}

TEST (UpdateSettings, RunsAsBypassInAnyOtherDisplayMode)
{
    OpenProcessor processor;
    processor.modeParameter->displayMode = DisplayMode::Percent;
    processor.adoptMode (position (2));
    EXPECT_EQ (processor.modeIndex, 0);
    expectRow (*processor.leveller, larkspire::neutralMode.leveller);
}

TEST (UpdateSettings, TakesOnlyARateAbove999AndBelowTenBillion)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    const std::pair<double, bool> table[] = {
        { 0.0, false },           { -48000.0, false },      { 999.0, false }, { std::nextafter (999.0, 1000.0), true },
        { 1000.0, true },         { 44100.0, true },        { 1e10, true },   { 10000000000.9, true },
        { 10000000001.0, false }, { 20000000000.0, false }, { nan, false },   { infinity, false },
    };

    for (const auto& [rate, taken] : table)
    {
        OpenProcessor processor;
        processor.giveRate (rate);
        processor.updateSettings();
        EXPECT_EQ (processor.sampleRate, taken ? rate : 96000.0) << rate;
    }
}

TEST (UpdateSettings, DesignsForTheFormerRateWhereTheNewOneIsIgnored)
{
    OpenProcessor processor;
    processor.giveRate (44100.0);
    processor.updateSettings();
    processor.giveRate (999.0);
    processor.updateSettings();

    const auto air = designed (44100.0, larkspire::modeForIndex (2).air);
    EXPECT_EQ (processor.sampleRate, 44100.0);
    EXPECT_EQ (std::memcmp (processor.airFilter, &air, coefficientBytes), 0);
}

TEST (UpdateSettings, DesignsForTheRateTimesTheOversamplingFactor)
{
    OpenProcessor processor;
    processor.oversamplingFactor = 4;
    processor.giveRate (48000.0);
    processor.updateSettings();
    const auto air = designed (192000.0, larkspire::modeForIndex (2).air);
    EXPECT_EQ (processor.sampleRate, 48000.0);
    EXPECT_EQ (std::memcmp (processor.airFilter, &air, coefficientBytes), 0);
    const auto highPass = juce::IIRCoefficients::makeHighPass (192000.0, 135.0, static_cast<double> (0.85f));
    EXPECT_EQ (std::memcmp (processor.highPassLeft.getCoefficients().coefficients, highPass.coefficients, 20), 0);
}

TEST (UpdateSettings, TwiceIsTheSameAsOnce)
{
    OpenProcessor processor;
    std::vector<float> left (500, 0.4f);
    std::vector<float> right (500, -0.1f);
    processor.run (left, right);
    processor.updateSettings();

    const auto air = *processor.airFilter;
    const auto body = *processor.bodyFilter;
    const auto leveller = *processor.leveller;
    const auto expander = *processor.expander;
    processor.updateSettings();
    EXPECT_EQ (std::memcmp (&air, processor.airFilter, sizeof (air)), 0);
    EXPECT_EQ (std::memcmp (&body, processor.bodyFilter, sizeof (body)), 0);
    EXPECT_EQ (std::memcmp (&leveller, processor.leveller, sizeof (leveller)), 0);
    EXPECT_EQ (std::memcmp (&expander, processor.expander, sizeof (expander)), 0);
}

TEST (UpdateSettings, KeepsGainsAndMemoriesThroughAChangeOfMode)
{
    OpenProcessor processor;
    processor.setMode (position (3));
    std::vector<float> left (500, 0.4f);
    std::vector<float> right (500, -0.1f);
    processor.run (left, right);

    const auto air = *processor.airFilter;
    const auto leveller = *processor.leveller;
    const auto expander = *processor.expander;
    processor.adoptMode (position (2));

    EXPECT_EQ (processor.leveller->gainLeft, leveller.gainLeft);
    EXPECT_EQ (processor.leveller->gainRight, leveller.gainRight);
    EXPECT_EQ (processor.expander->gainLeft, expander.gainLeft);
    EXPECT_EQ (processor.expander->gainRight, expander.gainRight);
    EXPECT_EQ (std::memcmp (&air.left, &processor.airFilter->left, 2 * sizeof (air.left)), 0);
    EXPECT_NE (leveller.outputGain, processor.leveller->outputGain) << "the row itself did change";
}
} // namespace

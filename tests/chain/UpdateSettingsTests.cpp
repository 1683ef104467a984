// SPDX-License-Identifier: AGPL-3.0-only
// When a row comes into force and for which rate. What it makes of the records is in OracleTests.cpp.
#include "reference/Modes.h"
#include "support/OpenProcessor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

namespace
{
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

TEST (UpdateSettings, TakesOnlyARateAbove999AndBelowTenBillionAndElseDesignsForTheFormer)
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

        larkspire::PeakingFilter air;
        const auto& [gainDb, frequency, bandwidth] = reference::modeAt (2).air;
        designPeaking (air, taken ? static_cast<float> (rate) : 96000.0f, gainDb, frequency, bandwidth);
        EXPECT_EQ (std::memcmp (processor.airFilter, &air, sizeof (air)), 0) << rate;
    }
}

TEST (UpdateSettings, KeepsGainsAndMemories)
{
    OpenProcessor processor;
    processor.setMode (knobPosition (3));
    std::vector<float> left (500, 0.4f);
    std::vector<float> right (500, -0.1f);
    processor.run (left, right);
    const auto before = processor.memory();

    processor.updateSettings();
    EXPECT_EQ (processor.memory(), before);

    processor.adoptMode (knobPosition (2));
    EXPECT_EQ (processor.memory(), before);
    EXPECT_EQ (processor.leveller->outputGain, reference::modeAt (2).leveller.outputGain)
        << "the row itself did change";
}
} // namespace

// SPDX-License-Identifier: AGPL-3.0-only
// The product's numbers once more, as the decimal texts of its documentation, compared as bits.
#include "chain/ModeTable.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdlib>

namespace
{
using larkspire::modeForIndex;
using larkspire::ModeRow;

std::uint32_t bits (float value)
{
    return std::bit_cast<std::uint32_t> (value);
}

std::uint32_t bits (const char* decimal)
{
    return bits (std::strtof (decimal, nullptr));
}

using Texts = std::array<const char*, 6>;

struct Row
{
    const char* name;
    int index;
    Texts leveller;
    Texts expander;
    std::array<const char*, 3> air;
    std::array<const char*, 3> body;
    const char* corner;
    const char* q;
};

const Row rows[] = {
    { "neutral",
      0,
      { "1.0", "4.1327885e-07", "1.2697093e-07", "0.5", "0.5", "1.0" },
      { "1e-06", "0.00012331999", "1.2697093e-07", "0.70710677", "0.29289323", "1.0" },
      { "0.0", "10000", "2.0" },
      { "0.0", "120", "2.0" },
      "20",
      "1.0" },
    { "Gentle",
      1,
      { "0.015", "0.00013360231", "5.4113156e-07", "1.0", "0.0", "25.0" },
      { "0.000100000005", "8.565843e-06", "1.5935553e-05", "0.8660254", "0.13397461", "1.0" },
      { "7.0", "13000", "2.0" },
      { "1.0", "150", "2.3" },
      "150",
      "0.707" },
    { "Medium",
      2,
      { "0.015", "0.00020838086", "1.5935553e-05", "1.0", "0.0", "12.0" },
      { "0.00020000001", "8.565843e-06", "1.5935553e-05", "0.94868326", "0.051316738", "1.0" },
      { "12.0", "15000", "1.8" },
      { "1.5", "120", "2.3" },
      "135",
      "0.85" },
    { "Powerful",
      3,
      { "0.015", "0.00032501374", "6.791503e-05", "1.0", "0.0", "9.0" },
      { "0.00025", "8.565843e-06", "1.5935553e-05", "1.0", "0.0", "1.0" },
      { "12.0", "15000", "1.8" },
      { "3.0", "120", "2.3" },
      "125",
      "1.0" },
};

class ModeTable : public testing::TestWithParam<Row>
{
};

void expectRider (const larkspire::RiderSettings& rider, const Texts& texts)
{
    EXPECT_EQ (bits (rider.threshold), bits (texts[0]));
    EXPECT_EQ (bits (rider.attackRate), bits (texts[1]));
    EXPECT_EQ (bits (rider.releaseRate), bits (texts[2]));
    EXPECT_EQ (bits (rider.gainScale), bits (texts[3]));
    EXPECT_EQ (bits (rider.gainOffset), bits (texts[4]));
    EXPECT_EQ (bits (rider.outputGain), bits (texts[5]));
}

void expectPeak (const larkspire::PeakSettings& peak, const std::array<const char*, 3>& texts)
{
    EXPECT_EQ (bits (peak.gainDb), bits (texts[0]));
    EXPECT_EQ (bits (peak.frequency), bits (texts[1]));
    EXPECT_EQ (bits (peak.bandwidth), bits (texts[2]));
}

TEST_P (ModeTable, HoldsTheFloatsNearestToTheDecimals)
{
    const auto& row = GetParam();
    const ModeRow& mode = modeForIndex (row.index);
    expectRider (mode.leveller, row.leveller);
    expectRider (mode.expander, row.expander);
    expectPeak (mode.air, row.air);
    expectPeak (mode.body, row.body);
    EXPECT_EQ (mode.highPass.corner, std::strtod (row.corner, nullptr));
    EXPECT_EQ (bits (mode.highPass.q), bits (row.q));
}

INSTANTIATE_TEST_SUITE_P (Rows, ModeTable, testing::ValuesIn (rows), [] (const auto& test) { return test.param.name; });

TEST (ModeTable, HasTwoThresholdsOneStepBesideTheRoundNumber)
{
    EXPECT_EQ (bits (modeForIndex (1).expander.threshold), 0x38D1B718u);
    EXPECT_EQ (bits (1e-4f), 0x38D1B717u);
    EXPECT_EQ (bits (modeForIndex (2).expander.threshold), 0x3951B718u);
    EXPECT_EQ (bits (2e-4f), 0x3951B717u);
}

TEST (ModeTable, WidensTheQOfSinglePrecision)
{
    EXPECT_EQ (1.0 / static_cast<double> (modeForIndex (1).highPass.q), 1.4144271226587684);
    EXPECT_EQ (1.0 / static_cast<double> (modeForIndex (2).highPass.q), 1.1764705552361838);
}

TEST (ModeTable, MakesARunningGainOfOneUnityInEveryExpanderRow)
{
    for (int index = 0; index < 4; ++index)
        EXPECT_FLOAT_EQ (modeForIndex (index).expander.gainScale + modeForIndex (index).expander.gainOffset, 1.0f);
}

TEST (ModeTable, AnswersEveryIndexWithoutANameWithTheNeutralRow)
{
    for (const int index : { -2147483647 - 1, -1, 0, 4, 5, 9, 2147483647 })
        EXPECT_EQ (&modeForIndex (index), &larkspire::neutralMode) << index;

    EXPECT_NE (&modeForIndex (1), &larkspire::neutralMode);
    EXPECT_NE (&modeForIndex (3), &larkspire::neutralMode);
}
} // namespace

// SPDX-License-Identifier: AGPL-3.0-only
// The display modes with a number. The expected texts were worked out apart from the code, in arithmetic of any
// precision that rounds where the modes round. A row marked "32-bit" or "64-bit" reads otherwise in the other width.
#include "settings/ValueTexts.h"

#include "frame/AudioParameterFloatQuendal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{
constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

float justBelow (float x)
{
    return std::nextafter (x, -infinity);
}

float justAbove (float x)
{
    return std::nextafter (x, infinity);
}

/** A parameter with a display mode, a range and a unit. */
struct ShowingParameter : juce::AudioParameterFloatQuendal
{
    explicit ShowingParameter (int mode, float min = 0.0f, float max = 1.0f, const juce::String& unitText = "u")
        : AudioParameterFloatQuendal ("shown", "Shown", mode, 0.0f, 10, { "first", "second" })
    {
        rangeMin = min;
        rangeMax = max;
        unit = unitText;
    }
};

struct Row
{
    float min;
    float max;
    float value;
    const char* text;
};

void expectTexts (int mode, const std::vector<Row>& rows)
{
    for (const auto& row : rows)
        EXPECT_EQ (ShowingParameter (mode, row.min, row.max).valueToText (row.value), row.text)
            << "mode " << mode << ", range " << row.min << " to " << row.max << ", value " << row.value;
}

TEST (ValueText, LinearAutoHasFewerDecimalsTheHigherTheRangeReaches)
{
    expectTexts (0,
                 {
                     { 0.0f, 100.0f, 0.5f, "50 u" },
                     { 0.0f, justAbove (29.0f), 0.5f, "15 u" },
                     { 0.0f, 29.0f, 0.5f, "14.5 u" },
                     { 1.0f, justAbove (2.9f), 1.0f, "2.9 u" },
                     { 1.0f, 2.9f, 1.0f, "2.90 u" }, // the 32-bit 2.9 lies above the 64-bit one
                     { 0.0f, 2.0f, 0.25f, "0.50 u" },
                     { 0.0f, 100.0f, 0.015f, "2 u" },  // 32-bit
                     { 0.1f, 7.3f, 0.3125f, "2.3 u" }, // 32-bit
                     { 0.0f, 100.0f, -0.5f, "-50 u" }, // beyond the ends the line goes on
                     { 0.0f, 100.0f, 1.5f, "150 u" },
                 });
}

TEST (ValueText, LinearAutoIsSignedWhereTheRangeReachesBelowZero)
{
    expectTexts (0,
                 {
                     { -1.0f, 1.0f, 0.75f, "+0.50 u" },
                     { -1.0f, 1.0f, 0.25f, "-0.50 u" },
                     { -1.0f, 1.0f, 0.5f, "+0.00 u" },
                     { -10.0f, 10.0f, 0.75f, "+5.0 u" },
                     { -60.0f, 60.0f, 0.75f, "+30 u" },
                     { -1.0f, 1.0f, 0.0275f, "-0.94 u" }, // 32-bit
                     { -0.0f, 2.0f, 0.5f, "1.00 u" },     // a negative zero is not below zero
                     { justBelow (0.0f), 2.0f, 0.5f, "+1.00 u" },
                     { -60.0f, -20.0f, 0.5f, "-40.00 u" }, // it is the upper end that counts, not the size
                 });
}

TEST (ValueText, LinearWholeHasNoDecimalsWhateverTheRange)
{
    expectTexts (1,
                 {
                     { 0.0f, 10.0f, 0.5f, "5 u" },
                     { 0.0f, 2.0f, 0.9f, "2 u" },
                     { -1.0f, 1.0f, 0.9f, "+1 u" },
                     { 0.0f, 10.0f, 0.05f, "0 u" }, // 32-bit, and a half that goes to the even number
                     { 0.0f, 10.0f, 0.85f, "8 u" }, // 32-bit
                 });
}

TEST (ValueText, ShowsOneDecimalInTheRange0To1EvenWhereWholeNumbersAreAskedFor)
{
    for (const int mode : { 0, 1 })
        expectTexts (mode,
                     {
                         { 0.0f, 1.0f, 0.0f, "0.0 u" },
                         { 0.0f, 1.0f, 0.5f, "0.5 u" },
                         { 0.0f, 1.0f, 0.26f, "0.3 u" },
                         { 0.0f, 1.0f, 1.0f, "1.0 u" },
                     });
}

TEST (ValueText, KeepsWithinTheRange0To1ButWithinNoOther)
{
    for (const int mode : { 0, 1 })
    {
        const larkspire::ValueTextSettings settings { .displayMode = mode, .unit = "u" };
        EXPECT_EQ (larkspire::valueText (settings, -0.5f), "0.0 u");
        EXPECT_EQ (larkspire::valueText (settings, 1.5f), "1.0 u");
        EXPECT_EQ (larkspire::valueText (settings, -0.0f), "0.0 u");
    }

    expectTexts (1, { { 0.0f, justAbove (1.0f), 1.5f, "2 u" }, { 0.0f, justBelow (1.0f), -1.0f, "-1 u" } });
}

TEST (ValueText, ShowsAnyUnknownModeAsLinearAuto)
{
    for (const int mode : { -1, 14, 15, 100, std::numeric_limits<int>::min(), std::numeric_limits<int>::max() })
        expectTexts (mode,
                     {
                         { 0.0f, 100.0f, 0.5f, "50 u" },
                         { -10.0f, 10.0f, 0.75f, "+5.0 u" },
                         { 0.0f, 2.0f, 0.25f, "0.50 u" },
                     });
}

TEST (ValueText, PercentRoundsHalvesAwayFromZeroAndIgnoresTheRange)
{
    expectTexts (2,
                 {
                     { 0.0f, 1.0f, 0.0f, "0 u" },
                     { 0.0f, 1.0f, 1.0f, "100 u" },
                     { 0.0f, 1.0f, 0.125f, "13 u" },
                     { 0.0f, 1.0f, justBelow (0.125f), "12 u" },
                     { 0.0f, 1.0f, -0.125f, "-13 u" },
                     { 0.0f, 1.0f, 0.005f, "1 u" }, // 32-bit
                     { -5.0f, 7.0f, 0.3f, "30 u" },
                 });
}

TEST (ValueText, CubicRangeIsOffAtTheBottomAndSignedAbove)
{
    expectTexts (3,
                 {
                     { -60.0f, 12.0f, 0.0f, "OFF" },
                     { -60.0f, 12.0f, -0.1f, "OFF" },
                     { -60.0f, 12.0f, nan, "OFF" },
                     { -60.0f, 12.0f, std::numeric_limits<float>::denorm_min(), "-60.0 u" },
                     { -60.0f, 12.0f, 0.5f, "-51.0 u" },
                     { -60.0f, 12.0f, 1.0f, "+12.0 u" },
                     { -60.0f, 12.0f, 0.395374954f, "-55.6 u" },    // 64-bit
                     { -7.3f, 1.1f, 0.5f, "-6.3 u" },               // 64-bit
                     { -1.0f, 16777216.0f, 1.0f, "+16777215.0 u" }, // 32-bit in the difference alone
                 });
}

TEST (ValueText, CubicGain10IsOffAtTheBottomAndReachesTenDecibels)
{
    expectTexts (4,
                 {
                     { 0.0f, 1.0f, 0.0f, "OFF" },
                     { 0.0f, 1.0f, -0.5f, "OFF" },
                     { 0.0f, 1.0f, nan, "OFF" },
                     { 0.0f, 1.0f, 1.0f, "+10.0 u" },
                     { 0.0f, 1.0f, 0.5f, "-8.1 u" },
                     { -5.0f, 7.0f, 0.7f, "+0.7 u" },
                     { 0.0f, 1.0f, 0.255564183f, "-25.5 u" }, // the square root of ten gives -25.6
                 });
}

TEST (ValueText, CubicGain18IsOffAtTheBottomAndReachesEighteenDecibels)
{
    expectTexts (5,
                 {
                     { 0.0f, 1.0f, 0.0f, "OFF" },
                     { 0.0f, 1.0f, 1.0f, "+18.1 u" },
                     { 0.0f, 1.0f, 0.5f, "+0.0 u" }, // 8 times an eighth
                     { -5.0f, 7.0f, 0.7f, "+8.8 u" },
                     { 0.0f, 1.0f, 0.177747428f, "-27.0 u" }, // 64-bit
                 });
}

TEST (ValueText, LogFrequencyRunsEvenlyInOctaves)
{
    expectTexts (6,
                 {
                     { 20.0f, 20000.0f, 0.0f, "20.0 u" },
                     { 20.0f, 20000.0f, 0.1f, "40 u" },
                     { 20.0f, 20000.0f, 0.99f, "18.7 ku" },
                     { 20.0f, 20000.0f, 1.0f, "20 ku" },
                     { 0.01f, 100.0f, 0.25f, "10 sec" },
                     { 0.01f, 100.0f, 0.5f, "1.00 u" },
                     { 20000.0f, 20.0f, 0.0f, "20 ku" },
                     { 20.0f, 0.0f, 1.0f, "0 u" }, // the logarithm of 0 is minus infinity
                 });
}

TEST (ValueText, LogValueRunsEvenlyInRatios)
{
    expectTexts (7,
                 {
                     { 0.1f, 1000.0f, 0.0f, "0.10 u" },
                     { 0.1f, 1000.0f, 0.25f, "1.00 u" },
                     { 1.0f, 1000000.0f, 0.936f, "413048 u" }, // 32-bit
                     { 10.0f, 100000.0f, 0.886f, "34994 u" },  // 32-bit
                     { 20.0f, 0.0f, 1.0f, "0 u" },
                 });
}

TEST (ValueText, LogDurationRunsEvenlyInRatiosOfTime)
{
    expectTexts (13,
                 {
                     { 0.0001525f, 15.0f, 0.0f, "152 micros" },
                     { 0.00015f, 15.0f, 0.25f, "2 ms" }, // 2.667 ms
                     { 0.00015f, 15.0f, 0.9f, "4 sec" }, // 4.743 s
                     { 1.5f, 86400000.0f, 1.0f, "2 years" },
                     { 5.0e-7f, 1.0f, 0.0f, "" }, // too short for a word
                     { 20.0f, 0.0f, 1.0f, "0 u" },
                     { 0.0f, 0.0f, 0.5f, "0 u" },
                 });
}

TEST (ValueText, HasNoGuardForALogarithmicRangeThatTouchesZero)
{
    for (const int mode : { DisplayMode::LogFrequency, DisplayMode::LogValue })
        for (const float min : { 0.0f, -1.0f })
        {
            const auto text = ShowingParameter (mode, min, 100.0f).valueToText (0.5f);
            EXPECT_TRUE (text == "nan u" || text == "-nan u") << text;
        }

    EXPECT_EQ (ShowingParameter (DisplayMode::LogDuration, -1.0f, 100.0f).valueToText (0.5f), "0 u");
}

TEST (ValueText, Signed15IgnoresTheRange)
{
    expectTexts (8,
                 {
                     { 0.0f, 1.0f, 0.0f, "+0.0 u" },
                     { 0.0f, 1.0f, 1.0f, "+15.0 u" },
                     { 0.0f, 1.0f, -0.5f, "-7.5 u" },
                     { -3.0f, 9.0f, 0.5f, "+7.5 u" },
                     { 0.0f, 1.0f, 0.07f, "+1.0 u" }, // 32-bit
                 });
}

TEST (ValueText, Square5IgnoresTheRange)
{
    expectTexts (9,
                 {
                     { 0.0f, 1.0f, 0.0f, "0.1 u" },
                     { 0.0f, 1.0f, 0.5f, "1.3 u" },
                     { -3.0f, 9.0f, 1.0f, "5.0 u" },
                     { 0.0f, 1.0f, 0.524890661f, "1.4 u" }, // the square in 32 bits, all else in 64
                 });
}

TEST (ValueText, SignedLinearIsWholeOnAWideRangeAndBlanksTheSignOfZero)
{
    expectTexts (11,
                 {
                     { -12.0f, 12.0f, 0.5f, "  0 u" },
                     { -12.0f, 12.0f, 1.0f, "+12 u" },
                     { -12.0f, 12.0f, 0.52f, "  0 u" }, // 0.48
                     { -12.0f, 12.0f, 0.48f, "  0 u" }, // -0.48
                     { -8.0f, 8.0f, 0.53125f, "+1 u" }, // 0.5
                     { -8.0f, 8.0f, 0.46875f, "-1 u" }, // -0.5
                     { -5.5f, 5.5f, 0.5f, "  0 u" },    // a range of just 11
                     { 0.0f, 11.0f, 0.25f, "+3 u" },    // 2.75
                     { 0.0f, justBelow (11.0f), 0.25f, "+2.7 u" },
                     { 0.0f, 100.0f, 0.005f, "+1 u" }, // 32-bit
                 });
}

TEST (ValueText, SignedLinearHasOneDecimalOnANarrowRangeAndBlanksTheSignOfWhatIsBelowATenth)
{
    expectTexts (11,
                 {
                     { -3.0f, 3.0f, 0.5f, "  0.0 u" },
                     { -3.0f, 3.0f, 1.0f, "+3.0 u" },
                     { 0.1f, 3.0f, 0.0f, "+0.1 u" },
                     { justBelow (0.1f), 3.0f, 0.0f, "  0.0 u" },
                     { -0.1f, 3.0f, 0.0f, "-0.1 u" },
                     { justAbove (-0.1f), 3.0f, 0.0f, "  0.0 u" },
                     { 0.0f, 1.0f, 0.09f, "  0.0 u" },  // would round to 0.1
                     { 3.0f, -3.0f, 0.0f, "+3.0 u" },   // a falling range is a narrow one
                     { -1.0f, 1.0f, 0.075f, "-0.9 u" }, // 32-bit
                 });
}

TEST (ValueText, ReciprocalSweepHasNoBlankAheadOfTheUnit)
{
    expectTexts (12,
                 {
                     { 10.0f, 100.0f, 0.0f, "10u" },
                     { justBelow (10.0f), 100.0f, 0.0f, "10.0u" },
                     { 10.0f, 100.0f, 1.0f, "100u" },
                     { 1.0f, 100.0f, 0.25f, "2.0u" }, // 1 / (1 - 0.99 / 2)
                     { 0.0f, 50.0f, 0.0f, "0.0u" },   // an end at 0 has no reciprocal
                     { 0.0f, 50.0f, 0.25f, "100u" },
                     { 4.0f, 0.0f, 1.0f, "0.0u" },
                     { 0.0f, 0.0f, 0.5f, "0.0u" },
                     { -4.0f, 4.0f, 0.25f, "0.0u" }, // the sweep passes through 0
                     { -4.0f, -8.0f, 1.0f, "-8.0u" },
                     { 3.0f, 0.0f, 0.04f, "3.8u" }, // the root in 32 bits, all else in 64
                 });
}

TEST (ValueText, TakesAnyUnitAsItStands)
{
    const auto text = [] (int mode, const juce::String& unit)
    { return ShowingParameter (mode, 0.0f, 100.0f, unit).valueToText (0.5f); };

    EXPECT_EQ (text (0, "%s %d %n%"), "50 %s %d %n%") << "it is no format";
    EXPECT_EQ (text (12, "%"), "141%");
    EXPECT_EQ (text (0, juce::String::fromUTF8 ("µs")), "50 µs");
    EXPECT_EQ (text (0, ""), "50 ") << "the blank stays";
    EXPECT_EQ (text (12, ""), "141");
    EXPECT_EQ (text (0, juce::String::repeatedString ("x", 200)), "50 " + std::string (200, 'x'));
    EXPECT_EQ (ShowingParameter (0, 0.0f, std::numeric_limits<float>::max()).valueToText (1.0f),
               "340282346638528859811704183484516925440 u");
}

TEST (ValueText, ShowsTheSmallestIntWhereAWholeNumberFitsNone)
{
    expectTexts (2, { { 0.0f, 1.0f, 1e30f, "-2147483648 u" }, { 0.0f, 1.0f, nan, "-2147483648 u" } });
    expectTexts (11, { { 0.0f, 1e30f, 1.0f, "-2147483648 u" } });
}

TEST (ValueText, IsWhatTheHostReads)
{
    const ShowingParameter gain (4, 0.0f, 1.0f, "dB");
    const auto& towardsHost = static_cast<const juce::AudioProcessorParameter&> (gain);
    EXPECT_EQ (towardsHost.getText (1.0f, 64), "+10.0 dB");
    EXPECT_EQ (towardsHost.getText (0.0f, 64), "OFF");

    const ShowingParameter delay (0, 0.0f, 100.0f, juce::String::fromUTF8 ("µs"));
    EXPECT_EQ (static_cast<const juce::AudioProcessorParameter&> (delay).getText (0.5f, 64),
               juce::String::fromUTF8 ("50 µs"));
}

struct NumberRow
{
    double number;
    const char* text;
};

double justBelow (double x)
{
    return std::nextafter (x, -1.0);
}

TEST (FrequencyText, ChangesItsFormatExactlyAtItsBounds)
{
    const NumberRow rows[] = {
        { 0.0, "0 Hz" },
        { 1.0e-9, "31 years" },
        { 0.1, "10 sec" },
        { justBelow (0.3), "3 sec" },
        { 0.3, "0.30 Hz" },
        { justBelow (3.0), "3.00 Hz" },
        { 3.0, "3.0 Hz" },
        { static_cast<double> (justBelow (30.0f)), "30.0 Hz" },
        { 30.0, "30 Hz" },
        { 1000.0, "1000 Hz" },
        { static_cast<double> (justAbove (1000.0f)), "1.0 kHz" },
        { 1500.0, "1.5 kHz" },
        { 19000.0, "19.0 kHz" },
        { static_cast<double> (justAbove (19000.0f)), "19 kHz" },
        { 20000.0, "20 kHz" },
    };

    for (const auto& row : rows)
        EXPECT_EQ (larkspire::frequencyText (row.number, "Hz"), row.text) << row.number;
}

TEST (MagnitudeText, ChangesItsFormatExactlyAtItsBounds)
{
    const NumberRow rows[] = {
        { 0.0, "0 u" },
        { 0.004, "0.00 u" },
        { justBelow (3.0), "3.00 u" },
        { 3.0, "3.0 u" },
        { static_cast<double> (justBelow (30.0f)), "30.0 u" },
        { 30.0, "30 u" },
        { 1.0e6, "1000000 u" },
    };

    for (const auto& row : rows)
        EXPECT_EQ (larkspire::magnitudeText (row.number, "u"), row.text) << row.number;
}

TEST (TimeText, ShowsAZeroWhereThereIsNoTime)
{
    EXPECT_EQ (larkspire::timeText (0.0, "s"), "0 s");
    EXPECT_EQ (larkspire::timeText (-1.0, "s"), "0 s");
    EXPECT_EQ (larkspire::timeText (std::numeric_limits<double>::quiet_NaN(), "s"), "0 s");
    EXPECT_EQ (larkspire::timeText (90.0, "s"), "1 minute");
}
} // namespace

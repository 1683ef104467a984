// SPDX-License-Identifier: AGPL-3.0-only
#include "frame/AudioParameterFloatQuendal.h"
#include "support/KnobPosition.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{
using juce::AudioParameterFloatQuendal;

const std::vector<std::string> modes { "bypass", "Gentle", "Medium", "Powerful" };

struct ModeParameter : AudioParameterFloatQuendal
{
    explicit ModeParameter (int steps = 10,
                            const std::vector<std::string>& names = modes,
                            int mode = DisplayMode::Choices)
        : AudioParameterFloatQuendal ("mode", "Mode", mode, knobPosition (2), steps, names)
    {
    }
};

TEST (Parameter, StartsAtTheThirdPositionWithTheDefaultsOfItsFields)
{
    const ModeParameter parameter;
    EXPECT_EQ (parameter.get(), knobPosition (2));
    EXPECT_EQ (parameter.getChoiceIndex(), 2);
    EXPECT_EQ (parameter.getDefaultPosition(), knobPosition (2));
    EXPECT_EQ (static_cast<const juce::AudioProcessorParameter&> (parameter).getDefaultValue(), knobPosition (2));
    EXPECT_EQ (parameter.attachedSlider, nullptr);
    EXPECT_EQ (parameter.displayMode, 10);
    EXPECT_EQ (parameter.lastValue, -1e20f);
    EXPECT_EQ (parameter.getStepCount(), 10);
    EXPECT_EQ (parameter.rangeMin, 0.0f);
    EXPECT_EQ (parameter.rangeMax, 1.0f);
    EXPECT_EQ (parameter.unit, "");
    EXPECT_EQ (parameter.getChoices(), modes);
}

TEST (Parameter, ReturnsToWhereItStarted)
{
    const AudioParameterFloatQuendal parameter ("mode", "Mode", DisplayMode::Percent, 0.75f, 0, {});
    EXPECT_EQ (parameter.getDefaultPosition(), 0.75f);
}

TEST (Parameter, IsKnownToTheHostByIdNameAndVersionHint)
{
    const ModeParameter parameter;
    EXPECT_EQ (parameter.paramID, "mode");
    EXPECT_EQ (parameter.name, "Mode");
    EXPECT_EQ (parameter.getVersionHint(), 0);
}

TEST (Parameter, HasTheSamePlainAndNormalisedValue)
{
    ModeParameter parameter;

    for (const float value : { 0.0f, 0.1f, 1.0f / 3.0f, 0.77777f, 1.0f })
    {
        parameter.setValueNotifyingHost (value);
        EXPECT_EQ (parameter.get(), value);
        EXPECT_EQ (static_cast<const juce::AudioProcessorParameter&> (parameter).getValue(), value);
    }

    EXPECT_EQ (parameter.range.interval, 0.0f);
    EXPECT_EQ (parameter.range.skew, 1.0f);
    EXPECT_FALSE (parameter.range.symmetricSkew);
}

TEST (Parameter, ReportsTheFirstWatchAsAChangeAndTheSecondNot)
{
    ModeParameter parameter;
    EXPECT_TRUE (parameter.hasChanged());
    EXPECT_FALSE (parameter.hasChanged());
    parameter.setValueNotifyingHost (0.5f);
    EXPECT_TRUE (parameter.hasChanged());
    EXPECT_FALSE (parameter.hasChanged());
}

TEST (Parameter, NeverTakesNaNForAChange)
{
    ModeParameter parameter;
    parameter.lastValue = std::numeric_limits<float>::quiet_NaN();
    EXPECT_FALSE (parameter.hasChanged());
}

using IndexRows = std::vector<std::pair<float, int>>;

TEST (ParameterIndex, IsTheNearestOfTenPositions)
{
    const ModeParameter parameter;

    for (const auto& [value, index] : IndexRows { { 0.0f, 0 },
                                                  { 0.05f, 0 },
                                                  { 0.06f, 1 },
                                                  { knobPosition (1), 1 },
                                                  { knobPosition (2), 2 },
                                                  { knobPosition (3), 3 },
                                                  { 0.5f, 5 },
                                                  { 1.0f, 9 },
                                                  { -0.5f, -5 } })
        EXPECT_EQ (parameter.getChoiceIndex (value), index) << value;
}

TEST (ParameterIndex, RoundsHalvesAwayFromZero)
{
    const ModeParameter parameter (2);

    for (const auto& [value, index] : IndexRows {
             { 0.5f, 1 }, { 1.5f, 2 }, { 2.5f, 3 }, { -0.5f, -1 }, { -2.5f, -3 }, { std::nextafter (0.5f, 0.0f), 0 } })
        EXPECT_EQ (parameter.getChoiceIndex (value), index) << value;
}

TEST (ParameterIndex, IsTheSmallestIntForWhatFitsNone)
{
    const ModeParameter parameter;

    for (const float value : { std::numeric_limits<float>::quiet_NaN(), 1e30f, -1e30f })
        EXPECT_EQ (parameter.getChoiceIndex (value), std::numeric_limits<int>::min()) << value;
}

TEST (ParameterIndex, IsZeroWithFewerThanTwoSteps)
{
    for (const int steps : { 1, 0, -3 })
        for (const float value : { 0.0f, 0.5f, 1.0f, std::numeric_limits<float>::quiet_NaN() })
            EXPECT_EQ (ModeParameter (steps).getChoiceIndex (value), 0) << steps << " steps at " << value;
}

TEST (ParameterIndex, IsZeroInEveryOtherDisplayMode)
{
    for (int mode = -1; mode <= 14; ++mode)
    {
        const int expected = mode == DisplayMode::Choices ? 9 : 0;
        EXPECT_EQ (ModeParameter (10, modes, mode).getChoiceIndex (1.0f), expected) << mode;
    }
}

TEST (ParameterText, NamesThePositionForTheHostToo)
{
    const std::pair<float, const char*> table[] = {
        { 0.0f, "bypass" },
        { 0.05f, "bypass" },
        { 0.06f, "Gentle" },
        { knobPosition (1), "Gentle" },
        { knobPosition (2), "Medium" },
        { knobPosition (3), "Powerful" },
        { knobPosition (4), "" },
        { 0.5f, "" },
        { 1.0f, "" },
    };
    const ModeParameter parameter;

    for (const auto& [value, text] : table)
    {
        EXPECT_EQ (parameter.valueToText (value), text) << value;
        EXPECT_EQ (static_cast<const juce::AudioProcessorParameter&> (parameter).getText (value, 64), text) << value;
    }
}

TEST (ParameterText, SaysSoWhenThereAreNoNames)
{
    const ModeParameter parameter (10, {});

    for (const float value : { 0.0f, 0.2f, 1.0f })
        EXPECT_EQ (parameter.valueToText (value), "Modes not set!");
}

TEST (ParameterText, IsTheFirstNameWithFewerThanTwoStepsAndEmptyAtANegativePosition)
{
    EXPECT_EQ (ModeParameter (1).valueToText (1.0f), "bypass");
    EXPECT_EQ (ModeParameter().valueToText (-0.5f), "");
}

TEST (ParameterText, ReadsNamesAsUtf8)
{
    const ModeParameter parameter (10, { "Größe" });
    EXPECT_EQ (static_cast<const juce::AudioProcessorParameter&> (parameter).getText (0.0f, 64),
               juce::String::fromUTF8 ("Größe"));
}

TEST (Parameter, ReadsTypedTextAsANumberAndNotAsAName)
{
    const ModeParameter parameter;
    const auto& base = static_cast<const juce::AudioProcessorParameter&> (parameter);
    EXPECT_EQ (base.getValueForText ("0.5"), 0.5f);
    EXPECT_EQ (base.getValueForText ("Medium"), 0.0f);
}
} // namespace

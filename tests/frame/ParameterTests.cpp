// SPDX-License-Identifier: AGPL-3.0-only
#include "frame/AudioParameterFloatQuendal.h"
#include "support/KnobPosition.h"

#include <gtest/gtest.h>

#include <bit>
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

TEST (Parameter, StartsAtTheThirdPosition)
{
    const ModeParameter parameter;
    EXPECT_EQ (parameter.get(), knobPosition (2));
    EXPECT_EQ (parameter.getChoiceIndex(), 2);
    EXPECT_EQ (parameter.getDefaultPosition(), knobPosition (2));
    EXPECT_EQ (static_cast<const juce::AudioProcessorParameter&> (parameter).getDefaultValue(), knobPosition (2));
}

TEST (Parameter, StartsWithTheDefaultsOfItsFields)
{
    const ModeParameter parameter;
    EXPECT_EQ (parameter.attachedSlider, nullptr);
    EXPECT_EQ (parameter.displayMode, 10);
    EXPECT_EQ (std::bit_cast<std::uint32_t> (parameter.lastValue), 0xE0AD78ECu);
    EXPECT_EQ (parameter.numSteps, 10);
    EXPECT_EQ (parameter.rangeMin, 0.0f);
    EXPECT_EQ (parameter.rangeMax, 1.0f);
    EXPECT_EQ (parameter.choices, modes);
    EXPECT_EQ (parameter.unit, "");
    EXPECT_EQ (parameter.getChoices(), modes);
    EXPECT_EQ (parameter.getStepCount(), 10);
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

TEST (Parameter, NeverTakesWhatIsNoNumberForAChange)
{
    ModeParameter parameter;
    parameter.lastValue = std::numeric_limits<float>::quiet_NaN();
    EXPECT_FALSE (parameter.hasChanged());
}

struct IndexRow
{
    float value;
    int index;
};

class ParameterIndex : public testing::TestWithParam<IndexRow>
{
};

TEST_P (ParameterIndex, IsTheNearestOfTenPositions)
{
    EXPECT_EQ (ModeParameter().getChoiceIndex (GetParam().value), GetParam().index);
}

INSTANTIATE_TEST_SUITE_P (Values,
                          ParameterIndex,
                          testing::Values (IndexRow { 0.0f, 0 },
                                           IndexRow { 0.05f, 0 },
                                           IndexRow { 0.06f, 1 },
                                           IndexRow { knobPosition (1), 1 },
                                           IndexRow { knobPosition (2), 2 },
                                           IndexRow { knobPosition (3), 3 },
                                           IndexRow { 0.5f, 5 },
                                           IndexRow { 1.0f, 9 },
                                           IndexRow { -0.5f, -5 }));

TEST (ParameterIndex, RoundsHalvesAwayFromZero)
{
    const ModeParameter parameter (2);

    for (const auto& [value, index] : std::vector<IndexRow> {
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
        for (const float value : { 0.0f, 0.5f, 1.0f })
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

struct TextRow
{
    float value;
    const char* text;
};

class ParameterText : public testing::TestWithParam<TextRow>
{
};

TEST_P (ParameterText, NamesThePosition)
{
    const ModeParameter parameter;
    EXPECT_EQ (parameter.valueToText (GetParam().value), GetParam().text);
    EXPECT_EQ (static_cast<const juce::AudioProcessorParameter&> (parameter).getText (GetParam().value, 64),
               juce::String (GetParam().text))
        << "the host reads the same";
}

INSTANTIATE_TEST_SUITE_P (Values,
                          ParameterText,
                          testing::Values (TextRow { 0.0f, "bypass" },
                                           TextRow { 0.05f, "bypass" },
                                           TextRow { 0.06f, "Gentle" },
                                           TextRow { knobPosition (1), "Gentle" },
                                           TextRow { knobPosition (2), "Medium" },
                                           TextRow { knobPosition (3), "Powerful" },
                                           TextRow { knobPosition (4), "" },
                                           TextRow { 0.5f, "" },
                                           TextRow { 1.0f, "" }));

TEST (ParameterText, SaysSoWhenThereAreNoNames)
{
    const ModeParameter parameter (10, {});

    for (const float value : { 0.0f, 0.2f, 1.0f })
        EXPECT_EQ (parameter.valueToText (value), "Modes not set!");
}

TEST (ParameterText, IsTheFirstNameWithFewerThanTwoSteps)
{
    EXPECT_EQ (ModeParameter (1).valueToText (1.0f), "bypass");
}

TEST (ParameterText, IsEmptyAtANegativePosition)
{
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

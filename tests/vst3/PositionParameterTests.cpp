// SPDX-License-Identifier: AGPL-3.0-only
#include "vst3/PositionParameter.h"

#include "chain/ModeTable.h"
#include "support/Comparison.h"
#include "support/KnobPosition.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace
{
using juce::AudioParameterFloatQuendal;
using larkspire::PositionParameter;

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

const std::array<std::string, 10> texts { "bypass",   "Gentle",   "Medium",   "Powerful", "unused 5",
                                          "unused 6", "unused 7", "unused 8", "unused 9", "unused 10" };

/** What hosts may give: positions, what lies between them and what is none. */
std::vector<float> anyValues()
{
    std::vector<float> values {
        -infinity, -1e30f, -0.5f, -0.0f, 0.05f, 0.06f, 0.34f, 0.5f, 1.5f, 1e30f, infinity, nan
    };

    for (int i = 0; i < 10; ++i)
        values.push_back (knobPosition (i));

    return values;
}

class Position : public testing::Test
{
protected:
    /** What JUCE and its wrapper see. */
    using AsJuceSeesIt = juce::AudioProcessorParameter;

    AudioParameterFloatQuendal original { "mode",           "Mode", DisplayMode::Choices,
                                          knobPosition (2), 10,     { "bypass", "Gentle", "Medium", "Powerful" } };
    PositionParameter position { original };
};

TEST_F (Position, IsOneOfTenSteps)
{
    EXPECT_TRUE (position.isDiscrete());
    EXPECT_EQ (position.getNumSteps(), 10);
    EXPECT_FALSE (position.isBoolean());
}

TEST_F (Position, HasAsManyStepsAsTheOriginal)
{
    const AudioParameterFloatQuendal five { "other", "Other", DisplayMode::Choices, 0.75f, 5, { "off", "on" } };
    const PositionParameter ofFive (five);
    EXPECT_EQ (ofFive.getNumSteps(), 5);
    EXPECT_EQ (ofFive.getAllValueStrings(), (juce::StringArray { "off", "on", "unused 3", "unused 4", "unused 5" }));
    EXPECT_EQ (ofFive.getValueForText ("unused 4"), 0.75f);
}

TEST_F (Position, SaysItsNameOrItsNumber)
{
    for (std::size_t i = 0; i < texts.size(); ++i)
        EXPECT_EQ (position.getText (knobPosition (static_cast<int> (i)), 128), juce::String (texts.at (i)));
}

TEST_F (Position, ListsAllItsTexts)
{
    juce::StringArray expected;

    for (const auto& text : texts)
        expected.add (text);

    EXPECT_EQ (position.getAllValueStrings(), expected);
}

TEST_F (Position, SaysTheNearestPositionBetweenTwo)
{
    for (const auto& [value, text] : { std::pair { 0.05f, "bypass" },
                                       { 0.06f, "Gentle" },
                                       { 0.34f, "Powerful" },
                                       { 0.5f, "unused 6" },
                                       { 0.94f, "unused 9" },
                                       { 0.95f, "unused 10" } })
        EXPECT_EQ (position.getText (value, 128), text) << value;
}

TEST_F (Position, SaysTheLastOrTheFirstPositionOfWhatLiesBeyondIt)
{
    for (const float value : { -infinity, -1e30f, -1.0f, -0.06f, -0.0f })
        EXPECT_EQ (position.getText (value, 128), "bypass") << value;

    for (const float value : { 1.06f, 2.0f, 1e30f, infinity })
        EXPECT_EQ (position.getText (value, 128), "unused 10") << value;
}

TEST_F (Position, SaysAPositionOfNaNThatSoundsLikeIt)
{
    const auto shown = position.getText (nan, 128);
    EXPECT_EQ (shown, "unused 10");
    EXPECT_EQ (&larkspire::modeForIndex (position.getChoiceIndex (nan)),
               &larkspire::modeForIndex (position.getChoiceIndex (position.getValueForText (shown))));
}

TEST_F (Position, CutsItsTextToWhatThereIsRoomFor)
{
    struct
    {
        int length;
        const char* name;
        const char* number;
    } const rows[] = { { 1, "P", "u" },
                       { 3, "Pow", "unu" },
                       { 7, "Powerfu", "unused " },
                       { 8, "Powerful", "unused 5" },
                       { 9, "Powerful", "unused 5" },
                       { 0, "Powerful", "unused 5" },
                       { -1, "Powerful", "unused 5" } };

    for (const auto& [length, name, number] : rows)
    {
        EXPECT_EQ (position.getText (knobPosition (3), length), name) << length;
        EXPECT_EQ (position.getText (knobPosition (4), length), number) << length;
    }
}

TEST_F (Position, UnderstandsItsTextsInAnyCaseAndBetweenBlanks)
{
    for (std::size_t i = 0; i < texts.size(); ++i)
    {
        const juce::String text (texts.at (i));

        for (const auto& typed : { text, text.toUpperCase(), text.toLowerCase(), " \t" + text + "\n " })
            EXPECT_EQ (position.getValueForText (typed), knobPosition (static_cast<int> (i))) << typed;
    }
}

TEST_F (Position, UnderstandsNumbersAndLimitsThem)
{
    for (const auto& [typed, value] : { std::pair { "0", 0.0f },
                                        { "1", 1.0f },
                                        { "0.5", 0.5f },
                                        { " 0.25 ", 0.25f },
                                        { ".75", 0.75f },
                                        { "+0.125", 0.125f },
                                        { "+.5", 0.5f },
                                        { "1e-1", 0.1f },
                                        { "0.5 of it", 0.5f },
                                        { "-0.25", 0.0f },
                                        { "-.5", 0.0f },
                                        { "-7", 0.0f },
                                        { "7.5 dB", 1.0f },
                                        { "1.0001", 1.0f },
                                        { "1e3", 1.0f },
                                        { "1e999", 1.0f } })
        EXPECT_EQ (position.getValueForText (typed), value) << typed;
}

TEST_F (Position, StaysWhereItIsOnAnyOtherText)
{
    for (const float current : { knobPosition (2), 0.6f, 0.0f })
    {
        position.setValueNotifyingHost (current);

        for (const auto* typed :
             { "",         " ",     "abc",      "-",        "+",      ".",        "-.",
               "nan",      "NaN",   "-nan 0",   "+nan(7)",  "inf",    "-inf",     "+inf 1",
               "infinity", "byp",   "bypassed", "Gentle 1", "unused", "unused 4", "unused 11",
               "unused5",  "x 0.5", "--5",      "- 0.5",    "dB 7.5", "..5",      "Modes not set!" })
            EXPECT_EQ (position.getValueForText (typed), current) << typed;
    }
}

TEST_F (Position, IsKnownAsTheOriginal)
{
    EXPECT_EQ (position.paramID, "mode");
    EXPECT_EQ (position.paramID, original.paramID);
    EXPECT_EQ (position.name, original.name);
    EXPECT_EQ (position.getVersionHint(), original.getVersionHint());
    EXPECT_EQ (position.label, original.label);
    EXPECT_EQ (position.category, original.category);

    for (const int length : { 1, 3, 8, 128 })
        EXPECT_EQ (position.getName (length), original.getName (length));
}

TEST_F (Position, HasTheFieldsOfTheOriginal)
{
    EXPECT_EQ (position.displayMode, original.displayMode);
    EXPECT_EQ (position.numSteps, original.numSteps);
    EXPECT_EQ (position.choices, original.choices);
    EXPECT_EQ (position.rangeMin, original.rangeMin);
    EXPECT_EQ (position.rangeMax, original.rangeMax);
    EXPECT_EQ (position.unit, original.unit);
    EXPECT_EQ (position.lastValue, original.lastValue);
    EXPECT_EQ (position.attachedSlider, nullptr);
    EXPECT_EQ (position.range.start, original.range.start);
    EXPECT_EQ (position.range.end, original.range.end);
    EXPECT_EQ (position.range.interval, original.range.interval);
    EXPECT_EQ (position.range.skew, original.range.skew);
}

TEST_F (Position, StartsWhereTheOriginalDoes)
{
    original.setValueNotifyingHost (0.5f);
    const PositionParameter madeLater (original);
    EXPECT_EQ (madeLater.get(), knobPosition (2)) << "not where the original has gone since";
    EXPECT_EQ (madeLater.getDefaultPosition(), 2.0f / 9.0f);
    EXPECT_EQ (static_cast<const AsJuceSeesIt&> (madeLater).getDefaultValue(), 2.0f / 9.0f);
}

TEST_F (Position, TakesAnyValueAsTheOriginalDoes)
{
    for (const float value : anyValues())
    {
        for (auto* parameter : { &original, static_cast<AudioParameterFloatQuendal*> (&position) })
            parameter->setValueNotifyingHost (value);

        EXPECT_EQ (bitsOf (position.get()), bitsOf (original.get())) << value;
        EXPECT_EQ (bitsOf (static_cast<AsJuceSeesIt&> (position).getValue()),
                   bitsOf (static_cast<AsJuceSeesIt&> (original).getValue()))
            << value;
        EXPECT_EQ (position.getChoiceIndex(), original.getChoiceIndex()) << value;
        EXPECT_EQ (position.hasChanged(), original.hasChanged()) << value;
    }
}

TEST_F (Position, ShowsTheKnobTheTextsOfTheOriginal)
{
    for (const float value : anyValues())
    {
        EXPECT_EQ (position.valueToText (value), original.valueToText (value)) << value;
        EXPECT_EQ (position.getChoiceIndex (value), original.getChoiceIndex (value)) << value;
    }
}

TEST_F (Position, SaysWhatTheOriginalSaysWhereverThatSaysAnything)
{
    for (const float value : anyValues())
    {
        const auto text = static_cast<AsJuceSeesIt&> (original).getText (value, 128);
        EXPECT_TRUE (text.isEmpty() || position.getText (value, 128) == text) << value;
    }
}
} // namespace

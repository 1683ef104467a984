// SPDX-License-Identifier: AGPL-3.0-only
#include "editor/Canvas.h"
#include "editor/ParameterSlider.h"
#include "frame/DisplayMode.h"
#include "support/KnobPosition.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <new>

namespace
{
using juce::AudioParameterFloatQuendal;

const std::vector<std::string> modes { "bypass", "Gentle", "Medium", "Powerful" };

class ParameterSliderTest : public testing::Test
{
protected:
    GuiTest gui;
    AudioParameterFloatQuendal mode { "mode", "Mode", DisplayMode::Choices, knobPosition (2), 10, modes };
    AudioParameterFloatQuendal percent { "id", "Name", DisplayMode::Percent, 0.5f, 10, {} };
    ParameterSlider slider; // goes before its parameters, as in the window
};

/** A slider that is bound to the mode. */
class BoundSlider : public ParameterSliderTest
{
protected:
    BoundSlider() { slider.setParameter (&mode); }
};

TEST_F (ParameterSliderTest, IsARotaryKnobBoundToNothingAtFirst)
{
    EXPECT_EQ (slider.getSliderStyle(), juce::Slider::RotaryVerticalDrag);
    EXPECT_EQ (slider.parameter, nullptr);
    EXPECT_TRUE (slider.valueChangeListener.changed);
}

TEST_F (ParameterSliderTest, GoesAwayUnbound)
{
    {
        const ParameterSlider unbound;
    }
    mode.setValueNotifyingHost (1.0f);
    EXPECT_EQ (mode.attachedSlider, nullptr);
}

TEST_F (BoundSlider, ReachesThePositionsThatHaveANameAndNoOther)
{
    EXPECT_EQ (slider.getMinimum(), 0.0);
    EXPECT_EQ (slider.getMaximum(), 3.0 / 9.0);
    EXPECT_EQ (slider.getInterval(), 3.0 / 9.0 / 3.0);

    slider.setValue (1.0);
    EXPECT_EQ (slider.getValue(), 3.0 / 9.0);
    slider.setValue (0.16);
    EXPECT_NEAR (slider.getValue(), 1.0 / 9.0, 1e-15);
    slider.setValue (0.17);
    EXPECT_NEAR (slider.getValue(), 2.0 / 9.0, 1e-15);
}

TEST_F (ParameterSliderTest, SpreadsOtherModesOverTheirSteps)
{
    struct Row
    {
        int steps;
        double interval;
    };

    for (const auto& row : { Row { 10, 1.0 / 9.0 }, { 2, 1.0 }, { 1, 0.0 }, { 0, 0.0 }, { 101, 1.0 / 100.0 } })
    {
        AudioParameterFloatQuendal other ("id", "Name", DisplayMode::Percent, 0.5f, row.steps, modes);
        ParameterSlider spread;
        spread.setParameter (&other);
        EXPECT_EQ (spread.getMinimum(), 0.0);
        EXPECT_EQ (spread.getMaximum(), 1.0);
        EXPECT_EQ (spread.getInterval(), row.interval) << row.steps;
    }
}

TEST_F (BoundSlider, ShowsTheParametersTexts)
{
    for (std::size_t i = 0; i < modes.size(); ++i)
        EXPECT_EQ (slider.getTextFromValue (static_cast<double> (i) / 9.0), juce::String (modes[i]));

    EXPECT_EQ (slider.getTextFromValue (0.5), juce::String());
    EXPECT_EQ (slider.getTextValueSuffix(), juce::String());

    slider.setParameter (&percent);
    EXPECT_EQ (slider.getTextFromValue (0.25), juce::String (percent.valueToText (0.25f))) << "asked at each call";
    mode.removeListener (&slider.valueChangeListener);
}

TEST_F (ParameterSliderTest, ShowsTextsThatAreNotAscii)
{
    AudioParameterFloatQuendal accented ("id", "Name", DisplayMode::Choices, 0.0f, 10, { "caf\xc3\xa9", "b" });
    ParameterSlider shown;
    shown.setParameter (&accented);
    EXPECT_EQ (shown.getTextFromValue (0.0), juce::String (juce::CharPointer_UTF8 ("caf\xc3\xa9")));
}

TEST_F (ParameterSliderTest, StandsAtZeroUntilSomebodyMovesIt)
{
    mode.setValueNotifyingHost (knobPosition (3));
    slider.setParameter (&mode);
    EXPECT_EQ (slider.getValue(), 0.0);
    EXPECT_EQ (slider.getTextFromValue (slider.getValue()), "bypass");
    EXPECT_EQ (mode.get(), knobPosition (3));
}

TEST_F (BoundSlider, HasATextBelowThatCannotBeEdited)
{
    slider.setBounds (0, 0, 230, 115);
    EXPECT_EQ (slider.getTextBoxPosition(), juce::Slider::TextBoxBelow);
    EXPECT_EQ (slider.getTextBoxWidth(), 100);
    EXPECT_EQ (slider.getTextBoxHeight(), 20);
    EXPECT_FALSE (slider.isTextBoxEditable());

    auto* text = dynamic_cast<juce::Label*> (slider.getChildComponent (0));
    ASSERT_NE (text, nullptr);
    EXPECT_FALSE (text->isEditable());
    EXPECT_EQ (text->getText(), "bypass");
    EXPECT_EQ (text->getBounds(), juce::Rectangle<int> (65, 95, 100, 20));
}

TEST_F (BoundSlider, HasItsOwnColours)
{
    EXPECT_EQ (slider.findColour (juce::Slider::textBoxOutlineColourId), juce::Colour (0x00000000));
    EXPECT_EQ (slider.findColour (juce::Slider::textBoxTextColourId), juce::Colour (0xff909090));
}

TEST_F (BoundSlider, ReturnsToTheDefaultOnADoubleClick)
{
    EXPECT_TRUE (slider.isDoubleClickReturnEnabled());
    EXPECT_EQ (slider.getDoubleClickReturnValue(), static_cast<double> (knobPosition (2)));
}

TEST_F (BoundSlider, AsksForAltAtTheStartOfEachDrag)
{
    EXPECT_FALSE (slider.getVelocityBasedMode());
    EXPECT_EQ (slider.getVelocitySensitivity(), 0.05);
    EXPECT_EQ (slider.getVelocityThreshold(), 1);
    EXPECT_EQ (slider.getVelocityOffset(), 0.1);
    EXPECT_FALSE (slider.getVelocityModeIsSwappable());

    const auto before = juce::ModifierKeys::currentModifiers;

    for (const auto& [keys, sensitivity] : { std::pair { juce::ModifierKeys::altModifier, 2500 },
                                             { juce::ModifierKeys::noModifiers, 250 },
                                             { juce::ModifierKeys::ctrlModifier, 250 } })
    {
        juce::ModifierKeys::currentModifiers = juce::ModifierKeys (keys);
        slider.onDragStart();
        juce::ModifierKeys::currentModifiers = juce::ModifierKeys();
        EXPECT_EQ (slider.getMouseDragSensitivity(), sensitivity);
    }

    juce::ModifierKeys::currentModifiers = before;
}

TEST_F (BoundSlider, NotesThatTheParameterHasChanged)
{
    slider.valueChangeListener.changed = false;
    mode.setValueNotifyingHost (knobPosition (1));
    EXPECT_TRUE (slider.valueChangeListener.changed);
    EXPECT_EQ (slider.getValue(), 0.0) << "and leaves following it to the editor";

    slider.valueChangeListener.changed = false;
    mode.beginChangeGesture();
    mode.endChangeGesture();
    EXPECT_FALSE (slider.valueChangeListener.changed);
}

TEST_F (ParameterSliderTest, LeavesTheParametersListenersWhenItGoesAndItsNoteOfTheSliderStays)
{
    // Where it was is overwritten: a listener left behind would be called through what stands there.
    alignas (ParameterSlider) std::array<std::byte, sizeof (ParameterSlider)> place {};
    auto* gone = new (place.data()) ParameterSlider;
    gone->setParameter (&mode);
    EXPECT_EQ (mode.attachedSlider, gone);
    gone->~ParameterSlider();
    std::ranges::fill (place, std::byte { 0 });

    mode.setValueNotifyingHost (knobPosition (1));
    EXPECT_EQ (mode.attachedSlider, gone);
    EXPECT_TRUE (std::ranges::all_of (place, [] (std::byte b) { return b == std::byte { 0 }; }));
}
} // namespace

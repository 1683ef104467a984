// SPDX-License-Identifier: AGPL-3.0-only
#include "editor/Canvas.h"
#include "editor/LarkspireAudioProcessorEditor.h"
#include "support/OpenProcessor.h"

#include <gtest/gtest.h>

#include <memory>
#include <tuple>

namespace
{
using juce::Colour;

/** Writes down what a host would be told. */
struct ToldHost : juce::AudioProcessorListener
{
    void audioProcessorParameterChanged (juce::AudioProcessor*, int, float value) override { values.push_back (value); }
    void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails&) override {}
    void audioProcessorParameterChangeGestureBegin (juce::AudioProcessor*, int) override { ++gestures; }
    void audioProcessorParameterChangeGestureEnd (juce::AudioProcessor*, int) override { ++gestures; }

    std::vector<float> values;
    int gestures = 0;
};

class Editor : public testing::Test
{
public:
    Editor() { processor.addListener (&host); }
    ~Editor() override { processor.removeListener (&host); }

protected:
    juce::AudioParameterFloatQuendal& mode() { return *processor.modeParameter; }

    GuiTest gui;
    ToldHost host;
    OpenProcessor processor;
    LarkspireAudioProcessorEditor editor { &processor };
};

TEST_F (Editor, IsMadeByTheProcessor)
{
    EXPECT_TRUE (processor.hasEditor());
    const std::unique_ptr<juce::AudioProcessorEditor> made (processor.createEditor());
    ASSERT_NE (dynamic_cast<LarkspireAudioProcessorEditor*> (made.get()), nullptr);
    EXPECT_EQ (dynamic_cast<LarkspireAudioProcessorEditor&> (*made).processorRef, &processor);
    EXPECT_EQ (made->getAudioProcessor(), &processor);
}

TEST_F (Editor, IsAFixedPanelWithTwoChildren)
{
    EXPECT_EQ (editor.getBounds(), juce::Rectangle<int> (0, 0, 250, 250));
    EXPECT_FALSE (editor.isResizable());
    EXPECT_EQ (editor.getConstrainer()->getFixedAspectRatio(), 0.0);
    EXPECT_EQ (editor.getNumChildComponents(), 2);
    EXPECT_TRUE (editor.amountLabel.isVisible() && editor.slider.isVisible());
    EXPECT_EQ (editor.spareGap, 6.0f);
    EXPECT_EQ (editor.spareExtent, 117.0f);

    for (const int size : { 250, 600 })
    {
        editor.setSize (size, size);
        EXPECT_EQ (editor.amountLabel.getBounds(), juce::Rectangle<int> (10, 50, 230, 17));
        EXPECT_EQ (editor.slider.getBounds(), juce::Rectangle<int> (10, 67, 230, 115));
    }
}

TEST_F (Editor, CaptionsTheKnob)
{
    EXPECT_EQ (editor.amountLabel.getText(), "Amount");
    EXPECT_EQ (editor.amountLabel.getName(), "");
    EXPECT_EQ (editor.amountLabel.getJustificationType(), juce::Justification::centred);
}

TEST_F (Editor, LendsItsLookToItsChildren)
{
    EXPECT_EQ (&editor.getLookAndFeel(), &editor.lookAndFeel);
    EXPECT_EQ (&editor.amountLabel.getLookAndFeel(), &editor.lookAndFeel);
    EXPECT_EQ (&editor.slider.getLookAndFeel(), &editor.lookAndFeel);
}

TEST_F (Editor, TicksThreeTimesASecondUntilItGoes)
{
    EXPECT_EQ (editor.getTimerInterval(), 333);
}

TEST_F (Editor, BindsItsKnobToTheModeAndShowsBypassBeforeTheFirstTick)
{
    EXPECT_EQ (editor.slider.parameter, &mode());
    EXPECT_EQ (editor.slider.getValue(), 0.0);
    EXPECT_EQ (editor.slider.getTextFromValue (editor.slider.getValue()), "bypass");
}

TEST_F (Editor, FollowsTheParameterUpToItsLastPositionAtEachTickWithoutWritingIt)
{
    for (const auto& [value, shown] : { std::pair { knobPosition (1), 1.0 / 9.0 },
                                        { knobPosition (3), 3.0 / 9.0 },
                                        { 0.0f, 0.0 },
                                        { knobPosition (2), 2.0 / 9.0 },
                                        { 0.34f, 3.0 / 9.0 },
                                        { 0.5f, 3.0 / 9.0 },
                                        { 1.0f, 3.0 / 9.0 } })
    {
        mode().setValueNotifyingHost (value);
        host.values.clear();
        editor.timerCallback();
        EXPECT_NEAR (editor.slider.getValue(), shown, 1e-15) << value;
        EXPECT_EQ (mode().get(), value);
        EXPECT_TRUE (host.values.empty());
    }
}

TEST_F (Editor, SendsAMoveOutAsOneValueWithoutAGesture)
{
    for (const double value : { 1.0 / 9.0, 3.0 / 9.0 })
    {
        host.values.clear();
        editor.slider.setValue (value, juce::sendNotificationSync);
        EXPECT_EQ (mode().get(), static_cast<float> (value));
        EXPECT_EQ (host.values, std::vector<float> { static_cast<float> (value) });
        EXPECT_EQ (host.gestures, 0);
    }
}

TEST_F (Editor, CountsTicksSinceTheLastTouchIn16Bits)
{
    EXPECT_EQ (editor.idleTicks, 0);
    editor.timerCallback();
    editor.timerCallback();
    EXPECT_EQ (editor.idleTicks, 2);
    editor.slider.setValue (1.0 / 9.0, juce::sendNotificationSync);
    EXPECT_EQ (editor.idleTicks, 0);
    editor.idleTicks = 65534;
    editor.timerCallback();
    EXPECT_EQ (editor.idleTicks, 65535);
    editor.timerCallback();
    EXPECT_EQ (editor.idleTicks, 0);
}

TEST_F (Editor, TakesAMoveOfNothingAndOfAnUnboundSlider)
{
    editor.idleTicks = 5;
    editor.sliderValueChanged (nullptr);
    EXPECT_EQ (editor.idleTicks, 0);

    ParameterSlider unbound;
    editor.idleTicks = 5;
    editor.sliderValueChanged (&unbound);
    EXPECT_EQ (editor.idleTicks, 0);
    EXPECT_EQ (mode().get(), knobPosition (2));
}

TEST_F (Editor, CountsAButtonAsATouch)
{
    juce::TextButton button;
    button.setToggleState (true, juce::dontSendNotification);
    editor.idleTicks = 7;
    editor.buttonClicked (&button);
    EXPECT_EQ (editor.idleTicks, 0);
    EXPECT_TRUE (button.getToggleState());
}

TEST_F (Editor, DrainsTheLevelThatNothingFeeds)
{
    for (const auto& [sum, count, reading] : { std::tuple { 16.0f, 2, 2.0f }, { 27.0f, 1, 3.0f } })
    {
        processor.levelSum = sum;
        processor.levelCount = count;
        editor.timerCallback();
        EXPECT_FLOAT_EQ (editor.levelReading, reading) << "the cube root of the mean";
        EXPECT_EQ (processor.levelSum, 0.0f);
        EXPECT_EQ (processor.levelCount, 0);
    }

    processor.levelSum = 5.0f; // without a count it stays
    editor.timerCallback();
    EXPECT_EQ (processor.levelSum, 5.0f);
    EXPECT_FLOAT_EQ (editor.levelReading, 3.0f);
}

/** Counts how often a whole component is declared out of date. */
struct RepaintCounter : juce::CachedComponentImage
{
    explicit RepaintCounter (int& counter) : count (counter) {}

    void paint (juce::Graphics&) override {}
    bool invalidateAll() override
    {
        ++count;
        return false;
    }
    bool invalidate (const juce::Rectangle<int>&) override { return false; }
    void releaseResources() override {}

    int& count;
};

TEST_F (Editor, RepaintsAllOfItselfAtEachTick)
{
    int repaints = 0;
    editor.setVisible (true);
    editor.setCachedComponentImage (new RepaintCounter (repaints));
    repaints = 0;
    editor.timerCallback();
    EXPECT_EQ (repaints, 1);
    editor.timerCallback();
    EXPECT_EQ (repaints, 2);
    editor.setCachedComponentImage (nullptr);
}

TEST_F (Editor, OpensAnewOnTheSameParameter)
{
    mode().setValueNotifyingHost (knobPosition (3));
    {
        LarkspireAudioProcessorEditor first (&processor);
        first.timerCallback();
        EXPECT_EQ (first.slider.getValue(), 3.0 / 9.0);
    }
    LarkspireAudioProcessorEditor second (&processor);
    EXPECT_EQ (second.slider.getValue(), 0.0);
    second.timerCallback();
    EXPECT_EQ (second.slider.getValue(), 3.0 / 9.0);
    EXPECT_EQ (mode().get(), knobPosition (3));
}

/** The panel without its children. */
class EditorPanel : public Editor
{
protected:
    juce::Image image = drawn (250, 250, Colour (0xffff0000), [this] (juce::Graphics& g) { editor.paint (g); });

    /** Where letters stand in a rectangle, and how light the lightest pixel is. */
    std::pair<juce::Rectangle<int>, int> letters (juce::Rectangle<int> area, Colour behind) const
    {
        const auto part = image.getClippedImage (area).createCopy();
        int lightest = 0;

        for (int y = 0; y < part.getHeight(); ++y)
            for (int x = 0; x < part.getWidth(); ++x)
                lightest = std::max<int> (lightest, part.getPixelAt (x, y).getRed());

        return { inked (part, behind) + area.getTopLeft(), lightest };
    }
};

TEST_F (EditorPanel, HasATitleBarAboveItsBackground)
{
    for (const int x : { 0, 20, 249 })
    {
        EXPECT_EQ (image.getPixelAt (x, 0), Colour (0xff000000));
        EXPECT_EQ (image.getPixelAt (x, 34), Colour (0xff000000));
        EXPECT_EQ (image.getPixelAt (x, 35), Colour (0xff303030));
        EXPECT_EQ (image.getPixelAt (x, 249), Colour (0xff303030));
    }
}

TEST_F (EditorPanel, CentresItsTitle)
{
    const auto [bounds, lightest] = letters ({ 0, 0, 250, 35 }, Colour (0xff000000));
    EXPECT_NEAR (lightest, 0xe0, 4);
    EXPECT_NEAR (bounds.toFloat().getCentreX(), 125.0f, 1.5f);
    EXPECT_GE (bounds.getY(), 5);
    EXPECT_LE (bounds.getBottom(), 30);
    EXPECT_NEAR (bounds.getHeight(), 18, 4) << "letters of a font 20 high, from the top of Q to the foot of p";
}

TEST_F (EditorPanel, SaysItsVersionAtTheLowerRight)
{
    const auto [bounds, lightest] = letters ({ 0, 225, 250, 25 }, Colour (0xff303030));
    EXPECT_NEAR (lightest, 0x60, 4);
    EXPECT_NEAR (bounds.getRight(), 245, 1);
    EXPECT_NEAR (bounds.getWidth(), 65, 15) << "11 letters of whatever sans-serif there is, 12.5 high";
    EXPECT_GE (bounds.getY(), 230);
}
} // namespace

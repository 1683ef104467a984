// SPDX-License-Identifier: AGPL-3.0-only
#include "vst3/Vst3Editor.h"

#include "editor/Canvas.h"
#include "support/KnobPosition.h"
#include "vst3/Vst3Processor.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace
{
using larkspire::Vst3Editor;

using Told = std::vector<std::string>;

/** Writes down what a host would be told: the begin and the end of edits, and the text of each value. */
struct ToldHost : juce::AudioProcessorListener
{
    void audioProcessorParameterChanged (juce::AudioProcessor* processor, int index, float value) override
    {
        told.push_back (processor->getParameters()[index]->getText (value, 64).toStdString());
    }
    void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails&) override {}
    void audioProcessorParameterChangeGestureBegin (juce::AudioProcessor*, int) override { told.push_back ("begin"); }
    void audioProcessorParameterChangeGestureEnd (juce::AudioProcessor*, int) override { told.push_back ("end"); }

    Told told;
};

/** A mouse over the knob. The knob's whole scale of four positions is 250 pixels of a drag. */
class Mouse
{
public:
    explicit Mouse (juce::Slider& under) : slider (under) {}

    void press (juce::ModifierKeys keys = {})
    {
        buttons = keys.withFlags (juce::ModifierKeys::leftButtonModifier);
        slider.mouseDown (event());
    }

    /** Moves so many pixels upwards with the button held. */
    void drag (float pixels)
    {
        place.y -= pixels;
        slider.mouseDrag (event());
    }

    void release() { slider.mouseUp (event()); }
    void click (juce::ModifierKeys keys = {})
    {
        press (keys);
        release();
    }

    void doubleClick()
    {
        click();
        press();
        slider.mouseDoubleClick (event());
        release();
    }

    void turnWheel (float distance)
    {
        buttons = {};
        slider.mouseWheelMove (event(), { 0.0f, distance, false, false, false });
    }

private:
    juce::MouseEvent event()
    {
        now += juce::RelativeTime::milliseconds (100);
        return { juce::Desktop::getInstance().getMainMouseSource(),
                 place,
                 buttons,
                 0.0f,
                 0.0f,
                 0.0f,
                 0.0f,
                 0.0f,
                 &slider,
                 &slider,
                 now,
                 place,
                 now,
                 1,
                 false };
    }

    juce::Slider& slider;
    juce::ModifierKeys buttons;
    juce::Point<float> place { 115.0f, 50.0f };
    juce::Time now { 1000 };
};

/** What a person, or a program in a person's place, does with a knob that stands at Medium. */
struct Act
{
    const char* name;
    std::function<void (juce::Slider&)> perform;
    Told expected;
};

const std::vector<Act>& acts()
{
    constexpr float step = 84.0f; // a good third of the scale
    const juce::ModifierKeys ctrl (juce::ModifierKeys::ctrlModifier);

    static const std::vector<Act> all {
        { "a drag over two positions and back",
          [] (auto& slider)
          {
              Mouse mouse (slider);
              mouse.press();

              for (const float pixels : { -20.0f, -step, -step, 1.0f, step, step, step, step })
                  mouse.drag (pixels);

              mouse.release();
          },
          { "begin", "Gentle", "bypass", "Gentle", "Medium", "Powerful", "end" } },
        { "two drags",
          [] (auto& slider)
          {
              Mouse mouse (slider);

              for (const float pixels : { step, -step })
              {
                  mouse.press();
                  mouse.drag (pixels);
                  mouse.release();
              }
          },
          { "begin", "Powerful", "end", "begin", "Medium", "end" } },
        { "a click", [] (auto& slider) { Mouse (slider).click(); }, { "begin", "end" } },
        { "a fine drag",
          [] (auto& slider)
          {
              Mouse mouse (slider);
              juce::ModifierKeys::currentModifiers = juce::ModifierKeys (juce::ModifierKeys::altModifier);
              mouse.press();
              juce::ModifierKeys::currentModifiers = {};
              mouse.drag (step);
              mouse.drag (9.0f * step);
              mouse.release();
          },
          { "begin", "Powerful", "end" } },
        { "a move of the wheel",
          [] (auto& slider) { Mouse (slider).turnWheel (0.01f); },
          { "begin", "Powerful", "end" } },
        { "three moves of the wheel, the last beyond the end",
          [] (auto& slider)
          {
              Mouse mouse (slider);

              for (int i = 0; i < 3; ++i)
                  mouse.turnWheel (-0.01f);
          },
          { "begin", "Gentle", "end", "begin", "bypass", "end" } },
        { "a double click on another position",
          [] (auto& slider)
          {
              Mouse mouse (slider);
              mouse.turnWheel (0.01f);
              mouse.doubleClick();
          },
          { "begin", "Powerful", "end", "begin", "end", "begin", "Medium", "end" } },
        { "a click with Ctrl on another position",
          [ctrl] (auto& slider)
          {
              Mouse mouse (slider);
              mouse.turnWheel (0.01f);
              mouse.click (ctrl);
          },
          { "begin", "Powerful", "end", "begin", "Medium", "end" } },
        { "a value set by a program",
          [] (auto& slider) { slider.setValue (1.0 / 9.0, juce::sendNotificationSync); },
          { "begin", "Gentle", "end" } },
        { "the value set that it has",
          [] (auto& slider) { slider.setValue (slider.getValue(), juce::sendNotificationSync); },
          {} },
        { "a value set by a screen reader",
          [] (auto& slider) { slider.createAccessibilityHandler()->getValueInterface()->setValue (3.0 / 9.0); },
          { "begin", "Powerful", "end" } },
        { "a value set by a program in the middle of a drag",
          [] (auto& slider)
          {
              Mouse mouse (slider);
              mouse.press();
              slider.setValue (1.0 / 9.0, juce::sendNotificationSync);
              mouse.drag (step);
              mouse.release();
          },
          { "begin", "Gentle", "Powerful", "end" } },
        { "a value set without a word", [] (auto& slider) { slider.setValue (0.0, juce::dontSendNotification); }, {} },
    };

    return all;
}

Told withoutGestures (Told told)
{
    std::erase_if (told, [] (const auto& text) { return text == "begin" || text == "end"; });
    return told;
}

class Vst3Window : public testing::Test
{
public:
    Vst3Window() { processor.addListener (&host); }
    ~Vst3Window() override { processor.removeListener (&host); }

protected:
    /** What the host is told of an act in a new window of this kind. */
    template <typename Editor>
    Told toldOf (const Act& act)
    {
        processor.modeParameter->setValueNotifyingHost (knobPosition (2));
        Editor editor (&processor);
        editor.timerCallback(); // brings the knob to the parameter
        host.told.clear();
        act.perform (editor.slider);
        return host.told;
    }

    GuiTest gui;
    ToldHost host;
    larkspire::Vst3Processor processor;
};

TEST_F (Vst3Window, IsMadeByTheProcessor)
{
    const std::unique_ptr<juce::AudioProcessorEditor> made (processor.createEditor());
    ASSERT_NE (dynamic_cast<Vst3Editor*> (made.get()), nullptr);
    EXPECT_EQ (made->getAudioProcessor(), &processor);
    EXPECT_EQ (dynamic_cast<Vst3Editor&> (*made).slider.parameter, processor.modeParameter);
    EXPECT_EQ (made->getBounds(), juce::Rectangle<int> (0, 0, 250, 250));
}

TEST_F (Vst3Window, PutsEachActIntoOneEdit)
{
    for (const auto& act : acts())
        EXPECT_EQ (toldOf<Vst3Editor> (act), act.expected) << act.name;
}

TEST_F (Vst3Window, SendsTheValuesThatTheWindowOfVst2SendsWithoutEdits)
{
    for (const auto& act : acts())
        EXPECT_EQ (toldOf<LarkspireAudioProcessorEditor> (act), withoutGestures (act.expected)) << act.name;
}

TEST_F (Vst3Window, TellsNothingOfWhatItPolls)
{
    Vst3Editor editor (&processor);

    for (const float value : { 0.0f, knobPosition (3), 1.0f, 0.34f })
    {
        processor.modeParameter->setValueNotifyingHost (value);
        host.told.clear();
        editor.timerCallback();
        EXPECT_TRUE (host.told.empty()) << value;
        EXPECT_EQ (processor.modeParameter->get(), value);
    }
}

TEST_F (Vst3Window, EndsAnEditThatIsGoingOnWhenItCloses)
{
    auto editor = std::make_unique<Vst3Editor> (&processor);
    Mouse mouse (editor->slider);
    mouse.press();
    mouse.drag (84.0f);
    EXPECT_EQ (host.told, (Told { "begin", "Gentle" }));
    editor.reset();
    EXPECT_EQ (host.told, (Told { "begin", "Gentle", "end" }));
}

TEST_F (Vst3Window, TellsNothingWhenItClosesAtRest)
{
    auto editor = std::make_unique<Vst3Editor> (&processor);
    Mouse (editor->slider).click();
    host.told.clear();
    editor.reset();
    EXPECT_TRUE (host.told.empty());
}

TEST_F (Vst3Window, BeginsAnewInTheNextWindow)
{
    for (int i = 0; i < 2; ++i)
    {
        Vst3Editor editor (&processor);
        Mouse mouse (editor.slider);
        mouse.press();
    }

    EXPECT_EQ (host.told, (Told { "begin", "end", "begin", "end" }));
}
} // namespace

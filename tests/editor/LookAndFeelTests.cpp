// SPDX-License-Identifier: AGPL-3.0-only
#include "editor/Canvas.h"
#include "editor/QuendalLookAndFeel.h"

#include <gtest/gtest.h>

namespace
{
using juce::Colour;

class LookAndFeel : public testing::Test
{
protected:
    GuiTest gui;
    QuendalLookAndFeel lookAndFeel;
};

TEST_F (LookAndFeel, StartsWithoutBandsAndWithItsFontSize)
{
    EXPECT_TRUE (lookAndFeel.sliderBands.empty());
    EXPECT_EQ (lookAndFeel.fontSize, 18.0f);
}

TEST_F (LookAndFeel, SetsOneColourAndNoOther)
{
    EXPECT_EQ (lookAndFeel.findColour (juce::Slider::textBoxTextColourId), Colour (0xffa0a0a0));

    juce::LookAndFeel_V4 plain;

    for (const int id : { static_cast<int> (juce::Slider::textBoxOutlineColourId),
                          static_cast<int> (juce::Slider::rotarySliderFillColourId),
                          static_cast<int> (juce::Label::textColourId),
                          static_cast<int> (juce::TextButton::buttonColourId),
                          static_cast<int> (juce::ResizableWindow::backgroundColourId) })
        EXPECT_EQ (lookAndFeel.findColour (id), plain.findColour (id)) << id;
}

TEST_F (LookAndFeel, GivesLabelsTheirOwnFontAtFourFifthsOfTheBaseHeight)
{
    juce::Label label;
    label.setFont (
        juce::Font (juce::FontOptions (juce::Font::getDefaultMonospacedFontName(), 33.0f, juce::Font::bold)));
    const auto font = lookAndFeel.getLabelFont (label);
    EXPECT_FLOAT_EQ (font.getHeight(), 14.4f);
    EXPECT_TRUE (font.isBold());
    EXPECT_EQ (font.getTypefaceName(), juce::Font::getDefaultMonospacedFontName());
    EXPECT_EQ (label.getFont().getHeight(), 33.0f) << "the label keeps its own";

    lookAndFeel.fontSize = 10.0f;
    EXPECT_FLOAT_EQ (lookAndFeel.getLabelFont (label).getHeight(), 8.0f);
}

TEST_F (LookAndFeel, GivesButtonsAPlainFontOfTheBaseHeight)
{
    juce::TextButton button;

    for (const int height : { 1, 18, 400 })
    {
        const auto font = lookAndFeel.getTextButtonFont (button, height);
        EXPECT_EQ (font.getHeight(), 18.0f);
        EXPECT_FALSE (font.isBold() || font.isItalic() || font.isUnderlined());
    }
}

// The letters of JUCE's own default are there on every machine; a name that is not installed gives none.
TEST_F (LookAndFeel, LeavesATypefaceToDrawWith)
{
    const auto typeface = juce::LookAndFeel::getDefaultLookAndFeel().getTypefaceForFont (juce::FontOptions (20.0f));
    ASSERT_NE (typeface, nullptr);
    EXPECT_GT (juce::Font (juce::FontOptions (20.0f)).getAscent(), 0.0f);
}

class FlatButton : public LookAndFeel
{
protected:
    static constexpr juce::uint32 face = 0xff505050;
    static constexpr juce::uint32 shadow = 0xff000000;
    const Colour nothing { 0xffff0000 };

    /** The background of a button of this size, on red. */
    juce::Image
    background (int width, int height, bool isDown, bool isHighlighted = false, Colour colour = Colour (0xff00ff00))
    {
        juce::TextButton button;
        button.setSize (width, height);
        return drawn (width + 4,
                      height + 4,
                      nothing,
                      [&] (juce::Graphics& g)
                      { lookAndFeel.drawButtonBackground (g, button, colour, isHighlighted, isDown); });
    }

    /** The text of a button, on red. */
    juce::Image text (int width, int height, bool isDown, const std::function<void (juce::TextButton&)>& change = {})
    {
        juce::TextButton button ("Hat");
        button.setSize (width, height);

        if (change)
            change (button);

        return drawn (
            width, height, nothing, [&] (juce::Graphics& g) { lookAndFeel.drawButtonText (g, button, false, isDown); });
    }
};

TEST_F (FlatButton, RestsTwoPixelsUpAndLeftOfItsShadowAndMovesOnePixelTowardsItWhenPressed)
{
    for (const int pressed : { 0, 1 })
    {
        const auto image = background (40, 20, pressed != 0);
        const juce::Rectangle<int> onFace (pressed, pressed, 38, 18);
        const juce::Rectangle<int> onShadow (2, 2, 38, 18);

        for (int y = 0; y < 24; ++y)
            for (int x = 0; x < 44; ++x)
                ASSERT_EQ (image.getPixelAt (x, y),
                           onFace.contains (x, y)     ? Colour (face)
                           : onShadow.contains (x, y) ? Colour (shadow)
                                                      : nothing)
                    << x << ", " << y;
    }
}

TEST_F (FlatButton, IgnoresItsColourAndTheMouse)
{
    EXPECT_TRUE (same (background (40, 20, false), background (40, 20, false, true, Colour (0xff123456))));
}

TEST_F (FlatButton, HasNothingToShowWhereItIsNarrowerOrLowerThanItsShadow)
{
    for (const auto& [width, height] : { std::pair { 1, 20 }, { 2, 20 }, { 20, 1 }, { 20, 2 }, { 1, 1 }, { 0, 0 } })
        EXPECT_TRUE (inked (background (width, height, false), nothing).isEmpty()) << width << " by " << height;

    EXPECT_EQ (inked (background (3, 3, false), nothing), juce::Rectangle<int> (0, 0, 3, 3))
        << "three pixels are enough";
}

TEST_F (FlatButton, WritesItsTextBrighterWhenDisabled)
{
    const auto brightest = [this] (bool enabled)
    {
        const auto image = text (100, 30, false, [enabled] (auto& button) { button.setEnabled (enabled); });
        int value = 0;

        for (int y = 0; y < image.getHeight(); ++y)
            for (int x = 0; x < image.getWidth(); ++x)
                value = std::max<int> (value, image.getPixelAt (x, y).getGreen());

        return value;
    };

    EXPECT_EQ (brightest (true), 0xa0);
    EXPECT_EQ (brightest (false), 0xff);
}

TEST_F (FlatButton, MovesItsTextByTwoPixelsWhenPressed)
{
    const auto up = text (100, 30, false);
    EXPECT_FALSE (inked (up, nothing).isEmpty());
    EXPECT_TRUE (sameWhenMoved (up, text (100, 30, true), { 2, 2 }));
}

TEST_F (FlatButton, CentresItsTextInWhatTheIndentsLeave)
{
    // One pixel right of the middle: the offset of a button that is not pressed.
    const auto bounds = inked (text (100, 30, false), nothing);
    EXPECT_NEAR (bounds.toFloat().getCentreX(), 51.0f, 1.0f);

    // A neighbour on the left halves the indent there: 5 pixels instead of 9 move the middle by two.
    const auto connected =
        text (100, 30, false, [] (auto& button) { button.setConnectedEdges (juce::Button::ConnectedOnLeft); });
    EXPECT_TRUE (sameWhenMoved (text (100, 30, false), connected, { -2, 0 }));
    const auto right =
        text (100, 30, false, [] (auto& button) { button.setConnectedEdges (juce::Button::ConnectedOnRight); });
    EXPECT_TRUE (sameWhenMoved (text (100, 30, false), right, { 2, 0 }));
}

TEST_F (FlatButton, WritesNothingWhereTheIndentsLeaveNoWidth)
{
    const auto isWritten = [this] (int width, int connectedEdges)
    {
        const auto connect = [connectedEdges] (auto& button) { button.setConnectedEdges (connectedEdges); };
        return ! inked (text (width, 30, false, connect), nothing).isEmpty();
    };

    EXPECT_FALSE (isWritten (0, 0));
    EXPECT_FALSE (isWritten (8, 0)) << "2 + 4 / 2 pixels on either side";
    EXPECT_TRUE (isWritten (9, 0));
    EXPECT_FALSE (isWritten (5, juce::Button::ConnectedOnLeft));
    EXPECT_TRUE (isWritten (6, juce::Button::ConnectedOnLeft)) << "2 + 3 / 4 pixels there";
    EXPECT_TRUE (isWritten (8, juce::Button::ConnectedOnRight));
}

TEST_F (FlatButton, WritesTwoLinesInFullSizeWhereItsHeightLeavesRoomForThem)
{
    const auto heightOfText = [this] (int height)
    {
        const auto image = text (60, height, false, [] (auto& button) { button.setButtonText ("Two lines"); });
        return inked (image, nothing).getHeight();
    };

    // Two lines of 18 pixels, 4 above and below, and 4 more.
    EXPECT_EQ (heightOfText (48), heightOfText (100));
    EXPECT_LT (heightOfText (47), heightOfText (48));
}
} // namespace

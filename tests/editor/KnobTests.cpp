// SPDX-License-Identifier: AGPL-3.0-only
// The knob, looked at pixel by pixel where its geometry says what must be there.
#include "editor/Knob.h"

namespace
{
using juce::Colour;

constexpr juce::uint32 pointerColour = 0xfff0f0f0;

class KnobOfSize : public Knob, public testing::WithParamInterface<juce::Rectangle<int>>
{
};

INSTANTIATE_TEST_SUITE_P (InAreas,
                          KnobOfSize,
                          testing::Values (juce::Rectangle<int> (0, 0, 230, 95),
                                           juce::Rectangle<int> (10, 67, 230, 95),
                                           juce::Rectangle<int> (0, 0, 120, 300),
                                           juce::Rectangle<int> (7, 3, 501, 400),
                                           juce::Rectangle<int> (0, 0, 800, 800)));

TEST_P (KnobOfSize, PointsAtItsPositionAndAtNoOther)
{
    const float positions[] = { 0.0f, 1.0f / 3.0f, 2.0f / 3.0f, 1.0f };

    for (const float position : positions)
    {
        draw (position, GetParam());
        const double middle = 0.6 * knob.radius - 2.0 * knob.thickness;

        for (const float other : positions)
            EXPECT_EQ (at (middle, angleOf (other)) == Colour (pointerColour), other == position)
                << position << " looked at " << other;
    }
}

TEST_P (KnobOfSize, HasARingAround)
{
    draw (0.0f, GetParam());

    for (const float angle : { 0.0f, 1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f })
        EXPECT_LT (std::min ({ at (1.02 * knob.radius - 0.7, angle).getRed(),
                               at (1.02 * knob.radius, angle).getRed(),
                               at (1.02 * knob.radius + 0.7, angle).getRed() }),
                   0x20)
            << angle; // of a thin line a pixel may hold a half; the disc inside is 0x21
}

// From here on an area of 500 by 500: the radius is 200 pixels, the stroke's unit 8, the centre at 250, 256.

TEST_F (Knob, HasAPointerOfItsLengthAndWidth)
{
    for (const float position : { 0.0f, 1.0f / 3.0f, 0.7f, 1.0f })
    {
        draw (position);
        const auto angle = angleOf (position);

        for (const double inside : { 67.0, 104.0, 141.0 })
            for (const double beside : { -9.0, 0.0, 9.0 })
                EXPECT_EQ (at (inside, angle, beside), Colour (pointerColour)) << inside << ", " << beside;

        EXPECT_NE (at (60.0, angle), Colour (pointerColour));
        EXPECT_NE (at (148.0, angle), Colour (pointerColour));
        EXPECT_NE (at (104.0, angle, -15.0), Colour (pointerColour));
        EXPECT_NE (at (104.0, angle, 15.0), Colour (pointerColour));
    }
}

TEST_F (Knob, LetsThePointersShadowFallDownwards)
{
    draw (1.3f / 1.6f); // to the right
    const auto angle = angleOf (1.3f / 1.6f);
    EXPECT_LT (at (104.0, angle, 18.0).getRed(), 0x40) << "below";
    EXPECT_GE (at (104.0, angle, -16.0).getRed(), 0x70) << "above";
    EXPECT_LT (at (104.0, angle, 16.0).getRed(), 0x0a) << "it is soft at its edge alone";
    EXPECT_GE (at (104.0, angle, 26.0).getRed(), 0x80);
}

TEST_F (Knob, LetsTheRingsShadowFallUpwards)
{
    draw (0.0f);
    EXPECT_LT (at (210.0, upwards).getRed(), 0x30);
    EXPECT_EQ (at (212.0, downwards), background);
    EXPECT_NEAR (at (192.0, upwards).getRed(), 0x21, 2) << "the whole disc is dimmed";
}

TEST_F (Knob, LetsItsOwnShadowFallDownwards)
{
    draw (0.0f);
    EXPECT_LT (at (165.0, downwards).getRed(), 0x10);
    EXPECT_NEAR (at (168.0, upwards).getRed(), 0x21, 2);
}

TEST_F (Knob, FadesInCirclesFromALightPlaceAbove)
{
    draw (0.0f);

    // In parts of the radius: how far up, and how far to the right.
    for (const auto& [up, right] : { std::pair { 0.6, 0.0 },
                                     { 0.4, 0.0 },
                                     { 0.2, 0.0 },
                                     { -0.4, 0.0 },
                                     { -0.75, 0.0 },
                                     { 0.6, 0.5 },
                                     { 0.6, -0.5 },
                                     { 0.2, 0.7 } })
    {
        const double distance = std::hypot (up - 0.6, right) * 200.0;
        const double expected = 0xa0 + (0x70 - 0xa0) * distance / (1.6 * 200.0 + 0.1);
        EXPECT_NEAR (at (up * 200.0, upwards, right * 200.0).getRed(), expected, 2.0) << up << ", " << right;
    }
}

TEST_F (Knob, HasWhiteAndBlackRimsOfOnePixel)
{
    draw (0.0f);
    EXPECT_LE (image.getPixelAt (250, 94).getRed(), 0x30);
    EXPECT_GE (image.getPixelAt (250, 95).getRed(), 0xf8);
    EXPECT_LE (image.getPixelAt (250, 96).getRed(), 0xa8);
    EXPECT_LE (image.getPixelAt (250, 416).getRed(), 0x08);
    EXPECT_GE (image.getPixelAt (250, 415).getRed(), 0x60);

    // In the window the shadow is too small to hide a black rim that is not there.
    draw (0.0f, { 0, 0, 230, 95 });
    EXPECT_LE (image.getPixelAt (115, 84).getRed(), 0x04);
}

TEST_F (Knob, HasATickAtEveryPositionLeftOfItsAxis)
{
    draw (0.5f);

    for (const float position : { 0.0f, 1.0f / 3.0f, 2.0f / 3.0f, 1.0f })
    {
        EXPECT_LT (at (182.0, angleOf (position), -2.8).getRed(), 0x08) << position;
        EXPECT_GT (at (182.0, angleOf (position), 2.8).getRed(), 0x10) << position;
        EXPECT_GT (at (182.0, angleOf (position), -8.5).getRed(), 0x10) << position;
    }

    for (const float between : { 0.2f, 0.5f, 0.8f })
        EXPECT_GT (at (182.0, angleOf (between), -2.8).getRed(), 0x10) << between;
}

TEST_F (Knob, HasTicksOfATenthOfItsRadius)
{
    draw (0.5f);
    const auto angle = angleOf (2.0f / 3.0f);
    EXPECT_LT (at (190.0, angle, -2.8).getRed(), 0x08);
    EXPECT_LT (at (174.0, angle, -2.8).getRed(), 0x08);
    EXPECT_GT (at (196.0, angle, -2.8).getRed(), 0x10);
    EXPECT_GT (at (168.0, angle, -2.8).getRed(), 0x10);
}

TEST_F (Knob, LooksTheSameDisabledAndInOtherColours)
{
    draw (0.25f);
    const auto enabled = image;
    slider.setEnabled (false);
    slider.setColour (juce::Slider::rotarySliderFillColourId, juce::Colours::red);
    slider.setColour (juce::Slider::thumbColourId, juce::Colours::red);
    draw (0.25f);
    EXPECT_TRUE (same (enabled, image));
}

TEST_F (Knob, LeavesAnEmptyEntryForItsSlider)
{
    draw (0.0f);
    draw (1.0f);
    ASSERT_EQ (lookAndFeel.sliderBands.size(), 1u);
    const auto lowBits = static_cast<int> (static_cast<juce::uint32> (reinterpret_cast<std::uintptr_t> (&slider)));
    EXPECT_EQ (lookAndFeel.sliderBands.begin()->first, lowBits);
    EXPECT_TRUE (lookAndFeel.sliderBands.begin()->second.empty());
}
} // namespace

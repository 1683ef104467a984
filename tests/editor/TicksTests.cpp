// SPDX-License-Identifier: AGPL-3.0-only
#include "editor/Knob.h"

namespace
{
using juce::Colour;
using larkspire::KnobGeometry;

class Ticks : public Knob
{
protected:
    void drawTicksOnly (bool withShadow)
    {
        knob = KnobGeometry::inside ({ 0, 0, 500, 500 }, 0.0f, startAngle, endAngle);
        image = drawn (500,
                       520,
                       Colour (0xffffffff),
                       [&] (juce::Graphics& g) { larkspire::drawTicks (g, slider, knob, withShadow); });
    }

    /** How many dark places there are on the way along the scale. */
    int count()
    {
        drawTicksOnly (true);
        int ticks = 0;
        bool wasDark = false;

        for (float position = -0.05f; position < 1.06f; position += 0.0005f)
        {
            const bool dark = at (182.0, angleOf (position)).getRed() < 0x80;
            ticks += dark && ! wasDark ? 1 : 0;
            wasDark = dark;
        }

        return ticks;
    }
};

TEST_F (Ticks, StandAtEveryPositionOrAreElevenWhereThoseMakeNoScale)
{
    struct Row
    {
        double top, interval;
        int ticks;
    };

    for (const auto& row : { Row { 3.0 / 9.0, 1.0 / 9.0, 4 },
                             { 1.0, 0.0, 11 },
                             { 0.0, 0.0, 11 }, // the step is NaN
                             { 1.0, 0.79f, 2 },
                             { 1.0, std::nextafter (0.79f, 1.0f), 11 },
                             { 1.0, 0.019f, 54 },
                             { 1.0, std::nextafter (0.019f, 0.0f), 11 } })
    {
        slider.setRange (0.0, row.top, row.interval);
        EXPECT_EQ (count(), row.ticks) << row.interval << " of " << row.top;
    }
}

TEST_F (Ticks, ReachTheEndOfTheScaleInSpiteOfTheSumsRounding)
{
    for (const int intervals : { 2, 3, 5, 7, 9, 20, 50 })
    {
        slider.setRange (0.0, 1.0, static_cast<double> (1.0f / static_cast<float> (intervals)));
        EXPECT_EQ (count(), intervals + 1);
    }
}

TEST_F (Ticks, AreBlackAndBroadFirstThenNarrowAndThin)
{
    const auto angle = angleOf (2.0f / 3.0f);

    // How much black there is across a tick is its width in pixels; half pixel steps.
    const auto blackness = [&]
    {
        double sum = 0.0;

        for (double beside = -10.0; beside < 4.0; beside += 0.05)
            sum += (255 - at (182.0, angle, beside).getRed()) / 255.0 * 0.05;

        return sum;
    };

    drawTicksOnly (true);
    EXPECT_NEAR (blackness(), 0.707 * 8.0, 0.7);
    EXPECT_EQ (at (182.0, angle, -2.8).getRed(), 0);

    drawTicksOnly (false);
    EXPECT_NEAR (blackness() * 255.0 / 0x50, 0.4 * 8.0, 0.5);
    EXPECT_EQ (at (182.0, angle, -1.6).getRed(), 255 - 0x50);
}

TEST_F (Ticks, CastALightShadowDownwards)
{
    const Colour grey { 0xff808080 };
    knob = KnobGeometry::inside ({ 0, 0, 500, 500 }, 0.0f, startAngle, endAngle);
    slider.setRange (0.0, 1.0, 0.5); // the middle tick points straight up
    const auto shadow = [&] (bool withShadow)
    {
        image = drawn (500, 520, grey, [&] (juce::Graphics& g) { larkspire::drawTicks (g, slider, knob, withShadow); });
        return at (171.0, upwards, -2.8).getRed(); // one pixel under the tick's lower end
    };

    EXPECT_GT (shadow (true), 0x80 + 0x10);
    EXPECT_EQ (shadow (false), 0x80);
    EXPECT_EQ (at (195.0, upwards, -2.8).getRed(), 0x80) << "nothing above";
}
} // namespace

// SPDX-License-Identifier: AGPL-3.0-only
#include "editor/Knob.h"

namespace
{
using juce::Colour;

/** Bands on the scale; the disc's dimming leaves seven tenths of a colour. */
class KnobBands : public Knob
{
protected:
    void give (const std::map<float, Colour>& bands)
    {
        const auto lowBits = static_cast<int> (static_cast<juce::uint32> (reinterpret_cast<std::uintptr_t> (&slider)));
        lookAndFeel.sliderBands[lowBits] = bands;
    }

    char colourAt (float position, double distance = 182.0) const
    {
        const auto pixel = at (distance, angleOf (position), 10.0); // beside a tick that may be there
        return pixel.getRed() > 0x90 ? 'r' : pixel.getGreen() > 0x90 ? 'g' : pixel.getBlue() > 0x90 ? 'b' : '-';
    }
};

TEST_F (KnobBands, EndAtTheirPositionsAndAtTheValue)
{
    give ({ { 0.25f, Colour (0xffff0000) }, { 0.75f, Colour (0xff00ff00) }, { 1.0f, Colour (0xff0000ff) } });
    draw (0.5f);

    for (const auto& [position, colour] : { std::pair { 0.02f, 'r' },
                                            { 0.2f, 'r' },
                                            { 0.26f, 'g' },
                                            { 0.45f, 'g' },
                                            { 0.55f, '-' },
                                            { 0.7f, '-' },
                                            { 0.9f, '-' } })
        EXPECT_EQ (colourAt (position), colour) << position;
}

TEST_F (KnobBands, LeaveTheScaleEmptyBeyondTheLastOne)
{
    give ({ { 0.25f, Colour (0xffff0000) } });
    draw (1.0f);
    EXPECT_EQ (colourAt (0.2f), 'r');
    EXPECT_EQ (colourAt (0.3f), '-');
}

TEST_F (KnobBands, AreNotThereAtTheStartOfTheScale)
{
    give ({ { 0.5f, Colour (0xffff0000) }, { 1.0f, Colour (0xff00ff00) } });
    draw (0.0f);
    EXPECT_EQ (colourAt (0.01f), '-');
    EXPECT_EQ (colourAt (0.5f), '-');
}

TEST_F (KnobBands, AreAsBroadAsTheScale)
{
    give ({ { 1.0f, Colour (0xffff0000) } });
    draw (1.0f);
    EXPECT_EQ (colourAt (0.5f, 166.0), 'r'); // 182 less 18
    EXPECT_EQ (colourAt (0.5f, 198.0), 'r'); // and more
}

TEST_F (KnobBands, LieUnderASecondPassOfNarrowerTicks)
{
    give ({ { 1.0f, Colour (0xffff0000) } });
    draw (1.0f);
    const auto angle = angleOf (1.0f / 3.0f);
    const int plain = at (182.0, angle, 12.0).getRed();
    EXPECT_NEAR (at (182.0, angle, -1.6).getRed(), plain * 0.69, 6.0) << "0.4 units broad, 5/16 black";
    EXPECT_EQ (at (182.0, angle, -4.8).getRed(), plain) << "the broad tick is covered";
}
} // namespace

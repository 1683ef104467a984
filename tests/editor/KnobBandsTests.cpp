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
    const Colour red (0xffff0000), green (0xff00ff00), blue (0xff0000ff);
    const std::vector<float> positions { 0.02f, 0.2f, 0.26f, 0.45f, 0.55f, 0.7f, 0.9f };

    struct Row
    {
        std::map<float, Colour> bands;
        float value;
        std::string colours;
    };

    for (const auto& row : { Row { { { 0.25f, red }, { 0.75f, green }, { 1.0f, blue } }, 0.5f, "rrgg---" },
                             Row { { { 0.25f, red } }, 1.0f, "rr-----" },
                             Row { { { 0.5f, red }, { 1.0f, green } }, 0.0f, "-------" } })
    {
        give (row.bands);
        draw (row.value);
        std::string colours;

        for (const float position : positions)
            colours += colourAt (position);

        EXPECT_EQ (colours, row.colours) << row.value;
    }
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

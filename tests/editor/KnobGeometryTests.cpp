// SPDX-License-Identifier: AGPL-3.0-only
#include "editor/KnobDrawing.h"

#include <gtest/gtest.h>

namespace
{
using larkspire::KnobGeometry;

TEST (KnobGeometryInside, ItsAreaInTheWindow)
{
    const auto knob = KnobGeometry::inside ({ 0, 0, 230, 95 }, 0.25f, 1.0f, 5.0f);
    EXPECT_DOUBLE_EQ (knob.radius, 38.0);
    EXPECT_DOUBLE_EQ (knob.thickness, 1.52);
    EXPECT_EQ (knob.centreX, 115.0);
    EXPECT_EQ (knob.centreY, 53.5);
    EXPECT_EQ (knob.tickLength, 3.8f);
    EXPECT_EQ (knob.bandRadius, static_cast<float> (38.0 - 2.25 * 1.52));
    EXPECT_EQ (knob.startAngle, 1.0f);
    EXPECT_EQ (knob.endAngle, 5.0f);
    EXPECT_EQ (knob.angle, 2.0f);
}

TEST (KnobGeometryInside, TakesTheSmallerSideAndTheAreasPlace)
{
    const auto wide = KnobGeometry::inside ({ 10, 20, 300, 100 }, 0.0f, 0.0f, 1.0f);
    EXPECT_DOUBLE_EQ (wide.radius, 40.0);
    EXPECT_EQ (wide.centreX, 160.0);
    EXPECT_EQ (wide.centreY, 76.0);

    const auto high = KnobGeometry::inside ({ 0, 0, 51, 300 }, 0.0f, 0.0f, 1.0f);
    EXPECT_DOUBLE_EQ (high.radius, 20.4);
    EXPECT_EQ (high.centreX, 25.5);
    EXPECT_EQ (high.centreY, 156.0);
}
} // namespace

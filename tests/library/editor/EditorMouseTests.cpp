// SPDX-License-Identifier: AGPL-3.0-only
// The user's hand on the knob of the built libraries, and what the host gets to know of it.
#include "library/editor/EditorHost.h"
#include "support/KnobPosition.h"

#include <cmath>
#include <tuple>

namespace
{
class EditorMouse : public WithDisplay<testing::TestWithParam<Format>>
{
protected:
    /** The mouse may take a while on a busy machine. */
    static void expectPosition (OpenEditor& editor, int position)
    {
        editor.window.idleUntil ([&]
                                 { return std::abs (editor.host->getParameter() - knobPosition (position)) <= 1e-6f; });
        EXPECT_NEAR (editor.host->getParameter(), knobPosition (position), 1e-6f);
    }

    /** Presses on the knob of an editor that shows the position it has. */
    static void takeHold (OpenEditor& editor, int position)
    {
        ASSERT_TRUE (editor.comesToShow (position));
        editor.mouse.moveTo (knobX, knobY);
        editor.mouse.press();
    }
};

INSTANTIATE_TEST_SUITE_P (By, EditorMouse, testing::ValuesIn (vstFormats), testing::PrintToStringParamName());

// Positions change half way between them: after 1/6, 3/6 and 5/6 of the range.
TEST_P (EditorMouse, DragsTheFullRangeIn250Pixels)
{
    OpenEditor editor (GetParam(), 0.0f);
    takeHold (editor, 0);
    editor.mouse.moveVertically (-41);
    expectPosition (editor, 0);
    editor.mouse.moveVertically (-1);
    expectPosition (editor, 1);
    editor.mouse.moveVertically (-166);
    expectPosition (editor, 2);
    editor.mouse.moveVertically (-1);
    expectPosition (editor, 3);
    editor.mouse.moveVertically (-41);
    expectPosition (editor, 3);
    editor.mouse.moveVertically (250);
    expectPosition (editor, 0);
}

TEST_P (EditorMouse, DragsTenTimesFinerWithAltAtTheStartAndKeepsThatThroughTheDrag)
{
    OpenEditor editor (GetParam(), 0.0f);
    ASSERT_TRUE (editor.comesToShow (0));
    editor.mouse.hold (Mouse::Key::alt);
    takeHold (editor, 0);
    editor.mouse.moveVertically (-200);
    editor.mouse.letGo (Mouse::Key::alt);
    editor.mouse.moveVertically (-216);
    expectPosition (editor, 0);
    editor.mouse.moveVertically (-1);
    expectPosition (editor, 1);
    editor.mouse.release();

    editor.mouse.moveTo (knobX, knobY);
    editor.mouse.press();
    editor.mouse.hold (Mouse::Key::alt);
    editor.mouse.moveVertically (-42);
    expectPosition (editor, 2);
}

TEST_P (EditorMouse, ReturnsToTheDefaultOnADoubleClick)
{
    OpenEditor editor (GetParam(), 0.0f);
    ASSERT_TRUE (editor.comesToShow (0));
    editor.mouse.moveTo (knobX, knobY);
    editor.mouse.click();
    expectPosition (editor, 0);
    editor.waitForTheNextTick(); // long enough for the next click to be a first one
    EXPECT_EQ (editor.takeStory(), editor.asTold ("()"));
    editor.mouse.doubleClick();
    expectPosition (editor, 2);
    EXPECT_TRUE (editor.comesToShow (2));
    EXPECT_EQ (editor.takeStory(), editor.asTold ("()()(2)"));
}

TEST_P (EditorMouse, ReturnsToTheDefaultOnAClickWithControlAndNotWithAlt)
{
    for (const auto& [key, position, story] :
         { std::tuple { Mouse::Key::control, 2, "(2)" }, { Mouse::Key::alt, 3, "()" } })
    {
        OpenEditor editor (GetParam(), knobPosition (3));
        ASSERT_TRUE (editor.comesToShow (3));
        editor.mouse.moveTo (knobX, knobY);
        editor.mouse.hold (key);
        editor.mouse.click();
        expectPosition (editor, position);
        editor.waitForTheNextTick();
        EXPECT_EQ (editor.takeStory(), editor.asTold (story));
    }
}

TEST_P (EditorMouse, MovesByPositionsWithTheWheel)
{
    OpenEditor editor (GetParam(), 0.0f);
    ASSERT_TRUE (editor.comesToShow (0));
    editor.mouse.moveTo (knobX, knobY);

    for (const int position : { 1, 2, 3, 3 })
    {
        editor.mouse.turnWheel (1);
        expectPosition (editor, position);
    }

    for (const int position : { 2, 1, 0, 0 })
    {
        editor.mouse.turnWheel (-1);
        expectPosition (editor, position);
    }
}

TEST_P (EditorMouse, TellsTheHostOfADragAsOneEdit)
{
    OpenEditor editor (GetParam(), 0.0f);
    takeHold (editor, 0);
    editor.mouse.moveVertically (-250);
    editor.mouse.moveVertically (100);
    EXPECT_TRUE (editor.comesToShow (2));
    EXPECT_EQ (editor.takeStory(), editor.asTold ("(1232"));
    editor.mouse.release();
    editor.waitForTheNextTick();
    EXPECT_EQ (editor.takeStory(), editor.asTold (")"));
}

TEST_P (EditorMouse, TellsTheHostOfEachTurnOfTheWheelAsAnEdit)
{
    OpenEditor editor (GetParam(), 0.0f);
    ASSERT_TRUE (editor.comesToShow (0));
    editor.mouse.moveTo (knobX, knobY);
    editor.mouse.turnWheel (2);
    editor.mouse.turnWheel (-1);
    editor.waitForTheNextTick();
    EXPECT_EQ (editor.takeStory(), editor.asTold ("(1)(2)(1)"));
}
} // namespace

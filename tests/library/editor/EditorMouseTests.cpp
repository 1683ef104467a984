// SPDX-License-Identifier: AGPL-3.0-only
// The user's hand on the knob of the built library, and what the host gets to know of it.
#include "library/editor/EditorHost.h"
#include "support/KnobPosition.h"

#include <tuple>

namespace
{
class EditorMouse : public WithDisplay
{
protected:
    static void expectPosition (OpenEditor& editor, int position)
    {
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

// Positions change half way between them: after 1/6, 3/6 and 5/6 of the range.
TEST_F (EditorMouse, DragsTheFullRangeIn250Pixels)
{
    OpenEditor editor (0.0f);
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

TEST_F (EditorMouse, DragsTenTimesFinerWithAltAtTheStartAndKeepsThatThroughTheDrag)
{
    OpenEditor editor (0.0f);
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

TEST_F (EditorMouse, ReturnsToTheDefaultOnADoubleClick)
{
    OpenEditor editor (0.0f);
    ASSERT_TRUE (editor.comesToShow (0));
    editor.mouse.moveTo (knobX, knobY);
    editor.mouse.click();
    expectPosition (editor, 0);
    editor.waitForTheNextTick(); // long enough for the next click to be a first one
    editor.takeAutomation();
    editor.mouse.doubleClick();
    expectPosition (editor, 2);
    EXPECT_EQ (editor.takeAutomation().size(), 1u);
    EXPECT_TRUE (editor.comesToShow (2));
}

TEST_F (EditorMouse, ReturnsToTheDefaultOnAClickWithControlAndNotWithAlt)
{
    for (const auto& [key, position, times] : { std::tuple { Mouse::Key::control, 2, 1u }, { Mouse::Key::alt, 3, 0u } })
    {
        OpenEditor editor (knobPosition (3));
        ASSERT_TRUE (editor.comesToShow (3));
        editor.mouse.moveTo (knobX, knobY);
        editor.mouse.hold (key);
        editor.mouse.click();
        expectPosition (editor, position);
        EXPECT_EQ (editor.takeAutomation().size(), times);
    }
}

TEST_F (EditorMouse, MovesByPositionsWithTheWheel)
{
    OpenEditor editor (0.0f);
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

TEST_F (EditorMouse, TellsTheHostEveryPositionAndNoGesture)
{
    OpenEditor editor (0.0f);
    takeHold (editor, 0);
    editor.takeAutomation();
    editor.mouse.moveVertically (-250);
    editor.mouse.release();

    // That no gesture came is seen to by takeAutomation.
    const auto values = editor.takeAutomation();
    ASSERT_EQ (values.size(), 3u);
    EXPECT_NEAR (values[0], knobPosition (1), 1e-6f);
    EXPECT_NEAR (values[1], knobPosition (2), 1e-6f);
    EXPECT_NEAR (values[2], knobPosition (3), 1e-6f);
}
} // namespace

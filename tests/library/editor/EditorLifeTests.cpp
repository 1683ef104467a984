// SPDX-License-Identifier: AGPL-3.0-only
// Windows that come and go while the sound goes on.
#include "library/editor/EditorHost.h"
#include "support/RunningAudio.h"

namespace
{
class EditorLife : public WithDisplay<testing::TestWithParam<Format>>
{
};

INSTANTIATE_TEST_SUITE_P (By, EditorLife, testing::ValuesIn (vstFormats), testing::PrintToStringParamName());

TEST_P (EditorLife, OpensAndClosesAThousandTimesWithAudioRunning)
{
    const auto host = openPlugin (GetParam());
    host->start (48000.0f);
    const RunningAudio audio (*host);

    for (int i = 0; i < 1000; ++i)
    {
        const auto window = host->openEditor();

        if (i % 2 == 0)
            window->idle (std::chrono::milliseconds (0));
    }

    EXPECT_GT (audio.blocks(), 1000u);
    EXPECT_TRUE (audio.wasAlwaysWithinItsBounds());
}

TEST_P (EditorLife, ShowsTwoInstancesAtOnceAndOneWhenTheOtherCloses)
{
    OpenEditor first (GetParam(), knobPosition (1));

    {
        OpenEditor second (GetParam(), knobPosition (3), 300);
        EXPECT_TRUE (first.comesToShow (1));
        EXPECT_TRUE (second.comesToShow (3));

        first.mouse.moveTo (knobX, knobY);
        first.mouse.press();
        first.mouse.moveVertically (50);
        first.mouse.release();
        EXPECT_TRUE (first.comesToShow (0));
        EXPECT_EQ (first.host->getParameter(), 0.0f);
        EXPECT_EQ (second.host->getParameter(), knobPosition (3));
        second.waitForTheNextTick();
        EXPECT_EQ (shownPosition (second.window.picture()), 3);
    }

    first.host->setParameter (knobPosition (2));
    EXPECT_TRUE (first.comesToShow (2));
}
TEST_P (EditorLife, ClosesInTheMiddleOfADragAndEndsIt)
{
    // Its mouse is there when the other window is not.
    OpenEditor bystander (GetParam(), knobPosition (2), 300);
    auto& mouse = bystander.mouse;
    OpenEditor editor (GetParam(), 0.0f);
    ASSERT_TRUE (editor.comesToShow (0));
    mouse.moveTo (knobX - 300, knobY);
    mouse.press();
    mouse.moveVertically (-50);
    EXPECT_TRUE (editor.comesToShow (1));
    editor.close();
    EXPECT_EQ (editor.takeStory(), editor.asTold ("(1)"));

    mouse.moveVertically (-100);
    mouse.release();
    EXPECT_EQ (editor.takeStory(), "");
    EXPECT_EQ (bystander.takeStory(), "");

    const auto again = editor.host->openEditor (0, 450);
    EXPECT_TRUE (again->idleUntil ([&] { return shownPosition (again->picture()) == 1; }));
    mouse.moveTo (knobX - 300, knobY);
    mouse.click(); // JUCE has not seen the button go up, and does not see it go down again
    mouse.turnWheel (1);
    EXPECT_TRUE (again->idleUntil ([&] { return shownPosition (again->picture()) == 2; }));
    EXPECT_EQ (editor.takeStory(), editor.asTold ("(2)"));
}
} // namespace

// SPDX-License-Identifier: AGPL-3.0-only
// Windows that come and go while the sound goes on.
#include "library/editor/EditorHost.h"
#include "support/RunningAudio.h"

namespace
{
class EditorLife : public WithDisplay
{
};

TEST_F (EditorLife, OpensAndClosesAThousandTimesWithAudioRunning)
{
    RawHost host;
    host.start (48000.0f);
    const RunningAudio audio (host);

    for (int i = 0; i < 1000; ++i)
    {
        larkspire::window::EditorWindow window (host);

        if (i % 2 == 0)
            window.idle (std::chrono::milliseconds (0));
    }

    EXPECT_GT (audio.blocks(), 1000u);
    EXPECT_TRUE (audio.wasAlwaysWithinItsBounds());
}

TEST_F (EditorLife, ClosesBeforeAnythingWasDrawn)
{
    for (int i = 0; i < 20; ++i)
    {
        RawHost host;
        const larkspire::window::EditorWindow window (host);
    }
}

TEST_F (EditorLife, ShowsTwoInstancesAtOnce)
{
    OpenEditor first (knobValues[1]);
    OpenEditor second (knobValues[3], 300);
    EXPECT_TRUE (first.comesToShow (1));
    EXPECT_TRUE (second.comesToShow (3));

    first.mouse.moveTo (knobX, knobY);
    first.mouse.press();
    first.mouse.moveVertically (50);
    first.mouse.release();
    EXPECT_TRUE (first.comesToShow (0));
    EXPECT_EQ (first.host->getParameter(), 0.0f);
    EXPECT_EQ (second.host->getParameter(), knobValues[3]);
    second.waitForTheNextTick();
    EXPECT_EQ (shownPosition (second.window.picture()), 3);
}

TEST_F (EditorLife, KeepsTheOtherInstancesWindowWhenOneCloses)
{
    OpenEditor stays (knobValues[1]);

    {
        OpenEditor goes (knobValues[3], 300);
        ASSERT_TRUE (goes.comesToShow (3));
    }

    ASSERT_TRUE (stays.comesToShow (1));
    stays.host->setParameter (knobValues[2]);
    EXPECT_TRUE (stays.comesToShow (2));
}

TEST_F (EditorLife, LetsAudioAndAutomationGoOnUnderAnOpenWindow)
{
    OpenEditor editor;
    editor.host->start (48000.0f);
    const RunningAudio audio (*editor.host);

    for (int i = 0; i < 200; ++i)
    {
        editor.host->setParameter (knobValues.at (static_cast<std::size_t> (1 + i % 3)));
        editor.window.idle (std::chrono::milliseconds (5));
    }

    editor.host->setParameter (knobValues[1]);
    EXPECT_TRUE (editor.comesToShow (1));
    EXPECT_TRUE (audio.wasAlwaysWithinItsBounds());
}
} // namespace

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

TEST_F (EditorLife, ShowsTwoInstancesAtOnceAndOneWhenTheOtherCloses)
{
    OpenEditor first (knobPosition (1));

    {
        OpenEditor second (knobPosition (3), 300);
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
} // namespace

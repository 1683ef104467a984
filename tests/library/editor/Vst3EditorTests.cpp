// SPDX-License-Identifier: AGPL-3.0-only
// The window as the view of VST 3 that it is: what hosts can do with a view, and what hosts there are.
#include "library/editor/EditorHost.h"
#include "support/Paths.h"
#include "support/vst3/Vst3Window.h"

namespace
{
using larkspire::window::Picture;
using Steinberg::IPlugView;
using Steinberg::kPlatformTypeX11EmbedWindowID;
using Steinberg::kResultOk;
using Steinberg::ViewRect;

class Vst3Editor : public WithDisplay<>
{
protected:
    void TearDown() override { EXPECT_TRUE (RunLoop::ofTheHost().isEmpty()) << "the loop is left as it was"; }

    static Interface<IPlugView> makeView (const Vst3Instance& instance)
    {
        return Interface<IPlugView> (instance.controller().createView (Steinberg::Vst::ViewType::kEditor));
    }

    static bool comesToShow (Vst3Window& window, int position)
    {
        return window.idleUntil ([&] { return shownPosition (window.picture()) == position; });
    }

    static void expectSize (IPlugView& view, int width, int height)
    {
        ViewRect size;
        EXPECT_EQ (view.getSize (&size), kResultOk);
        EXPECT_EQ (size.left, 0);
        EXPECT_EQ (size.top, 0);
        EXPECT_EQ (size.right, width);
        EXPECT_EQ (size.bottom, height);
    }
};

class Vst3EditorAt : public WithDisplay<testing::TestWithParam<int>>
{
};

INSTANTIATE_TEST_SUITE_P (Position, Vst3EditorAt, testing::Range (0, 4));

TEST_P (Vst3EditorAt, LooksToThePixelAsByVst2)
{
    std::vector<Picture> pictures;

    for (const auto format : vstFormats)
    {
        OpenEditor editor (format, knobPosition (GetParam()));
        ASSERT_TRUE (editor.comesToShow (GetParam()));
        editor.waitForTheNextTick(); // the name of the position comes with it
        pictures.push_back (editor.window.picture());
    }

    expectAllTexts (pictures.back());
    EXPECT_TRUE (pictures.front() == pictures.back());
}

TEST_F (Vst3Editor, IsASquareOf250AndStaysItWhateverTheHostSets)
{
    const Vst3Module module (paths::vst3());
    const Vst3Instance instance (module);
    Vst3Window window (instance);
    expectSize (window.view(), 250, 250);
    EXPECT_NE (window.view().canResize(), kResultOk);

    ViewRect wanted (0, 0, 400, 300);
    EXPECT_EQ (window.view().checkSizeConstraint (&wanted), kResultOk);
    EXPECT_EQ (wanted.getWidth(), 250);
    EXPECT_EQ (wanted.getHeight(), 250);

    ASSERT_TRUE (comesToShow (window, 2));
    const auto before = window.picture();
    ViewRect given (0, 0, 400, 300);
    window.resize (400, 300);
    window.view().onSize (&given);
    window.idle (std::chrono::milliseconds (700));
    expectSize (window.view(), 250, 250);
    window.resize (250, 250);
    EXPECT_TRUE (window.picture() == before);
}

TEST_F (Vst3Editor, RefusesOtherKindsOfWindowsAndASecondView)
{
    const Vst3Module module (paths::vst3());
    const Vst3Instance instance (module);
    Vst3Window window (instance);
    EXPECT_EQ (makeView (instance), nullptr);
    EXPECT_EQ (instance.controller().createView ("no editor"), nullptr);

    window.view().removed();
    auto* const parent = reinterpret_cast<void*> (window.handle()); // NOLINT(performance-no-int-to-ptr)

    for (const auto* type : { Steinberg::kPlatformTypeHWND, Steinberg::kPlatformTypeNSView, "", "X11" })
    {
        EXPECT_NE (window.view().isPlatformTypeSupported (type), kResultOk) << type;
        EXPECT_NE (window.view().attached (parent, type), kResultOk) << type;
    }

    EXPECT_NE (window.view().attached (parent, nullptr), kResultOk);
    EXPECT_NE (window.view().attached (nullptr, kPlatformTypeX11EmbedWindowID), kResultOk);
    EXPECT_EQ (window.view().isPlatformTypeSupported (kPlatformTypeX11EmbedWindowID), kResultOk);
}

TEST_F (Vst3Editor, IsTakenOutAndPutInAgain)
{
    const Vst3Module module (paths::vst3());
    Vst3Instance instance (module);
    Vst3Window window (instance);

    for (const int position : { 1, 3, 2 })
    {
        instance.setParameter (instance.modeId(), static_cast<double> (knobPosition (position)));
        EXPECT_TRUE (comesToShow (window, position));
        EXPECT_EQ (window.view().removed(), kResultOk);
        EXPECT_TRUE (RunLoop::ofTheHost().isEmpty());
        auto* const parent = reinterpret_cast<void*> (window.handle()); // NOLINT(performance-no-int-to-ptr)
        EXPECT_EQ (window.view().attached (parent, kPlatformTypeX11EmbedWindowID), kResultOk);
    }

    EXPECT_TRUE (comesToShow (window, 2));
}

TEST_F (Vst3Editor, ComesAndGoesWithoutEverBeingPutIn)
{
    const Vst3Module module (paths::vst3());
    const Vst3Instance instance (module);

    for (int i = 0; i < 100; ++i)
    {
        const auto view = makeView (instance);
        ASSERT_NE (view, nullptr) << i;
        expectSize (*view, 250, 250);
    }

    Vst3Window window (instance);
    EXPECT_TRUE (comesToShow (window, 2));
}

/** A host whose run loop is one with the host itself; its frames have none. */
class HostWithLoop : public HostApplication
{
public:
    Steinberg::tresult PLUGIN_API queryInterface (const Steinberg::TUID wanted, void** object) override
    {
        if (Steinberg::FUnknownPrivate::iidEqual (wanted, Steinberg::Linux::IRunLoop_iid))
            return loop.queryInterface (wanted, object);

        return HostApplication::queryInterface (wanted, object);
    }

    RunLoop loop;
};

TEST_F (Vst3Editor, RunsOnTheLoopThatTheHostItselfHas)
{
    HostWithLoop host;

    {
        const Vst3Module module (paths::vst3());
        const auto factory = queryFor<Steinberg::IPluginFactory3> (module.factory(), Steinberg::IPluginFactory3_iid);
        ASSERT_EQ (factory->setHostContext (&host), kResultOk);

        const Vst3Instance instance (module);
        EXPECT_FALSE (host.loop.isEmpty());
        Vst3Window window (instance, Vst3Window::Host { .loop = nullptr });
        EXPECT_TRUE (window.idleUntil (
            [&]
            {
                host.loop.turn();
                return shownPosition (window.picture()) == 2;
            }));
    }

    EXPECT_TRUE (host.loop.isEmpty());
}

// There JUCE dispatches its messages on a thread of its own.
TEST_F (Vst3Editor, OpensDrawsIsTurnedAndClosesInAHostWithoutALoop)
{
    const Vst3Module module (paths::vst3());

    for (int i = 0; i < 30; ++i)
    {
        Vst3Instance instance (module);
        instance.setParameter (instance.modeId(), static_cast<double> (knobPosition (i % 3)));
        Vst3Window window (instance, Vst3Window::Host { .loop = nullptr });
        ASSERT_TRUE (comesToShow (window, i % 3)) << i;
        Mouse mouse (window);
        mouse.moveTo (knobX, knobY);
        mouse.turnWheel (1);
        ASSERT_TRUE (comesToShow (window, i % 3 + 1)) << i;
        EXPECT_NEAR (instance.getParameter (instance.modeId()), knobPosition (i % 3 + 1), 1e-6);
    }

    for (int i = 0; i < 30; ++i)
    {
        const Vst3Instance instance (module);
        Vst3Window window (instance, Vst3Window::Host { .loop = nullptr });
        window.idle (std::chrono::milliseconds (i % 7));
    }
}
} // namespace

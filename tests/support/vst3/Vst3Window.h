// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/vst3/RunLoop.h"
#include "support/vst3/Vst3Instance.h"
#include "window/HostWindow.h"

#include <pluginterfaces/gui/iplugview.h>

/** A view of the plug-in in its window. While it is open the host's run loop, if there is one, runs in idle(). */
class Vst3Window : public larkspire::window::HostWindow
{
public:
    struct Host
    {
        int x = 0; // where on the screen
        int y = 0;
        float scale = 0.0f; // what the view is told before it is attached; 0: nothing
        RunLoop* loop = &RunLoop::ofTheHost();
    };

    /** Makes a view, a window of the size that it asks for, and puts it in. Throws larkspire::Failure if there is no X
        server, no view, or the view refuses. */
    explicit Vst3Window (const Vst3Instance& instance) : Vst3Window (instance, Host {}) {}
    Vst3Window (const Vst3Instance& instance, const Host& host);

    /** Takes the view out and releases it, then closes the window. */
    ~Vst3Window() override;

    Steinberg::IPlugView& view() const { return *plugView; }

    /** Tells the view how many pixels of the screen are one of its own. */
    Steinberg::tresult setScale (float scale) const;

protected:
    void turn() override;

private:
    /** What the view finds of its host: a frame that gives it the size that it asks for, and the run loop. */
    class Frame : public HostObject<Steinberg::IPlugFrame>
    {
    public:
        Frame (HostWindow& shown, RunLoop* loopOfHost)
            : HostObject (Steinberg::IPlugFrame_iid),
              window (shown),
              loop (loopOfHost)
        {
        }

        Steinberg::tresult PLUGIN_API queryInterface (const Steinberg::TUID wanted, void** object) override;
        Steinberg::tresult PLUGIN_API resizeView (Steinberg::IPlugView* view, Steinberg::ViewRect* size) override;

    private:
        HostWindow& window;
        RunLoop* loop;
    };

    RunLoop* runLoop;
    Frame frame;
    Interface<Steinberg::IPlugView> plugView;
};

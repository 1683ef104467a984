// SPDX-License-Identifier: AGPL-3.0-only
#include "windows/host/HostedPlugin.h"

#include "support/RawHost.h"
#include "support/vst3/Vst3Instance.h"

#include <pluginterfaces/gui/iplugview.h>
#include <pluginterfaces/gui/iplugviewcontentscalesupport.h>

#include <stdexcept>

using namespace Steinberg;

namespace
{
void addWord (std::string& text, const char* word)
{
    text += (text.empty() ? "" : " ") + std::string (word);
}

class Vst2Plugin : public HostedPlugin
{
public:
    explicit Vst2Plugin (const std::string& path) : host (path) {}

    void setPosition (int position) override { host.setParameter (knobPosition (position)); }
    float getParameter() override { return host.getParameter(); }
    std::string save() override { return host.chunk(); }
    void load (const std::string& state) override { host.setChunk (state); }

    void start (float rate, int blockSize, bool isMono) override
    {
        host.stopLogging();
        host.start (rate, blockSize, isMono);
    }

    void process (float* const* channels, std::size_t frames) override { host.process (channels, channels, frames); }

    std::string takeEdits() override
    {
        std::string edits;

        for (const auto& call : host.takeCalls())
            if (call.opcode == Vst2::audioMasterAutomate)
                addWord (edits, "value");
            else if (call.opcode == Vst2::audioMasterBeginEdit)
                addWord (edits, "begin");
            else if (call.opcode == Vst2::audioMasterEndEdit)
                addWord (edits, "end");

        return edits;
    }

    void setScale (float) override { throw std::runtime_error ("VST 2 has no scale"); }

    Size size() override
    {
        Vst2::ERect* bounds = nullptr;
        host.dispatch (Vst2::effEditGetRect, 0, 0, &bounds);

        if (bounds == nullptr)
            throw std::runtime_error ("there is no editor");

        return { bounds->right - bounds->left, bounds->bottom - bounds->top };
    }

    void open (void* window) override { host.dispatch (Vst2::effEditOpen, 0, 0, window); }
    void close() override { host.dispatch (Vst2::effEditClose); }
    void idle() override { host.dispatch (Vst2::effEditIdle); }

private:
    RawHost host;
};

class Vst3Plugin : public HostedPlugin, private HostObject<IPlugFrame>
{
public:
    explicit Vst3Plugin (const std::string& path) : HostObject (IPlugFrame_iid), module (path) {}

    void setPosition (int position) override
    {
        instance.setParameter (instance.modeId(), static_cast<double> (knobPosition (position)));
    }

    float getParameter() override { return static_cast<float> (instance.getParameter (instance.modeId())); }
    std::string save() override { return instance.save(); }
    void load (const std::string& state) override { instance.load (state); }

    void start (float rate, int blockSize, bool isMono) override
    {
        if (! instance.setChannels (isMono ? 1 : 2) || ! instance.setUp (static_cast<double> (rate), blockSize))
            throw std::runtime_error ("the plug-in refused its layout");

        instance.activate();
    }

    void process (float* const* channels, std::size_t frames) override
    {
        require (instance.process (channels, channels, frames), "processing");
    }

    std::string takeEdits() override
    {
        std::string edits;

        for (const auto& edit : instance.log.edits)
            if (edit.parameter != instance.modeId())
                addWord (edits, "other");
            else if (edit.kind == EditLog::Edit::perform)
                addWord (edits, "value");
            else
                addWord (edits, edit.kind == EditLog::Edit::begin ? "begin" : "end");

        instance.log.edits.clear();
        return edits;
    }

    void setScale (float factor) override
    {
        const auto scaling = queryFor<IPlugViewContentScaleSupport> (editor(), IPlugViewContentScaleSupport_iid);

        if (scaling == nullptr)
            throw std::runtime_error ("the view has no scale");

        require (scaling->setContentScaleFactor (factor), "setting the scale");
    }

    Size size() override
    {
        ViewRect bounds;
        require (editor().getSize (&bounds), "asking for the view's size");
        return { bounds.getWidth(), bounds.getHeight() };
    }

    void open (void* window) override
    {
        require (editor().isPlatformTypeSupported (kPlatformTypeHWND), "asking for a window of Windows");
        require (editor().attached (window, kPlatformTypeHWND), "opening the view");
    }

    void close() override
    {
        require (view->removed(), "closing the view");
        require (view->setFrame (nullptr), "taking the view its frame");
        view.reset();
    }

private:
    /** The view, which is there from its first use until it is closed. */
    IPlugView& editor()
    {
        if (view == nullptr)
        {
            view.reset (instance.controller().createView (Vst::ViewType::kEditor));
            require (view != nullptr ? view->setFrame (this) : kResultFalse, "making the view");
        }

        return *view;
    }

    tresult PLUGIN_API resizeView (IPlugView*, ViewRect* wanted) override
    {
        if (resized)
            resized ({ wanted->getWidth(), wanted->getHeight() });

        return view->onSize (wanted);
    }

    Vst3Module module;
    Vst3Instance instance { module };
    Interface<IPlugView> view;
};
} // namespace

std::unique_ptr<HostedPlugin> openPlugin (const std::string& path)
{
    if (! isVst3 (path))
        return std::make_unique<Vst2Plugin> (path);

    return std::make_unique<Vst3Plugin> (path);
}

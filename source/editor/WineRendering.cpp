// SPDX-License-Identifier: AGPL-3.0-only
#include "editor/WineRendering.h"

#if JUCE_WINDOWS
    #include <windows.h>

    #include <dxgi1_3.h>

namespace
{
/** Wine tells its version through a function of its own in the system's lowest library. */
bool isRunningUnderWine()
{
    const auto library = GetModuleHandleW (L"ntdll.dll");
    return library != nullptr && GetProcAddress (library, "wine_get_version") != nullptr;
}
} // namespace

/** Stands in front of the system's function of that name for this library alone, which JUCE asks for the
    computer's graphics adapters. Under Wine there are none for it: images are made in memory, where Wine would take a
    good second to draw one knob's shadows, and no thread waits for a screen's vertical blank, which Wine never reports:
    closing the window would wait for that thread for ever. On Windows the system answers. */
HRESULT WINAPI CreateDXGIFactory2 (UINT flags, REFIID id, void** factory)
{
    using Function = HRESULT (WINAPI*) (UINT, REFIID, void**);

    if (! isRunningUnderWine())
        if (const auto system = LoadLibraryW (L"dxgi.dll"))
            if (auto* function = reinterpret_cast<void*> (GetProcAddress (system, "CreateDXGIFactory2")))
                return reinterpret_cast<Function> (function) (flags, id, factory);

    *factory = nullptr;
    return DXGI_ERROR_UNSUPPORTED;
}
#endif

namespace larkspire
{

#if JUCE_WINDOWS

namespace
{
constexpr int softwareRenderer = 0;

/** Chooses the renderer as soon as the component has a window, and lets what is out of date be drawn thirty times a
    second, since there is no vertical blank that would. Goes when the component goes. */
class SoftwareRendering : public juce::ComponentListener, private juce::Timer
{
public:
    explicit SoftwareRendering (juce::Component& watched) : component (watched)
    {
        component.addComponentListener (this);
        startTimerHz (30);
    }

    void componentParentHierarchyChanged (juce::Component&) override { chooseRenderer(); }
    void componentVisibilityChanged (juce::Component&) override { chooseRenderer(); }
    void componentBeingDeleted (juce::Component&) override { delete this; }

private:
    void chooseRenderer() const
    {
        if (auto* window = component.getPeer())
            if (window->getCurrentRenderingEngine() != softwareRenderer)
                window->setCurrentRenderingEngine (softwareRenderer);
    }

    void timerCallback() override
    {
        if (auto* window = component.getPeer())
            window->performAnyPendingRepaintsNow();
    }

    juce::Component& component;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (SoftwareRendering)
};
} // namespace

void drawInSoftwareUnderWine (juce::Component& editor)
{
    if (isRunningUnderWine())
        new SoftwareRendering (editor);
}

#else

void drawInSoftwareUnderWine (juce::Component&) {}

#endif

} // namespace larkspire

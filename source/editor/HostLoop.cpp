// SPDX-License-Identifier: AGPL-3.0-only
#include "editor/HostLoop.h"

#if JUCE_LINUX
    #include <dlfcn.h>
    #include <semaphore.h>

    #include <atomic>
    #include <chrono>

// What JUCE's wrapper calls on effEditIdle; the headers of JUCE's modules keep it to themselves.
namespace juce::detail
{
bool dispatchNextMessageOnSystemQueue (bool returnIfNoPendingMessages);
} // namespace juce::detail
#endif

namespace larkspire
{

#if JUCE_LINUX

namespace
{
using Clock = std::chrono::steady_clock;

constexpr unsigned int turnMilliseconds = 30; // about as often as hosts idle
constexpr int probeMilliseconds = 250;
constexpr auto trust = std::chrono::seconds (1); // after a probe; long enough for the next to be late
constexpr int mostPasses = 8;                    // of a turn, so that the host gets its thread back

using Tick = int (*) (void*);
using AddTimeout = unsigned int (*) (int priority, unsigned int interval, Tick, void* data, void (*released) (void*));
using RemoveSource = int (*) (unsigned int source);

/** A function of GLib's, if the host has it; asking this way, the library does not need GLib itself. */
template <typename Function>
Function glib (const char* name)
{
    return reinterpret_cast<Function> (dlsym (RTLD_DEFAULT, name));
}

/** The timeout in the default GLib context that dispatches JUCE's messages while there are editors: one for all of
    them. This lives as long as the library, because the last editor may go in the middle of a turn. */
class HostLoop
{
public:
    static HostLoop& instance()
    {
        static HostLoop loop;
        return loop;
    }

    HostLoop() { sem_init (&releases, 0, 0); }
    ~HostLoop() { detach(); }

    HostLoop (const HostLoop&) = delete;
    HostLoop& operator= (const HostLoop&) = delete;

    void addEditor()
    {
        if (++editors == 1)
            attach();
    }

    void removeEditor()
    {
        if (--editors == 0)
            detach();
    }

    /** Notes that a message of ours was dispatched: outside a turn that was the host. */
    void receiveProbe()
    {
        if (! isInTurn)
            trustedUntil = Clock::now() + trust;
    }

private:
    void attach()
    {
        const auto addTimeout = glib<AddTimeout> ("g_timeout_add_full");

        // GLib posts the semaphore once a source is gone and its last turn is over. The C library does that, since code
        // of this library may be unloaded by then.
        const auto post = reinterpret_cast<void (*) (void*)> (reinterpret_cast<void (*)()> (sem_post));
        const Tick tick = [] (void*)
        {
            instance().takeTurn();
            return 1;
        };

        source = addTimeout (0, turnMilliseconds, tick, &releases, post);
        ++releasesToCome;
    }

    void detach()
    {
        if (source == 0)
            return;

        glib<RemoveSource> ("g_source_remove") (source);
        source = 0;

        // Within a turn of this thread the post comes when it is over. Otherwise another thread may be in a turn, one
        // that does nothing, and the host may unload the library next.
        while (! isInTurn && releasesToCome > 0)
            if (sem_wait (&releases) == 0) // and not a signal
                --releasesToCome;
    }

    /** What GLib calls: on a thread that may be any, and within a turn too, if that runs the host's loop. */
    void takeTurn()
    {
        if (editors == 0 || ! juce::MessageManager::existsAndIsCurrentThread() || isInTurn
            || Clock::now() < trustedUntil)
            return;

        const juce::ScopedValueSetter<bool> turn (isInTurn, true);

        // Each pass dispatches all that is ready. Once the last editor has gone, JUCE's own thread does that again.
        for (int pass = 0; pass < mostPasses && editors > 0; ++pass)
            if (! juce::detail::dispatchNextMessageOnSystemQueue (true))
                break;
    }

    std::atomic<int> editors { 0 }; // read by whatever thread runs the context; all else is the message thread's
    unsigned int source = 0;
    sem_t releases {};
    int releasesToCome = 0;
    bool isInTurn = false;
    Clock::time_point trustedUntil {};
};

/** Another reference to this library, or none. */
void* holdThisLibrary()
{
    Dl_info info {};

    if (dladdr (reinterpret_cast<void*> (holdThisLibrary), &info) == 0)
        return nullptr;

    return dlopen (info.dli_fname, RTLD_LAZY | RTLD_NOLOAD);
}

/** An editor on the host's loop. It holds the library, because a host that unloads it with the window open would leave
    JUCE's threads without code. Its timer finds out who dispatches. Goes when the editor goes. */
class EditorOnHostLoop : public juce::ComponentListener, private juce::Timer
{
public:
    explicit EditorOnHostLoop (juce::Component& editor)
    {
        editor.addComponentListener (this);
        HostLoop::instance().addEditor();
        startTimer (probeMilliseconds);
    }

    ~EditorOnHostLoop() override
    {
        stopTimer();
        HostLoop::instance().removeEditor();

        if (library != nullptr)
            dlclose (library);
    }

    void componentBeingDeleted (juce::Component&) override { delete this; }

private:
    void timerCallback() override { HostLoop::instance().receiveProbe(); }

    void* library = holdThisLibrary();

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (EditorOnHostLoop)
};
} // namespace

void runOnHostLoop (juce::AudioProcessorEditor& editor)
{
    const bool isVst2 = editor.processor.wrapperType == juce::AudioProcessor::wrapperType_VST;

    if (isVst2 && glib<AddTimeout> ("g_timeout_add_full") != nullptr
        && glib<RemoveSource> ("g_source_remove") != nullptr)
        new EditorOnHostLoop (editor);
}

#else

void runOnHostLoop (juce::AudioProcessorEditor&) {}

#endif

} // namespace larkspire

// SPDX-License-Identifier: AGPL-3.0-only
#include "daws/Audacity.h"

#include "daws/ScriptPipe.h"
#include "support/Child.h"
#include "support/Paths.h"

#include <X11/Xlib.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>

namespace
{
namespace fs = std::filesystem;
using namespace std::chrono_literals;

const std::string scriptModule = "/usr/lib/audacity/modules/mod-script-pipe.so";

struct stat statusOf (const std::string& path)
{
    struct stat status = {};

    if (stat (path.c_str(), &status) != 0)
        throw std::runtime_error ("there is no " + path);

    return status;
}

bool isRunning()
{
    for (const auto& process : fs::directory_iterator ("/proc"))
    {
        std::ifstream file (process.path() / "comm");
        std::string name;
        struct stat status = {};

        if (std::getline (file, name) && name == "audacity" && stat (process.path().c_str(), &status) == 0
            && status.st_uid == getuid())
            return true;
    }

    return false;
}

/** When the module was built, as local time. Audacity switches a module off again for which the settings state another.
 */
std::string moduleTime()
{
    const auto status = statusOf (scriptModule);
    std::tm local {};
    std::array<char, 32> text {};
    std::strftime (text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", localtime_r (&status.st_mtime, &local));
    return text.data();
}

/** Settings with which it asks nothing, exports 32-bit floats as WAV files and, where that is wanted, takes commands.
 */
void writeSettings (const std::string& path, const std::string& temporary, bool scripted)
{
    std::ofstream file (path);
    file << "NewPrefsInitialized=1\n"
            "[Version]\nMajor=3\nMinor=2\nMicro=4\n"
            "[GUI]\nShowSplashScreen=0\n"
            "[Update]\nDefaultUpdatesChecking=0\nUpdateNoticeShown=1\n"
            "[FileFormats]\nExportFormat_SF1=65542\n"
            "[FileFormats/ExportFormat_SF1_Type]\nWAV_10000=6\n"
         << "[Directories]\nTempDir=" << temporary << "\n[Module]\nmod-script-pipe=" << (scripted ? 1 : 0)
         << "\n[ModulePath]\nmod-script-pipe=" << scriptModule << "\n[ModuleDateTime]\nmod-script-pipe=" << moduleTime()
         << "\n";

    if (! file.flush())
        throw std::runtime_error ("cannot write " + path);
}

/** Whether the window of a project is on the screen. */
bool hasProjectWindow (Display* display)
{
    Window root = 0, parent = 0;
    Window* windows = nullptr;
    unsigned int count = 0;
    XQueryTree (display, DefaultRootWindow (display), &root, &parent, &windows, &count);
    bool found = false;

    for (unsigned int i = 0; i < count; ++i)
    {
        char* title = nullptr;
        XWindowAttributes attributes {};

        if (XFetchName (display, windows[i], &title) != 0)
        {
            found =
                found
                || (title == std::string ("Audacity") && XGetWindowAttributes (display, windows[i], &attributes) != 0
                    && attributes.map_state == IsViewable);
            XFree (title);
        }
    }

    if (windows != nullptr)
        XFree (windows);

    return found;
}

/** Waits for the window of the first project. A command that comes earlier is never answered. */
void waitForProjectWindow()
{
    // A window may be gone between two questions about it.
    XSetErrorHandler ([] (Display*, XErrorEvent*) { return 0; });
    const std::unique_ptr<Display, int (*) (Display*)> display (XOpenDisplay (nullptr), XCloseDisplay);

    if (display == nullptr)
        throw std::runtime_error ("the X server is gone");

    for (const auto deadline = std::chrono::steady_clock::now() + 30s; ! hasProjectWindow (display.get());)
    {
        if (std::chrono::steady_clock::now() > deadline)
            throw std::runtime_error ("Audacity shows no window");

        std::this_thread::sleep_for (50ms);
    }
}
} // namespace

Audacity::Audacity (Format format)
{
    if (isRunning())
        throw std::runtime_error ("an Audacity of yours is running; end it first");

    fs::create_directories (folder / "home/.config/audacity");

    if (format == Format::lv2)
    {
        fs::create_directory (folder / "home/.lv2");
        fs::copy (paths::lv2(), folder / "home/.lv2/larkspire.lv2", fs::copy_options::recursive);
        plugin = "urn:quendal:larkspire:stereo";
    }
    else
    {
        fs::create_directory (folder / "home/.vst");
        plugin = folder / "home/.vst/Quendal Larkspire.so";
        fs::copy_file (paths::plugin(), plugin);
    }

    // Without commands: it scans in processes of its own, each of which would make the pipes anew and take them away
    // from it.
    run (false, [] {});
}

template <typename Work>
void Audacity::run (bool scripted, Work&& work) const
{
    // The project of an earlier start would be offered for recovery.
    fs::remove_all (folder / "temporary");
    fs::create_directories (folder / "temporary");
    writeSettings (folder / "home/.config/audacity/audacity.cfg", folder / "temporary", scripted);
    ScriptPipe::removeStale();

    // Nothing of the caller's environment. It is killed in the end, since it would ask whether to save.
    const Child program ({ .arguments = {},
                           .program = "audacity",
                           .environment = { { "PATH", "/usr/bin:/bin" },
                                            { "DISPLAY", std::getenv ("DISPLAY") },
                                            { "LANG", "C.UTF-8" },
                                            { "HOME", folder / "home" },
                                            { "XDG_CONFIG_HOME", folder / "home/.config" } },
                           .inheritsEnvironment = false });
    waitForProjectWindow();
    work();
}

std::string Audacity::registered() const
{
    const auto registry = bytesOf (folder / "home/.config/audacity/pluginregistry.cfg");
    const auto from = registry.find ("Path=" + plugin);

    if (from == std::string::npos)
        throw std::runtime_error ("the scan has not found the plug-in");

    return registry.substr (from, registry.find ("\n[", from) + 1 - from);
}

Channels Audacity::applied (const Job& job) const
{
    const auto input = folder / "input.wav";
    const auto output = folder / "output.wav";
    writeFloatWav (input, job.channels, job.sampleRate);
    fs::remove (output);

    run (true,
         [&]
         {
             ScriptPipe pipe;
             pipe.command ("Import2: Filename=\"" + input + "\"");
             pipe.command ("SelectAll:");

             for (int i = 0; i < job.times; ++i)
                 pipe.command (job.effect + ":");

             pipe.command ("Export2: Filename=\"" + output + "\" NumChannels=" + std::to_string (job.channels.size()));
         });

    return readFloatWav (output, job.sampleRate);
}

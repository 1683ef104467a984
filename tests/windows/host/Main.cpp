// SPDX-License-Identifier: AGPL-3.0-only
// larkspire-windows-host COMMAND LIBRARY ARGUMENTS: what the tests ask of the library on Windows. Prints lines of the
// form "name: value"; exits with 1 and a line on standard error where something does not work.
#include "windows/host/NativeWindow.h"
#include "windows/host/Plugin.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace
{
using Arguments = std::vector<std::string>;

std::string readFile (const std::string& path)
{
    std::ifstream file (path, std::ios::binary);

    if (! file)
        throw std::runtime_error (path + " cannot be read");

    return { std::istreambuf_iterator<char> (file), {} };
}

void writeFile (const std::string& path, const void* data, std::size_t size)
{
    std::ofstream file (path, std::ios::binary);
    file.write (static_cast<const char*> (data), static_cast<std::streamsize> (size));

    if (! file.flush())
        throw std::runtime_error (path + " cannot be written");
}

void saveState (const Plugin& plugin, const std::string& path)
{
    const auto state = plugin.chunk();
    writeFile (path, state.data(), state.size());
}

/** identity LIBRARY: what a host reads first. */
void identity (const Arguments& arguments)
{
    Plugin plugin (arguments.at (0));
    const auto& effect = plugin.effect();
    std::printf ("id: %08x\nversion: %d\nflags: %d\n", effect.uniqueID, effect.version, effect.flags);
    std::printf ("programs: %d\nparameters: %d\n", effect.numPrograms, effect.numParams);
    std::printf ("inputs: %d\noutputs: %d\ndelay: %d\n", effect.numInputs, effect.numOutputs, effect.initialDelay);
    std::printf ("effect name: %s\n", plugin.text (Vst2::effGetEffectName).c_str());
    std::printf ("product: %s\n", plugin.text (Vst2::effGetProductString).c_str());
    std::printf ("vendor: %s\n", plugin.text (Vst2::effGetVendorString).c_str());
    std::printf ("vendor version: %d\n", static_cast<int> (plugin.dispatch (Vst2::effGetVendorVersion)));
    std::printf ("category: %d\n", static_cast<int> (plugin.dispatch (Vst2::effGetPlugCategory)));
    std::printf ("parameter: %s\n", plugin.text (Vst2::effGetParamName).c_str());

    for (int position = 0; position < 5; ++position)
    {
        plugin.setPosition (position);
        std::printf ("position %d: %s\n", position, plugin.text (Vst2::effGetParamDisplay).c_str());
    }
}

/** properties LIBRARY: what the system shows of the file. */
void properties (const Arguments& arguments)
{
    std::string resource (GetFileVersionInfoSizeA (arguments.at (0).c_str(), nullptr), '\0');
    GetFileVersionInfoA (arguments.at (0).c_str(), 0, static_cast<DWORD> (resource.size()), resource.data());
    const auto query = [&resource] (const std::string& name)
    {
        void* value = nullptr;
        UINT size = 0;

        if (VerQueryValueA (resource.data(), name.c_str(), &value, &size) == FALSE)
            throw std::runtime_error ("the file says nothing of " + name);

        return value;
    };

    const auto& fixed = *static_cast<const VS_FIXEDFILEINFO*> (query ("\\"));
    const auto print = [] (const char* name, DWORD high, DWORD low)
    { std::printf ("%s: %d.%d.%d.%d\n", name, HIWORD (high), LOWORD (high), HIWORD (low), LOWORD (low)); };
    print ("fixed file version", fixed.dwFileVersionMS, fixed.dwFileVersionLS);
    print ("fixed product version", fixed.dwProductVersionMS, fixed.dwProductVersionLS);

    for (const std::string name : { "CompanyName", "FileDescription", "FileVersion", "ProductName", "ProductVersion" })
        std::printf (
            "%s: %s\n", name.c_str(), static_cast<const char*> (query ("\\StringFileInfo\\040904b0\\" + name)));
}

/** render LIBRARY POSITION RATE IN OUT: files of interleaved stereo floats, in blocks of 512. */
void render (const Arguments& arguments)
{
    Plugin plugin (arguments.at (0));
    plugin.setPosition (std::stoi (arguments.at (1)));
    plugin.prepare (std::stof (arguments.at (2)), 512);
    plugin.resume();

    auto bytes = readFile (arguments.at (3));
    auto* samples = reinterpret_cast<float*> (bytes.data());
    const auto frames = bytes.size() / (2 * sizeof (float));

    for (std::size_t from = 0; from < frames; from += 512)
    {
        const auto count = std::min<std::size_t> (512, frames - from);
        std::vector<float> left (count);
        std::vector<float> right (count);

        for (std::size_t i = 0; i < count; ++i)
        {
            left[i] = samples[2 * (from + i)];
            right[i] = samples[2 * (from + i) + 1];
        }

        float* const channels[] = { left.data(), right.data() };
        plugin.process (channels, channels, count);

        for (std::size_t i = 0; i < count; ++i)
        {
            samples[2 * (from + i)] = left[i];
            samples[2 * (from + i) + 1] = right[i];
        }
    }

    writeFile (arguments.at (4), bytes.data(), bytes.size());
}

/** save LIBRARY POSITION FILE: the state block. */
void save (const Arguments& arguments)
{
    Plugin plugin (arguments.at (0));
    plugin.setPosition (std::stoi (arguments.at (1)));
    saveState (plugin, arguments.at (2));
}

/** restore LIBRARY FILE NEW_FILE: takes a state block in and saves again. */
void restore (const Arguments& arguments)
{
    Plugin plugin (arguments.at (0));
    plugin.setChunk (readFile (arguments.at (1)));
    std::printf ("parameter: %.9g\n", static_cast<double> (plugin.getParameter()));
    saveState (plugin, arguments.at (2));
}

/** Takes pictures until the knob has left "bypass", where it stands before its first look at the parameter. Gives the
   time that took, or ten seconds if it never did. */
int waitForTheKnob (NativeWindow& window, const std::string& path)
{
    constexpr int longest = 10000;
    window.pump (100);
    window.photograph (path);
    const auto first = readFile (path);

    for (int time = 200; time < longest; time += 100)
    {
        window.pump (100);
        window.photograph (path);

        if (readFile (path) != first)
        {
            window.pump (200); // until all of it is drawn
            window.photograph (path);
            return time;
        }
    }

    return longest;
}

/** editor LIBRARY TIMES PICTURE: loads, opens, looks, drags, closes and unloads so many times. The picture is taken
   each time before the drag, at "Medium". */
void editor (const Arguments& arguments)
{
    for (int i = 0; i < std::stoi (arguments.at (1)); ++i)
    {
        Plugin plugin (arguments.at (0));
        NativeWindow window (plugin);
        std::printf ("followed after: %d ms\n", waitForTheKnob (window, arguments.at (2)));
        std::printf ("size: %d by %d\n", window.width(), window.height());

        plugin.automation.clear();
        window.drag (125, 120, -250);
        std::printf ("dragged up: %.6f\n", static_cast<double> (plugin.getParameter()));
        window.drag (125, 120, 250);
        std::printf ("dragged down: %.6f\n", static_cast<double> (plugin.getParameter()));
        std::printf ("told: %d\ngestures: %d\n", static_cast<int> (plugin.automation.size()), plugin.gestures);
        std::fflush (stdout);
    }

    std::printf ("closed: %s\n", arguments.at (1).c_str());
}

struct Command
{
    const char* name;
    void (*run) (const Arguments&);
};

constexpr Command commands[] = { { "identity", identity }, { "properties", properties }, { "render", render },
                                 { "save", save },         { "restore", restore },       { "editor", editor } };
} // namespace

int main (int argumentCount, char** argumentList)
{
    try
    {
        const Arguments arguments (argumentList + 1, argumentList + argumentCount);

        if (OleInitialize (nullptr) != S_OK)
            throw std::runtime_error ("OLE does not start");

        for (const auto& command : commands)
            if (arguments.at (0) == command.name)
            {
                command.run ({ arguments.begin() + 1, arguments.end() });
                return 0;
            }

        throw std::runtime_error ("there is no command " + arguments[0]);
    }
    catch (const std::exception& fault)
    {
        std::fprintf (stderr, "larkspire-windows-host: %s\n", fault.what());
        return 1;
    }
}

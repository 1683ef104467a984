// SPDX-License-Identifier: AGPL-3.0-only
#include "support/ShownPosition.h"
#include "windows/host/Commands.h"
#include "windows/host/Files.h"
#include "windows/host/HostedPlugin.h"
#include "windows/host/NativeWindow.h"

#include <cstdio>

namespace
{
using larkspire::window::Picture;

/** Writes a picture in the PPM format. */
void write (const Picture& picture, const std::string& path)
{
    std::string bytes = "P6\n" + std::to_string (picture.width) + " " + std::to_string (picture.height) + "\n255\n";

    for (const auto& [red, green, blue] : picture.pixels)
        for (const auto channel : { red, green, blue })
            bytes += static_cast<char> (channel);

    writeFile (path, bytes);
}

/** Waits until the knob shows a position, ten seconds at most, and a little longer, until all of it is drawn. Writes
   the picture and prints the position that it shows. */
void waitFor (int position, const char* name, NativeWindow& window, const std::string& path)
{
    const auto shown = [&] { return shownPosition (window.picture(), window.size().width / 250).value_or (-1); };

    for (int time = 0; time < 10000 && shown() != position; time += 100)
        window.pump (100);

    window.pump (200);
    write (window.picture(), path);
    std::printf ("%s: %d\n", name, shown());
}

void print (const char* name, HostedPlugin::Size size)
{
    std::printf ("%s: %d by %d\n", name, size.width, size.height);
}

void printDrag (const char* direction, HostedPlugin& plugin)
{
    std::printf ("dragged %s: %.6f\n", direction, static_cast<double> (plugin.getParameter()));
    std::printf ("edits %s: %s\n", direction, plugin.takeEdits().c_str());
}
} // namespace

void commands::editor (const Arguments& arguments)
{
    for (int i = 0; i < std::stoi (arguments.at (1)); ++i)
    {
        const auto plugin = openPlugin (arguments.at (0));
        NativeWindow window (*plugin);
        waitFor (2, "followed to the default", window, arguments.at (2));
        print ("size", window.size());

        plugin->takeEdits();
        window.drag (125, 120, -250);
        printDrag ("up", *plugin);
        window.drag (125, 120, 250);
        printDrag ("down", *plugin);

        plugin->setPosition (3);
        waitFor (3, "followed to Powerful", window, arguments.at (3));
        std::printf ("edits by the host: %s\n", plugin->takeEdits().c_str());
        std::fflush (stdout);
    }

    std::printf ("closed: %s\n", arguments.at (1).c_str());
}

void commands::scale (const Arguments& arguments)
{
    const auto plugin = openPlugin (arguments.at (0));
    plugin->setPosition (0);
    NativeWindow window (*plugin);
    print ("size", window.size());
    plugin->setScale (2.0f);
    print ("size it asks for", window.size());
    waitFor (0, "followed at twice the size", window, arguments.at (1));
    window.drag (250, 240, -166); // a third of the knob's way, at twice the size
    std::printf ("dragged up: %.6f\n", static_cast<double> (plugin->getParameter()));
    waitFor (1, "shown at twice the size", window, arguments.at (1));

    plugin->setScale (1.0f);
    print ("size it goes back to", window.size());
    waitFor (1, "shown at the old size", window, arguments.at (2));
}

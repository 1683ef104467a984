// SPDX-License-Identifier: AGPL-3.0-only
#include "windows/WineHost.h"

#include "window/VirtualDisplay.h"

#include <gtest/gtest.h>

#include <memory>

namespace
{
/** The display of all that Wine runs: its desktop stays with the one, or with none, that the first program has. */
class Display : public testing::Environment
{
public:
    void SetUp() override { display = std::make_unique<larkspire::window::VirtualDisplay>(); }
    void TearDown() override { display.reset(); }

private:
    std::unique_ptr<larkspire::window::VirtualDisplay> display;
};

const auto* const display = testing::AddGlobalTestEnvironment (new Display);
} // namespace

std::string WineHost::libraryPath (Format format)
{
    return format == Format::vst2 ? LARKSPIRE_WINDOWS_LIBRARY : LARKSPIRE_WINDOWS_BUNDLE;
}

std::string WineHost::programPath()
{
    return LARKSPIRE_WINDOWS_HOST;
}

std::string WineHost::Report::operator[] (const std::string& name) const
{
    const auto values = all (name);
    return values.empty() ? std::string() : values.front();
}

std::vector<std::string> WineHost::Report::all (const std::string& name) const
{
    std::vector<std::string> values;

    for (const auto& [key, value] : lines)
        if (key == name)
            values.push_back (value);

    return values;
}

Call WineHost::call (const std::vector<std::string>& words)
{
    return { .arguments = words,
             .program = "wine",
             .environment = { { "WINEPREFIX", LARKSPIRE_WINE_PREFIX },
                              { "WINEARCH", "win64" },
                              { "WINEDLLOVERRIDES", "mscoree,mshtml=" },
                              { "WINEDEBUG", "-all" } },
             .longestRun = 120 };
}

WineHost::Report WineHost::run (const std::string& command, const std::vector<std::string>& arguments, Format format)
{
    std::vector<std::string> words { programPath(), command, libraryPath (format) };
    words.insert (words.end(), arguments.begin(), arguments.end());
    const auto output = outputOf (call (words));
    Report report;

    // Its lines end as they do on Windows.
    for (auto line : linesOf (output))
    {
        line.erase (line.find_last_not_of ('\r') + 1);

        if (const auto colon = line.find (": "); colon != std::string::npos)
            report.lines.emplace_back (line.substr (0, colon), line.substr (colon + 2));
    }

    return report;
}

// SPDX-License-Identifier: AGPL-3.0-only
#include "daws/Ardour.h"
#include "support/Child.h"
#include "support/Paths.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <utility>

namespace
{
constexpr int sampleRate = 48000; // Hz

/** Where the package has put what people do not call themselves. */
const std::string programs = "/usr/lib/ardour7/";

/** What Ardour calls a format's things. */
struct FormatNames
{
    const char* type;
    const char* name;       // or id, by which it finds the plug-in
    const char* scanner;    // null where it does without a scan
    const char* searchPath; // environment variable
};

FormatNames namesOf (Format format)
{
    switch (format)
    {
    case Format::vst2:
        return { "LXVST", "Quendal Larkspire", "ardour-vst-scanner", "LXVST_PATH" };
    case Format::vst3:
        return { "VST3", "Quendal Larkspire", "ardour-vst3-scanner", "VST3_PATH" };
    case Format::lv2:
        return { "LV2", "urn:quendal:larkspire:stereo", nullptr, "LV2_PATH" };
    }

    return {};
}

const char* nameOf (PluginSwitch position)
{
    return position == PluginSwitch::on ? "on" : position == PluginSwitch::off ? "off" : "bypassed";
}
} // namespace

Ardour::Ardour (Format f, std::filesystem::path installed)
    : format (f),
      plugin (std::move (installed)),
      // Nothing of the caller's: neither a real display nor the caller's own settings of Ardour are touched.
      environment { { "PATH", "/usr/bin:/bin" },
                    { "LANG", "C.UTF-8" },
                    { "DISPLAY", ":none" },
                    { "HOME", folder / "home" },
                    { "LD_LIBRARY_PATH", programs },
                    { "ARDOUR_DLL_PATH", programs },
                    { "ARDOUR_DATA_PATH", "/usr/share/ardour7" },
                    { "ARDOUR_CONFIG_PATH", "/etc/ardour7" } }
{
    std::filesystem::create_directory (folder / "home");

    if (plugin.empty())
        plugin = installCopy();

    if (namesOf (format).scanner != nullptr)
        scan();
}

std::filesystem::path Ardour::installCopy()
{
    namespace fs = std::filesystem;
    const fs::path built = pluginPath (format);
    const fs::path plugins = folder / "plugins";
    environment[namesOf (format).searchPath] = plugins;
    fs::create_directory (plugins);
    fs::copy (built, plugins / built.filename(), fs::copy_options::recursive);

    // What a scan found counts only if it is newer than the library, by whole seconds.
    for (const auto& entry : fs::recursive_directory_iterator (plugins))
        fs::last_write_time (entry, fs::file_time_type::clock::now() - std::chrono::hours (24));

    return plugins / built.filename();
}

std::string Ardour::run (const std::string& program, const std::vector<std::string>& arguments) const
{
    return outputOf ({ .arguments = arguments,
                       .program = program,
                       .environment = environment,
                       .inheritsEnvironment = false,
                       .folder = folder.path() });
}

std::string Ardour::scan() const
{
    return run (programs + namesOf (format).scanner, { "-f", "-v", plugin });
}

void Ardour::makeSession (const std::string& name, const Track& track) const
{
    std::array<char, 32> value {};
    std::snprintf (value.data(), value.size(), "%.9g", static_cast<double> (track.parameter));
    run ("ardour7-lua",
         { paths::source ("tests/daws/make-session.lua"),
           folder / name,
           std::to_string (track.channels.size()),
           namesOf (format).type,
           namesOf (format).name,
           value.data(),
           nameOf (track.position),
           std::to_string (track.channels.front().size()) });

    for (std::size_t i = 0; i < track.channels.size(); ++i)
        writeFloatWav (folder
                           / (name + "/interchange/" + name + "/audiofiles/channel" + std::to_string (i + 1) + ".wav"),
                       { track.channels[i] },
                       sampleRate);
}

std::string Ardour::sessionPath (const std::string& name) const
{
    return folder / (name + "/voice.ardour");
}

std::string Ardour::openSession (const std::string& name) const
{
    return run ("ardour7-lua", { paths::source ("tests/daws/open-session.lua"), folder / name });
}

Channels Ardour::exportSession (const std::string& name, const std::function<bool (const Channels&)>& isRight) const
{
    constexpr int mostRuns = 8;
    Channels exported;

    for (int i = 0; i < mostRuns; ++i)
    {
        try
        {
            exported = exportOnce (name);

            if (isRight (exported))
                return exported;

            std::printf ("export %d of %s: other samples\n", i + 1, name.c_str());
        }
        catch (const std::runtime_error& error)
        {
            std::printf ("export %d of %s: %s\n", i + 1, name.c_str(), error.what());
        }
    }

    return exported;
}

Channels Ardour::exportOnce (const std::string& name) const
{
    const auto path = folder / (name + ".wav");
    run ("ardour7-export", { "-s", std::to_string (sampleRate), "-b", "float", "-o", path, folder / name, "voice" });
    return readFloatWav (path, sampleRate);
}

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
} // namespace

Ardour::Ardour (std::filesystem::path installed)
    : library (std::move (installed)),
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
    namespace fs = std::filesystem;
    fs::create_directory (folder / "home");

    if (library.empty())
    {
        library = folder / "vst/Quendal Larkspire.so";
        environment["LXVST_PATH"] = folder / "vst";
        fs::create_directory (folder / "vst");
        fs::copy_file (paths::plugin(), library);

        // What a scan found counts only if it is newer than the library, by whole seconds.
        fs::last_write_time (library, fs::file_time_type::clock::now() - std::chrono::hours (24));
    }

    scan();
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
    return run (programs + "ardour-vst-scanner", { "-f", "-v", library });
}

void Ardour::makeSession (const std::string& name, const Track& track) const
{
    std::array<char, 32> value {};
    std::snprintf (value.data(), value.size(), "%.9g", static_cast<double> (track.parameter));
    run ("ardour7-lua",
         { paths::source ("tests/daws/make-session.lua"),
           folder / name,
           std::to_string (track.channels.size()),
           value.data(),
           track.active ? "on" : "off",
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

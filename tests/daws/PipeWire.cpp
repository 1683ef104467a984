// SPDX-License-Identifier: AGPL-3.0-only
#include "daws/PipeWire.h"

#include "support/Paths.h"
#include "support/Recording.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <thread>

namespace
{
namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr int sampleRate = 48000; // Hz

/** A bus that starts no programs, so that none stays behind. */
std::string busConfiguration (const std::string& socket)
{
    return "<busconfig><type>session</type><listen>unix:path=" + socket
           + "</listen><policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
             "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>\n";
}

std::string microphoneObject (const std::string& name, int priority)
{
    return "  { factory = adapter args = { factory.name = support.null-audio-sink node.name = " + name
           + " node.description = \"" + name + "\" media.class = Audio/Source/Virtual audio.position = [ MONO ]"
           + " audio.rate = 48000 object.linger = true priority.session = " + std::to_string (priority) + " } }\n";
}

/** Cycles of a fixed length, and the microphones. */
std::string fakeMicrophones()
{
    const auto length = std::to_string (PipeWire::block);
    return "context.properties = { default.clock.rate = 48000 default.clock.quantum = " + length
           + " default.clock.min-quantum = " + length + " default.clock.max-quantum = " + length
           + " }\ncontext.objects = [\n" + microphoneObject ("desk_mic", 2000) + microphoneObject ("other_mic", 1000)
           + "]\n";
}

bool contains (const std::string& text, const std::string& part)
{
    return text.find (part) != std::string::npos;
}
} // namespace

PipeWire::PipeWire()
    : environment { { "PATH", "/usr/bin:/bin" },
                    { "LANG", "C.UTF-8" },
                    { "HOME", folder / "home" },
                    { "XDG_RUNTIME_DIR", folder / "run" },
                    { "DBUS_SESSION_BUS_ADDRESS", "unix:path=" + (folder / "run/bus") } }
{
    fs::create_directories (folder / "home/.lv2");
    fs::create_directories (folder / "home/.config/pipewire/pipewire.conf.d");
    fs::create_directory (folder / "run");
    fs::permissions (folder / "run", fs::perms::owner_all);
    fs::copy (paths::lv2(), folder / "home/.lv2/larkspire.lv2");
    writeBytes (folder / "bus.conf", busConfiguration (folder / "run/bus"));
    writeBytes (folder / "home/.config/pipewire/pipewire.conf.d/10-fake-microphones.conf", fakeMicrophones());
}

PipeWire::~PipeWire()
{
    if (daemon != nullptr)
        stop();
}

Call PipeWire::callOf (const std::string& program, const std::vector<std::string>& arguments) const
{
    // The daemons end with the limit too, should the test itself be killed.
    return { .arguments = arguments,
             .program = program,
             .environment = environment,
             .inheritsEnvironment = false,
             .folder = folder.path(),
             .longestRun = 120 };
}

void PipeWire::removePlugin() const
{
    fs::remove_all (folder / "home/.lv2");
}

std::string PipeWire::call (const std::string& program, const std::vector<std::string>& arguments) const
{
    return outputOf (callOf (program, arguments));
}

std::string PipeWire::microphone (const std::vector<std::string>& arguments) const
{
    return call (paths::microphone(), arguments);
}

void PipeWire::waitFor (const std::string& what, const std::function<bool()>& isSo) const
{
    for (const auto deadline = std::chrono::steady_clock::now() + 30s; ! isSo();)
    {
        if (std::chrono::steady_clock::now() > deadline)
            throw std::runtime_error ("PipeWire: there is no " + what + " after half a minute");

        std::this_thread::sleep_for (50ms);
    }
}

void PipeWire::start()
{
    bus = std::make_unique<Child> (
        callOf ("dbus-daemon", { "--config-file=" + (folder / "bus.conf"), "--nofork", "--nopidfile" }));
    waitFor ("bus", [this] { return fs::exists (folder / "run/bus"); });
    daemon = std::make_unique<Child> (callOf ("pipewire", {}));
    waitFor ("socket", [this] { return fs::exists (folder / "run/pipewire-0"); });
    sessionManager = std::make_unique<Child> (callOf ("wireplumber", {}));
    waitFor ("default microphone",
             [this]
             {
                 return contains (run (callOf ("pw-metadata", { "0", "default.audio.source" })).output, "\"name\"")
                        && (! contains (call ("pw-cli", { "ls", "Node" }), "capture.larkspire")
                            || contains (call ("pw-link", { "--links" }), "|-> capture.larkspire:"));
             });
}

Outcome PipeWire::stop()
{
    Outcome outcome;

    for (auto* program : { &sessionManager, &daemon, &bus })
    {
        if (*program == nullptr)
            continue;

        (*program)->sendSignal (SIGTERM);

        if (const auto ended = (*program)->wait(); program == &daemon)
            outcome = ended;

        program->reset();
    }

    fs::remove (folder / "run/bus");
    fs::remove (folder / "run/pipewire-0");
    return outcome;
}

std::string PipeWire::idOf (const std::string& node) const
{
    std::string id;

    for (const auto& line : linesOf (call ("pw-cli", { "ls", "Node" })))
    {
        if (line.starts_with ("\tid "))
            id = line.substr (4, line.find (',') - 4);
        else if (contains (line, "node.name = \"" + node + "\""))
            return id;
    }

    throw std::runtime_error ("PipeWire: there is no node " + node);
}

std::vector<float> PipeWire::record (const std::string& node,
                                     const std::string& microphone,
                                     const std::vector<float>& played,
                                     const std::function<void()>& meanwhile) const
{
    // Silence behind the sound, since the player drops what does not fill its last cycle.
    auto withSilence = played;
    withSilence.resize (played.size() + 4 * block);
    writeFloatWav (folder / "played.wav", { withSilence }, sampleRate);

    const std::vector<std::string> format { "--rate", "48000", "--channels", "1", "--format", "f32" };
    std::vector<std::string> arguments { "--target", node, folder / "recorded.wav" };
    arguments.insert (arguments.end(), format.begin(), format.end());
    Child recorder (callOf ("pw-record", arguments));
    waitFor ("recording from " + node,
             [this, &node]
             { return contains (call ("pw-link", { "--links" }), node + ":capture_MONO\n  |-> pw-record:"); });

    // The player waits for somebody to link it: a session manager links nobody to a microphone's far side.
    Child player (callOf ("pw-play", { "--target", "0", folder / "played.wav" }));
    waitFor ("player", [this] { return contains (call ("pw-link", { "--output" }), "pw-play:output_MONO"); });
    call ("pw-link", { "pw-play:output_MONO", microphone + ":input_MONO" });

    if (meanwhile)
    {
        std::this_thread::sleep_for (std::chrono::milliseconds (played.size() * 250 / sampleRate));
        meanwhile();
    }

    if (player.wait().exitStatus != 0)
        throw std::runtime_error ("pw-play has failed");

    // What is still under way.
    std::this_thread::sleep_for (std::chrono::milliseconds (8 * block * 1000 / sampleRate));
    recorder.sendSignal (SIGINT);
    recorder.wait();

    const auto recorded = readFloatWav (folder / "recorded.wav", sampleRate).front();
    const auto isSound = [] (float sample) { return sample != 0.0f; };
    const auto first = std::find_if (recorded.begin(), recorded.end(), isSound);
    const auto silenceBefore = std::find_if (played.begin(), played.end(), isSound) - played.begin();

    if (first - recorded.begin() < silenceBefore
        || recorded.end() - first + silenceBefore < static_cast<std::ptrdiff_t> (played.size()))
        throw std::runtime_error ("the recording is too short");

    return { first - silenceBefore, first - silenceBefore + static_cast<std::ptrdiff_t> (played.size()) };
}

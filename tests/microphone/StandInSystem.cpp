// SPDX-License-Identifier: AGPL-3.0-only
#include "microphone/StandInSystem.h"

#include "support/Paths.h"
#include "support/Recording.h"

#include <array>
#include <filesystem>
#include <stdexcept>

namespace
{
namespace fs = std::filesystem;

// What larkspire-microphone may use: bash, the core utilities, grep, sed and flock, which no Linux system lacks.
constexpr std::array basicPrograms { "bash",   "cat", "chmod", "env", "flock", "grep", "head",    "id",   "mkdir",
                                     "mktemp", "mv",  "paste", "rm",  "sed",   "sort", "timeout", "true", "touch" };

const std::string pwCli = R"(
case $1 in
    --version) printf 'pw-cli\nCompiled with libpipewire 0.3.65\nLinked with libpipewire 0.3.65\n'; exit ;;
esac
if [ ! -e "$STATE/nodes" ]; then echo 'Error: "failed to connect: Host is down"' >&2; exit 255; fi
case $1 in
    ls) cat "$STATE/nodes" ;;
    info) cat "$STATE/info" ;;
    enum-params) cat "$STATE/props" ;;
    set-param)
        echo "pw-cli $*" >>"$STATE/requests"
        sed -i "s/Float .*/Float $(sed 's/.*"voice:mode" \([0-9]\.0\).*/\1/' <<<"$4")00000/" "$STATE/props"
        cat "$STATE/props" ;;
    *) exit 1 ;;
esac
)";

const std::string systemctl = R"(
echo "systemctl $*" >>"$STATE/requests"
if [ -e "$STATE/nodes-after" ]; then cat "$STATE/nodes-after" >"$STATE/nodes"; fi
)";

/** The nodes as pw-cli prints them, with what it prints beside, numbered from one on. */
std::string listing (const std::vector<Node>& nodes, int id)
{
    std::string text;

    for (const auto& node : nodes)
    {
        text += "\tid " + std::to_string (id) + ", type PipeWire:Interface:Node/3\n \t\tobject.serial = \""
                + std::to_string (id + 1) + "\"\n \t\tfactory.id = \"17\"\n";
        ++id;

        if (! node.description.empty())
            text += " \t\tnode.description = \"" + node.description + "\"\n";

        text += " \t\tnode.name = \"" + node.name + "\"\n";

        if (! node.mediaClass.empty())
            text += " \t\tmedia.class = \"" + node.mediaClass + "\"\n";
    }

    return text;
}

const std::string larkspireNodes = listing ({ { "capture.larkspire", "Larkspire microphone", "Stream/Input/Audio" },
                                              { "larkspire", "Larkspire microphone", "Audio/Source" } },
                                            70);
} // namespace

StandInSystem::StandInSystem()
    : environment { { "PATH", folder / "bin" }, { "HOME", home }, { "STATE", folder / "state" } }
{
    for (const auto& name : { "bin", "state", "home/.lv2" })
        fs::create_directories (folder / name);

    fs::copy (paths::lv2(), home + "/.lv2/larkspire.lv2");

    for (const std::string name : basicPrograms)
    {
        const auto program = fs::exists ("/usr/bin/" + name) ? "/usr/bin/" + name : "/bin/" + name;
        fs::create_symlink (program, folder / ("bin/" + name));
    }

    putProgram ("pw-cli", pwCli);
    putProgram ("pw-link", R"([ -e "$STATE/links" ] && cat "$STATE/links")");
    putProgram ("pw-metadata",
                R"(echo "update: id:0 key:'$2' value:'{\"name\":\"desk_mic\"}' type:'Spa:String:JSON'")");
    putProgram ("systemctl", systemctl);
    putProgram ("sleep", "");
}

Call StandInSystem::callOf (const std::vector<std::string>& arguments) const
{
    return { .arguments = arguments,
             .program = paths::microphone(),
             .environment = environment,
             .inheritsEnvironment = false,
             .folder = folder.path() };
}

Outcome StandInSystem::call (const std::vector<std::string>& arguments) const
{
    return ::run (callOf (arguments));
}

std::string StandInSystem::file() const
{
    return home + "/.config/pipewire/pipewire.conf.d/larkspire-microphone.conf";
}

void StandInSystem::run (const std::vector<Node>& nodes) const
{
    writeBytes (folder / "state/nodes", listing (nodes, 28));
}

void StandInSystem::addLarkspire (int mode, const std::string& target) const
{
    writeBytes (folder / "state/nodes", bytesOf (folder / "state/nodes") + larkspireNodes);
    writeBytes (folder / "state/info",
                "\tid: 70\n*\tproperties:\n*\t\tnode.name = \"capture.larkspire\"\n"
                    + (target.empty() ? "" : "*\t\ttarget.object = \"" + target + "\"\n")
                    + "*\t\tnode.description = \"Larkspire microphone\"\n");
    writeBytes (folder / "state/props",
                "  Object: size 864, type Spa:Pod:Object:Param:Props (262146), id Spa:Enum:ParamId:Props (2)\n"
                "    Prop: key Spa:Pod:Object:Param:Props:params (524289), flags 00000000\n"
                "      Struct: size 40\n        String \"voice:mode\"\n        Float "
                    + std::to_string (mode) + ".000000\n");
}

std::string StandInSystem::runningMode() const
{
    const auto text = bytesOf (folder / "state/props");
    const auto place = text.find ("Float ") + 6;
    return text.substr (place, text.find ('\n', place) - place);
}

void StandInSystem::restartWithLarkspire (bool isThere) const
{
    writeBytes (folder / "state/nodes-after",
                listing ({ { "desk_mic", "Desk", "Audio/Source" } }, 28) + (isThere ? larkspireNodes : ""));
}

std::vector<std::string> StandInSystem::requests() const
{
    const auto log = folder / "state/requests";
    return fs::exists (log) ? linesOf (bytesOf (log)) : std::vector<std::string>();
}

void StandInSystem::putProgram (const std::string& name, const std::string& script) const
{
    removeProgram (name);
    const auto program = folder / ("bin/" + name);
    writeBytes (program, "#!/bin/bash\n" + script + "\n");
    fs::permissions (program, fs::perms::owner_all);
}

void StandInSystem::removeProgram (const std::string& name) const
{
    fs::remove (folder / ("bin/" + name));
}

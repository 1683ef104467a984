// SPDX-License-Identifier: AGPL-3.0-only
// larkspire-microphone without PipeWire: what it writes, asks for, refuses and leaves alone. tests/daws has it in the
// real PipeWire.
#include "host/KnobMode.h"
#include "microphone/StandInSystem.h"
#include "support/FirstMatch.h"
#include "support/Paths.h"
#include "support/Recording.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace
{
namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

const Node deskMicrophone { "desk_mic", "Desk", "Audio/Source" };
const Node headset { "bluez_input.00:11", "Headset", "Audio/Source" };
const std::string restartCommand = "systemctl --user restart pipewire";

class Microphone : public testing::Test
{
protected:
    /** Expects that a call is done, and gives what it said. */
    std::string expectDone (const std::vector<std::string>& arguments) const
    {
        const auto outcome = system.call (arguments);
        EXPECT_EQ (outcome.exitStatus, 0) << testing::PrintToString (arguments);
        EXPECT_EQ (outcome.errors, "") << testing::PrintToString (arguments);
        return outcome.output;
    }

    /** Expects that a call fails in one line, which it gives, and changes no file and nothing that runs. */
    std::string expectFailure (int exitStatus, const std::vector<std::string>& arguments) const
    {
        const auto place = testing::PrintToString (arguments);
        const auto names = system.folder.contents();
        const auto content = fileOrNothing();
        const auto outcome = system.call (arguments);
        EXPECT_EQ (outcome.exitStatus, exitStatus) << place;
        EXPECT_EQ (outcome.output, "") << place;
        EXPECT_THAT (outcome.errors, StartsWith ("larkspire-microphone: ")) << place;
        EXPECT_EQ (linesOf (outcome.errors).size(), 1u) << place << outcome.errors;
        EXPECT_EQ (system.folder.contents(), names) << place;
        EXPECT_EQ (fileOrNothing(), content) << place;
        EXPECT_THAT (system.requests(), IsEmpty()) << place;
        return outcome.errors;
    }

    std::string fileOrNothing() const
    {
        return fs::is_regular_file (system.file()) ? bytesOf (system.file()) : std::string();
    }

    /** What stands in the file: the number of the mode, and the microphone that it is tied to. */
    std::string modeInFile() const { return found (bytesOf (system.file()), "\"mode\" = ([^ ]*)"); }
    std::string targetInFile() const { return found (bytesOf (system.file()), "target\\.object = \"(.*)\"\n"); }

    StandInSystem system;
};

TEST_F (Microphone, HelpNamesEveryOptionAndTheVersionIsTheReleases)
{
    for (const std::string flag : { "--help", "-h" })
    {
        const auto help = expectDone ({ flag });
        EXPECT_THAT (help, StartsWith ("Usage: larkspire-microphone [OPTION]... [MODE]\n"));

        for (const std::string text : { "  -h, --help  ",
                                        "  --version  ",
                                        "  --mode MODE  ",
                                        "  --from NODE  ",
                                        "  --list  ",
                                        "  --restart  ",
                                        "  --status  ",
                                        "  --remove  ",
                                        "Exit status:\n  0  ",
                                        "Examples:\n  larkspire-microphone " })
            EXPECT_THAT (help, HasSubstr ("\n" + text));
    }

    EXPECT_EQ (expectDone ({ "--version" }), "larkspire-microphone " LARKSPIRE_RELEASE "\n");
    EXPECT_FALSE (fs::exists (system.home + "/.config"));
}

TEST_F (Microphone, WritesOneFileWithTheMonoPluginInMedium)
{
    const auto text = expectDone ({});
    EXPECT_THAT (text, StartsWith ("Larkspire microphone: Medium, from the default microphone\n"));
    EXPECT_THAT (text, HasSubstr ("PipeWire does not run; it will be there when PipeWire does.\n"));
    EXPECT_THAT (text, Not (HasSubstr (restartCommand)));

    const auto content = bytesOf (system.file());
    EXPECT_THAT (content, StartsWith ("# Written by larkspire-microphone."));
    EXPECT_THAT (content, HasSubstr ("node.description = \"Larkspire microphone\"\n"));
    EXPECT_THAT (content, HasSubstr ("{ type = lv2 name = voice plugin = \"urn:quendal:larkspire:mono\" "));
    EXPECT_THAT (content, HasSubstr ("flags = [ nofail ]"));
    EXPECT_EQ (modeInFile(), "2");
    EXPECT_EQ (targetInFile(), "");

    for (const auto& entry : fs::recursive_directory_iterator (system.home + "/.config"))
        EXPECT_TRUE (entry.is_directory() || entry.path() == system.file()) << entry.path();
}

TEST_F (Microphone, TakesTheModeInEverySpelling)
{
    for (const auto mode : larkspire::knobModes)
    {
        const std::string name = larkspire::nameOf (mode);
        auto shouted = name;
        std::transform (name.begin(), name.end(), shouted.begin(), [] (unsigned char c) { return std::toupper (c); });

        for (const auto& arguments :
             std::vector<std::vector<std::string>> { { name }, { shouted }, { "--mode", name }, { "--mode=" + name } })
        {
            fs::remove (system.file());
            EXPECT_THAT (expectDone (arguments), StartsWith ("Larkspire microphone: " + name + ","));
            EXPECT_EQ (modeInFile(), std::to_string (static_cast<int> (mode)));
        }
    }
}

TEST_F (Microphone, KeepsTheModeAndTheMicrophoneThatACallDoesNotName)
{
    expectDone ({ "Powerful", "--from", "desk_mic" });
    expectDone ({});
    EXPECT_EQ (modeInFile(), "3");
    EXPECT_EQ (targetInFile(), "desk_mic");

    expectDone ({ "Gentle" });
    EXPECT_EQ (modeInFile(), "1");
    EXPECT_EQ (targetInFile(), "desk_mic");

    expectDone ({ "--from=default" });
    EXPECT_EQ (modeInFile(), "1");
    EXPECT_EQ (targetInFile(), "");
}

TEST_F (Microphone, LeavesAFileAloneThatSaysItAlready)
{
    expectDone ({ "Gentle" });
    const auto before = fs::last_write_time (system.file()) - std::chrono::hours (1);
    fs::last_write_time (system.file(), before);
    expectDone ({ "Gentle" });
    expectDone ({});
    EXPECT_EQ (fs::last_write_time (system.file()), before);

    expectDone ({ "Medium" });
    EXPECT_NE (fs::last_write_time (system.file()), before);
}

TEST_F (Microphone, WritesWhatWasChangedByHandAnew)
{
    expectDone ({});
    const auto content = bytesOf (system.file());
    writeBytes (system.file(), linesOf (content).front() + "\ncontext.modules = [\n");
    expectDone ({});
    EXPECT_EQ (bytesOf (system.file()), content);
}

TEST_F (Microphone, RefusesCallsThatMakeNoSense)
{
    const std::vector<std::vector<std::string>> calls {
        { "Loud" },
        { "" },
        { "Gentle", "Medium" },
        { "Gentle", "--mode", "Gentle" },
        { "--mode" },
        { "--mode=" },
        { "--from" },
        { "--from=" },
        { "--from", "desk_mic", "--from", "desk_mic" },
        { "--from", "42" },
        { "--from", "larkspire" },
        { "--from", "capture.larkspire" },
        { "--from", "a\"b" },
        { "--from", "a\\b" },
        { "--from", "a\nb" },
        { "--from", "a\x7f" },
        { "--bogus" },
        { "-x" },
        { "--list", "--status" },
        { "--status", "--remove" },
        { "--status", "--restart" },
        { "--list", "--restart" },
        { "--remove", "Gentle" },
        { "--status", "--from", "desk_mic" },
    };

    for (const auto& arguments : calls)
        EXPECT_THAT (expectFailure (2, arguments), testing::EndsWith ("; see larkspire-microphone --help\n"));
}

TEST_F (Microphone, TakesNamesWithOddCharactersAsTheyAre)
{
    for (const std::string name : { "with blanks and ' quotes",
                                    "$(touch injected)`touch injected`${HOME}",
                                    "} ] # { [ = ;",
                                    "*?&|<>()!~",
                                    "Mikrofon \xc3\xbc",
                                    "-h" })
    {
        expectDone ({ "--from", name });
        EXPECT_EQ (targetInFile(), name);
        expectDone ({ "Gentle" });
        EXPECT_EQ (targetInFile(), name);
    }

    EXPECT_FALSE (fs::exists (system.folder / "injected"));
}

TEST_F (Microphone, SaysWhatIsMissing)
{
    const auto ofVersion = [this] (const std::string& version)
    {
        system.putProgram ("pw-cli", "echo Linked with libpipewire " + version);
        return expectFailure (1, {});
    };
    EXPECT_THAT (ofVersion ("0.3.44"), HasSubstr ("PipeWire 0.3.44 is too old; it has to be 0.3.45 or newer"));
    EXPECT_THAT (ofVersion ("0.3.9"), HasSubstr ("too old"));
    EXPECT_THAT (ofVersion ("0.2.99"), HasSubstr ("too old"));

    system.removeProgram ("pw-cli");
    EXPECT_THAT (expectFailure (1, {}), HasSubstr ("PipeWire is not installed"));
    EXPECT_THAT (expectFailure (1, { "--list" }), HasSubstr ("PipeWire is not installed"));

    for (const std::string version : { "0.3.45", "0.3.100", "1.0.5" })
    {
        system.putProgram ("pw-cli", "[ \"$1\" = --version ] && echo Linked with libpipewire " + version);
        expectDone ({});
    }
}

TEST_F (Microphone, SaysWhereThePluginIsToBePut)
{
    const auto bundle = system.home + "/.lv2/larkspire.lv2";
    fs::create_directories (system.folder / "other plug-ins");
    fs::rename (bundle, system.folder / "other plug-ins/larkspire.lv2");

    // Where the machine that runs this has it installed, it is found.
    if (! fs::exists ("/usr/lib/lv2/larkspire.lv2"))
    {
        EXPECT_THAT (expectFailure (1, {}), HasSubstr ("copy larkspire.lv2 to ~/.lv2"));
    }

    system.environment["LV2_PATH"] = system.home + "/.lv2";
    EXPECT_THAT (expectFailure (1, {}), HasSubstr ("copy larkspire.lv2 to ~/.lv2"));

    system.environment["LV2_PATH"] = "/none:" + (system.folder / "other plug-ins");
    expectDone ({});

    fs::rename (system.folder / "other plug-ins/larkspire.lv2", bundle);
    system.environment["LV2_PATH"] = "~/.lv2";
    expectDone ({});
}

TEST_F (Microphone, SaysWhyItCannotWrite)
{
    system.environment["HOME"] = "";
    system.environment["LV2_PATH"] = system.home + "/.lv2";
    EXPECT_THAT (expectFailure (1, {}), HasSubstr ("neither HOME nor XDG_CONFIG_HOME is set"));
    EXPECT_THAT (expectFailure (1, { "--remove" }), HasSubstr ("neither HOME nor XDG_CONFIG_HOME is set"));

    system.environment.erase ("HOME");
    EXPECT_THAT (expectFailure (1, {}), HasSubstr ("neither HOME nor XDG_CONFIG_HOME is set"));

    // A folder that cannot be made, for root neither.
    system.environment["XDG_CONFIG_HOME"] = "/proc";
    EXPECT_THAT (expectFailure (1, {}), HasSubstr ("the folder /proc/pipewire/pipewire.conf.d cannot be made"));

    system.environment["XDG_CONFIG_HOME"] = system.folder / "plain file";
    writeBytes (system.folder / "plain file", "");
    EXPECT_THAT (expectFailure (1, {}), HasSubstr ("cannot be made"));
}

TEST_F (Microphone, LeavesTheFormerFileWhereANewOneCannotBeWritten)
{
    expectDone ({ "Gentle" });

    for (const std::string program : { "mktemp", "mv", "chmod" })
    {
        system.putProgram (program, "exit 1");
        EXPECT_THAT (expectFailure (1, { "Powerful" }), HasSubstr ("cannot be written")) << program;
        system.removeProgram (program);
        fs::create_symlink ("/usr/bin/" + program, system.folder / ("bin/" + program));
    }

    // The disk is full in the middle of the text.
    const auto cat = system.folder / "bin/cat";
    fs::remove (cat);
    system.putProgram ("cat", "case $# in 0) echo half; exit 1 ;; *) exec /usr/bin/cat \"$@\" ;; esac");
    const auto before = bytesOf (system.file());
    EXPECT_EQ (system.call ({ "Powerful" }).exitStatus, 1);
    EXPECT_EQ (bytesOf (system.file()), before);
    EXPECT_THAT (system.folder.contents(), Not (testing::Contains (HasSubstr (".larkspire-microphone."))));
}

TEST_F (Microphone, IsNotForRootInAUsersPlace)
{
    system.putProgram ("id", "echo 0");
    system.environment["SUDO_UID"] = "1000";
    EXPECT_THAT (expectFailure (1, {}), HasSubstr ("without sudo"));

    system.environment["SUDO_UID"] = "0";
    expectDone ({});
}

TEST_F (Microphone, LeavesAForeignFileOfItsNameAlone)
{
    const auto folder = fs::path (system.file()).parent_path();
    fs::create_directories (folder);
    const auto ours = "# Written by larkspire-microphone. And then moved.\n";
    writeBytes (system.folder / "moved.conf", ours);

    const std::vector<std::pair<std::string, std::function<void()>>> foreign {
        { "another text", [this] { writeBytes (system.file(), "# Mine.\n# Written by larkspire-microphone.\n"); } },
        { "nothing", [this] { writeBytes (system.file(), ""); } },
        { "a link", [this] { fs::create_symlink (system.folder / "moved.conf", system.file()); } },
        { "a link to nothing", [this] { fs::create_symlink (system.folder / "none", system.file()); } },
        { "a folder", [this] { fs::create_directory (system.file()); } },
    };

    for (const auto& [what, make] : foreign)
    {
        make();

        for (const auto& arguments : std::vector<std::vector<std::string>> { {}, { "Gentle" }, { "--remove" } })
            EXPECT_THAT (expectFailure (1, arguments), HasSubstr ("is not this program's own")) << what;

        EXPECT_THAT (expectDone ({ "--status" }), HasSubstr ("which is not this program's own\n")) << what;
        fs::remove (system.file());
    }

    EXPECT_EQ (bytesOf (system.folder / "moved.conf"), ours);
}

TEST_F (Microphone, TouchesNoOtherFile)
{
    const auto folder = fs::path (system.file()).parent_path();
    fs::create_directories (folder);

    for (const std::string name :
         { "larkspire.conf", "larkspire-microphone.conf.bak", "99-mine.conf", "../pipewire.conf" })
        writeBytes (folder / name, name);

    const auto before = system.folder.contents();
    expectDone ({ "Gentle" });
    expectDone ({ "Powerful" });
    expectDone ({ "--remove" });
    EXPECT_EQ (system.folder.contents(), before);

    for (const std::string name :
         { "larkspire.conf", "larkspire-microphone.conf.bak", "99-mine.conf", "../pipewire.conf" })
        EXPECT_EQ (bytesOf (folder / name), name);
}

TEST_F (Microphone, GivesTheFileTheRightsOfTheUsersUmask)
{
    for (const auto& [mask, rights] : { std::pair { "022", 0644 }, { "077", 0600 }, { "007", 0660 } })
    {
        fs::remove_all (system.home + "/.config");
        fs::create_directories (fs::path (system.file()).parent_path());
        auto call = system.callOf ({ "-c", std::string ("umask ") + mask + "; exec \"$0\"", paths::microphone() });
        call.program = "/bin/bash";
        EXPECT_EQ (run (call).exitStatus, 0) << mask;
        EXPECT_EQ (static_cast<int> (fs::status (system.file()).permissions()), rights) << mask;
    }
}

TEST_F (Microphone, FindsTheConfigurationByTheVariableAndThroughLinks)
{
    // Blanks, and a folder that is a link.
    system.environment["XDG_CONFIG_HOME"] = system.folder / "my settings";
    fs::create_directories (system.folder / "elsewhere/on a disk");
    fs::create_directories (system.folder / "my settings/pipewire");
    fs::create_directory_symlink (system.folder / "elsewhere/on a disk",
                                  system.folder / "my settings/pipewire/pipewire.conf.d");
    expectDone ({ "Gentle" });
    const auto file = system.folder / "elsewhere/on a disk/larkspire-microphone.conf";
    EXPECT_THAT (bytesOf (file), HasSubstr ("\"mode\" = 1"));
    EXPECT_FALSE (fs::exists (system.home + "/.config"));

    EXPECT_THAT (expectDone ({ "--status" }), HasSubstr ("Set to:     Gentle, from the default microphone\n"));
    expectDone ({ "--remove" });
    EXPECT_FALSE (fs::exists (file));
    EXPECT_TRUE (fs::is_symlink (system.folder / "my settings/pipewire/pipewire.conf.d"));

    // An empty variable is none.
    system.environment["XDG_CONFIG_HOME"] = "";
    expectDone ({});
    EXPECT_EQ (modeInFile(), "2");

    // No home is needed where the variable is set.
    system.environment.erase ("HOME");
    system.environment["XDG_CONFIG_HOME"] = system.folder / "new settings";
    system.environment["LV2_PATH"] = system.home + "/.lv2";
    expectDone ({});
}

TEST_F (Microphone, IsWholeAndInOneModeWhenManyCallItAtOnce)
{
    system.run ({ deskMicrophone });
    system.addLarkspire (2);

    for (int round = 0; round < 3; ++round)
    {
        std::array<std::unique_ptr<Child>, 8> calls;

        for (std::size_t i = 0; i < calls.size(); ++i)
            calls[i] = std::make_unique<Child> (system.callOf ({ larkspire::nameOf (larkspire::knobModes[i % 4]) }));

        for (const auto& call : calls)
            EXPECT_EQ (call->wait().exitStatus, 0);

        EXPECT_THAT (bytesOf (system.file()), testing::EndsWith ("\n  }\n]\n"));
        EXPECT_EQ (system.runningMode(), modeInFile() + ".000000");
        EXPECT_THAT (system.folder.contents(), Not (testing::Contains (HasSubstr (".larkspire-microphone."))));
    }
}

TEST_F (Microphone, ChangesTheModeOfTheRunningNodeWithoutARestart)
{
    system.run ({ deskMicrophone });
    system.addLarkspire (2);
    EXPECT_EQ (expectDone ({ "Powerful" }), "Larkspire microphone: Powerful, from the default microphone\n");
    EXPECT_EQ (system.runningMode(), "3.000000");
    EXPECT_EQ (modeInFile(), "3");
    EXPECT_THAT (system.requests(),
                 testing::ElementsAre ("pw-cli set-param 70 Props { params = [ \"voice:mode\" 3.0 ] }"));

    // Not for the asking either, where it is not needed.
    expectDone ({ "bypass", "--restart" });
    EXPECT_EQ (system.runningMode(), "0.000000");
    EXPECT_THAT (system.requests(), Not (testing::Contains (HasSubstr ("systemctl"))));
}

TEST_F (Microphone, SaysSoIfTheRunningNodeDoesNotTakeTheMode)
{
    system.run ({ deskMicrophone });
    system.addLarkspire (2);
    fs::remove (system.folder / "bin/sed");
    system.putProgram ("sed", "case $1 in -i) ;; *) exec /bin/sed \"$@\" ;; esac");
    const auto outcome = system.call ({ "Powerful" });
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_THAT (outcome.errors, HasSubstr ("has not taken the mode"));
}

TEST_F (Microphone, SaysHowToRestartPipeWireWhereItIsNeeded)
{
    system.run ({ deskMicrophone, headset });
    EXPECT_THAT (expectDone ({}), HasSubstr (restartCommand)) << "not there yet";
    EXPECT_THAT (expectDone ({}), HasSubstr (restartCommand)) << "still not there";

    system.addLarkspire (2);
    EXPECT_THAT (expectDone ({}), Not (HasSubstr (restartCommand)));
    EXPECT_THAT (expectDone ({ "--from", headset.name }), HasSubstr (restartCommand)) << "another microphone";
    EXPECT_THAT (expectDone ({ "Gentle" }), HasSubstr (restartCommand)) << "still the former microphone";

    system.run ({ deskMicrophone, headset });
    system.addLarkspire (1, headset.name);
    EXPECT_THAT (expectDone ({ "Medium" }), Not (HasSubstr (restartCommand)));
    EXPECT_THAT (expectDone ({ "--from", "default" }), HasSubstr (restartCommand));
    EXPECT_THAT (expectDone ({ "--remove" }), HasSubstr (restartCommand));
    EXPECT_THAT (system.requests(), Not (testing::Contains (HasSubstr ("systemctl"))));
}

TEST_F (Microphone, RestartsPipeWireIfItIsAsked)
{
    system.run ({ deskMicrophone });
    system.restartWithLarkspire (true);
    EXPECT_THAT (expectDone ({ "--restart" }), Not (HasSubstr (restartCommand)));
    EXPECT_THAT (system.requests(), testing::ElementsAre (restartCommand));

    system.restartWithLarkspire (false);
    EXPECT_THAT (expectDone ({ "--remove", "--restart" }), HasSubstr ("The Larkspire microphone is gone.\n"));
    EXPECT_THAT (system.requests(), testing::ElementsAre (restartCommand, restartCommand));

    // Nothing to restart for, the second time.
    expectDone ({ "--remove", "--restart" });
    EXPECT_EQ (system.requests().size(), 2u);
}

TEST_F (Microphone, SaysSoIfTheRestartFailsOrDoesNotHelp)
{
    system.run ({ deskMicrophone });
    EXPECT_THAT (system.call ({ "--restart" }).errors, HasSubstr ("journalctl --user --unit pipewire"));

    system.putProgram ("systemctl", "echo 'Failed to connect to bus' >&2; exit 1");
    auto outcome = system.call ({ "--restart" });
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_THAT (outcome.errors, HasSubstr ("log out and in again"));
    EXPECT_EQ (linesOf (outcome.errors).size(), 1u) << outcome.errors;

    system.removeProgram ("systemctl");
    outcome = system.call ({ "--restart" });
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_THAT (outcome.errors, HasSubstr ("systemctl is missing"));
    EXPECT_EQ (modeInFile(), "2") << "written all the same";
}

TEST_F (Microphone, TakesNoMicrophoneThatDoesNotExist)
{
    system.run ({ deskMicrophone, { "speakers", "Speakers", "Audio/Sink" }, { "call", "", "Stream/Input/Audio" } });

    for (const std::string name : { "desk", "speakers", "call", "Desk" })
        EXPECT_THAT (expectFailure (1, { "--from", name }), HasSubstr ("there is no microphone '" + name + "'"));

    EXPECT_THAT (expectDone ({ "--from", "desk_mic" }),
                 StartsWith ("Larkspire microphone: Medium, from desk_mic (Desk)\n"));
}

TEST_F (Microphone, ListsTheMicrophonesAndMarksTheDefault)
{
    EXPECT_THAT (expectFailure (1, { "--list" }), HasSubstr ("PipeWire does not run"));

    system.run ({ { "Dummy-Driver", "", "" },
                  { "speakers", "Speakers", "Audio/Sink" },
                  deskMicrophone,
                  headset,
                  { "nameless", "", "Audio/Source/Virtual" },
                  { "both", "Both ways", "Audio/Duplex" } });
    system.addLarkspire (2);
    EXPECT_EQ (expectDone ({ "--list" }),
               "* desk_mic (Desk)\n"
               "  bluez_input.00:11 (Headset)\n"
               "  nameless\n"
               "  both (Both ways)\n");

    system.removeProgram ("pw-metadata");
    EXPECT_THAT (expectDone ({ "--list" }), StartsWith ("  desk_mic (Desk)\n"));
}

TEST_F (Microphone, StatusTellsWhatThereIs)
{
    const auto expectStatus = [this] (const std::string& file, const std::string& rest)
    { EXPECT_EQ (expectDone ({ "--status" }), "File:       " + file + "\n" + rest); };

    const auto notLoaded = "PipeWire has not read the file since it was written, or could not load the plug-in: '"
                           + restartCommand
                           + "'\nreads it, and 'journalctl --user --unit pipewire' says what was wrong.\n";

    expectStatus ("none", "PipeWire:   0.3.65, does not run\nPlug-in:    found\nMicrophone: not there\n");
    expectDone ({ "Gentle" });
    expectStatus (system.file(),
                  "Set to:     Gentle, from the default microphone\n"
                  "PipeWire:   0.3.65, does not run\nPlug-in:    found\nMicrophone: not there\n");

    system.run ({ deskMicrophone, headset });
    expectStatus (system.file(),
                  "Set to:     Gentle, from the default microphone\n"
                  "PipeWire:   0.3.65, runs\nPlug-in:    found\nMicrophone: not there\n"
                      + notLoaded);

    expectDone ({ "--from", headset.name });
    system.addLarkspire (3, headset.name);
    expectStatus (system.file(),
                  "Set to:     Gentle, from bluez_input.00:11 (Headset)\n"
                  "PipeWire:   0.3.65, runs\nPlug-in:    found\n"
                  "Microphone: there as \"Larkspire microphone\", Powerful, from no microphone at this moment\n");

    // As pw-link prints links from both of their ends; a port has a colon in its node's name.
    writeBytes (system.folder / "state/links",
                "desk_mic:capture_MONO\n  |-> some_call:input_MONO\n"
                "bluez_input.00:11:capture_FL\n  |-> capture.larkspire:input_FL\n"
                "capture.larkspire:input_FL\n  |<- bluez_input.00:11:capture_FL\n"
                "capture.larkspire:input_FR\n  |<- bluez_input.00:11:capture_FR\n"
                "some_call:input_MONO\n  |<- desk_mic:capture_MONO\n");
    expectDone ({ "--remove" });
    expectStatus (
        "none",
        "PipeWire:   0.3.65, runs\nPlug-in:    found\nMicrophone: there as \"Larkspire microphone\", Powerful, "
        "from bluez_input.00:11 (Headset)\n");

    system.removeProgram ("pw-cli");
    system.environment["LV2_PATH"] = "/none";
    expectStatus ("none", "PipeWire:   not installed\nPlug-in:    not found\nMicrophone: not there\n");
}

TEST_F (Microphone, RemovesItsFileAndSaysSo)
{
    expectDone ({});
    EXPECT_EQ (expectDone ({ "--remove" }), "Removed " + system.file() + ".\n");
    EXPECT_EQ (expectDone ({ "--remove" }), "There is no " + system.file() + ".\n");

    // Also where PipeWire and the plug-in have gone before it.
    expectDone ({});
    system.removeProgram ("pw-cli");
    fs::remove_all (system.home + "/.lv2");
    EXPECT_EQ (expectDone ({ "--remove" }), "Removed " + system.file() + ".\n");
}
} // namespace

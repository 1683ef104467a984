// SPDX-License-Identifier: AGPL-3.0-only
// An archive that goes over two machines, by the lines of docs/use.md as they stand there.
#include "daws/SshMachine.h"
#include "support/FirstMatch.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <csignal>
#include <regex>
#include <thread>

namespace
{
namespace fs = std::filesystem;
using Json = nlohmann::json;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

/** A call for a shell in docs/use.md: the line that begins with a text, and those that it goes on in. */
std::string documented (const std::string& beginning)
{
    return found (bytesOf (paths::source ("docs/use.md")), "\n    (" + beginning + "(?:[^\n]*\\\\\n)*[^\n]*)\n");
}

/** The columns of parallel's log that matter here. */
struct LogEntry
{
    int sequence;
    std::string machine;
    int exitStatus;
};

class Archive : public testing::Test
{
protected:
    Archive()
    {
        writeBytes (folder / "ssh-config", one.sshConfiguration() + two.sshConfiguration());
        fs::create_directory (folder / "home");

        // As archives are: names with all that a shell would stumble over, folders, lengths of all kinds.
        for (unsigned i = 0; i < 8; ++i)
        {
            const auto day = folder / (i % 2 == 0 ? "takes" : "takes/Montag, Büro");
            fs::create_directories (day);
            write (day + "/Anna's take " + std::to_string (i) + ".1 [raw] $HOME.wav",
                   wav16,
                   makeNoise (1, i < 4 ? 2400000 : 48000 * static_cast<int> (i), 16, i + 1));
        }

        one.start();
        two.start();
        takes = missing();
        EXPECT_THAT (takes, SizeIs (8));
    }

    Call callOf (const std::string& line) const
    {
        return { .arguments = { "-c", line },
                 .program = "sh",
                 .environment = { { "HOME", folder / "home" },
                                  { "PARALLEL", "--jobs 2" }, // on each machine, however many cores there are
                                  { "PARALLEL_SSH", "ssh -F " + folder / "ssh-config" } },
                 .folder = folder.path(),
                 .longestRun = 240 };
    }

    Outcome shell (const std::string& line) const { return run (callOf (line)); }

    /** The recordings that the first of the lines names. */
    std::vector<std::string> missing() const
    {
        EXPECT_EQ (shell (list).exitStatus, 0);
        return linesOf (bytesOf (folder / "archive.list"));
    }

    void waitForAResult() const
    {
        for (const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes (2); results().empty();)
        {
            ASSERT_LT (std::chrono::steady_clock::now(), deadline);
            std::this_thread::sleep_for (std::chrono::milliseconds (5));
        }
    }

    std::string resultOf (const std::string& take, const std::string& ending = ".wav") const
    {
        return folder / ("finished/" + fs::path (take).replace_extension (ending).string());
    }

    /** The results that there are with their figures, each with the time at which it came. */
    std::map<std::string, fs::file_time_type> results() const
    {
        std::map<std::string, fs::file_time_type> times;

        for (const auto& take : takes)
            if (fs::exists (resultOf (take)) && fs::exists (resultOf (take, ".json")))
                times[take] = fs::last_write_time (resultOf (take));

        return times;
    }

    std::vector<LogEntry> log() const
    {
        std::vector<LogEntry> entries;
        const std::regex columns ("^(\\d+)\t([^\t]+)\t[^\t]+\t[^\t]+\t[^\t]+\t[^\t]+\t(\\d+)\t");
        std::smatch match;

        for (const auto& line : linesOf (bytesOf (folder / "archive.log")))
            if (std::regex_search (line, match, columns))
                entries.push_back (
                    { .sequence = std::stoi (match[1]), .machine = match[2], .exitStatus = std::stoi (match[3]) });

        return entries;
    }

    /** Expects every result, with the bytes and the figures of a call on this machine, and nothing besides. */
    void expectAllAsByALocalCall() const
    {
        const auto local = run (Call { .arguments = { "--json", "takes", "-o", "local" }, .folder = folder.path() });
        ASSERT_EQ (local.exitStatus, 0) << local.errors;
        EXPECT_THAT (results(), SizeIs (takes.size()));

        for (const auto& take : takes)
            EXPECT_EQ (bytesOf (resultOf (take)),
                       bytesOf (std::regex_replace (resultOf (take), std::regex ("/finished/takes/"), "/local/")))
                << take;

        EXPECT_THAT (missing(), IsEmpty());
        const auto joining = shell (documented ("find finished "));
        ASSERT_EQ (joining.exitStatus, 0) << joining.errors;
        auto figures = Json::parse (bytesOf (folder / "figures.json"));
        auto expected = Json::parse (local.output);

        for (auto* document : { &figures, &expected })
            for (auto& result : document->at ("results"))
                result.erase ("output");

        EXPECT_EQ (figures.at ("version"), expected.at ("version"));
        EXPECT_THAT (figures.at ("results"), testing::UnorderedElementsAreArray (expected.at ("results")));
    }

    const TemporaryFolder folder;
    std::vector<std::string> takes;
    SshMachine one { "studio1", folder.path().string() };
    SshMachine two { "studio2", folder.path().string() };
    const std::string list = documented ("find takes ");
    const std::string render = documented ("RSYNC_OLD_ARGS=1 parallel ");
    const std::string work = list + "\n" + render;
};

TEST_F (Archive, IsFinishedByTheOtherMachineWhenOneEnds)
{
    Child parallel (callOf (work));
    two.waitFor ("larkspire-render");
    two.end();
    EXPECT_LT (results().size(), takes.size());
    const auto outcome = parallel.wait();
    EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;
    const auto entries = log();
    EXPECT_THAT (entries, SizeIs (takes.size()));
    EXPECT_THAT (entries, Each (Field (&LogEntry::exitStatus, 0)));
    EXPECT_THAT (entries, Contains (Field (&LogEntry::machine, "studio1")));

    const auto second = shell (work);
    EXPECT_EQ (second.exitStatus, 0) << second.errors;
    expectAllAsByALocalCall();

    // Nothing of the archive stays on the machine that is there.
    EXPECT_THAT (contentsOf (one.home()), Each (Not (HasSubstr ("take"))));
}

TEST_F (Archive, IsFinishedByASecondCallAfterBothHaveEnded)
{
    Child parallel (callOf (work));
    waitForAResult();
    two.waitFor ("larkspire-render");
    two.end();
    one.waitFor ("larkspire-render");
    one.end();
    const auto outcome = parallel.wait();
    const auto before = results();
    EXPECT_GT (outcome.exitStatus, 0) << outcome.errors;
    EXPECT_LT (before.size(), takes.size());
    EXPECT_THAT (missing(), SizeIs (takes.size() - before.size()));

    one.start();
    two.start();
    const auto second = shell (work);
    EXPECT_EQ (second.exitStatus, 0) << second.errors;
    expectAllAsByALocalCall();

    for (const auto& [take, time] : before)
        EXPECT_EQ (results().at (take), time) << take << " was rendered again";
}

TEST_F (Archive, IsFinishedByASecondCallAfterTheFirstWasInterrupted)
{
    // In the shell's place, for the signal to reach it.
    Child parallel (callOf ("exec env " + render));
    waitForAResult();
    two.waitFor ("larkspire-render");
    parallel.sendSignal (SIGINT);
    EXPECT_NE (parallel.wait().exitStatus, 0);
    EXPECT_LT (results().size(), takes.size());
    const auto second = shell (work);
    EXPECT_EQ (second.exitStatus, 0) << second.errors;
    expectAllAsByALocalCall();
}

TEST_F (Archive, HasNoResultForgottenThatWasLostOnItsWayBack)
{
    // As if a machine had ended between the two: rsync is found, and brings nothing.
    fs::create_directory (folder / "bin");
    writeBytes (folder / "bin/rsync",
                "#!/bin/sh\ncase \"$*\" in *--rsync-path*) exit 12; esac\nexec /usr/bin/rsync \"$@\"\n");
    fs::permissions (folder / "bin/rsync", fs::perms::owner_all);
    const auto lost = shell ("PATH='" + folder / "bin" + "':$PATH\n" + work);
    EXPECT_EQ (lost.exitStatus, 0) << "parallel counts what was not brought back; then its log could be gone by";
    EXPECT_THAT (results(), IsEmpty());

    const auto second = shell (work);
    EXPECT_EQ (second.exitStatus, 0) << second.errors;
    expectAllAsByALocalCall();
}

TEST_F (Archive, ListsWhatCannotBeRenderedAndWhatHasChanged)
{
    const auto& bad = takes.at (3);
    writeBytes (folder / bad, "no sound");
    const auto outcome = shell (work);
    EXPECT_EQ (outcome.exitStatus, 1) << outcome.errors;
    EXPECT_THAT (outcome.errors, HasSubstr (bad));
    EXPECT_THAT (missing(), ElementsAre (bad));

    // One that has changed is rendered anew too.
    const auto& changed = takes.front();
    fs::last_write_time (folder / changed, fs::last_write_time (resultOf (changed)) + std::chrono::seconds (1));
    EXPECT_THAT (missing(), ElementsAre (changed, bad));
    EXPECT_THAT (results(), SizeIs (takes.size() - 1));
    ASSERT_EQ (shell (documented ("find finished ")).exitStatus, 0);

    for (const auto& result : Json::parse (bytesOf (folder / "figures.json")).at ("results"))
        EXPECT_EQ (result.contains ("error"), result.at ("input") == bad) << result;
}
} // namespace

// SPDX-License-Identifier: AGPL-3.0-only
// The VST 3 bundle under the format's own validator.
#include "daws/Vst3Validator.h"
#include "support/FirstMatch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace
{
using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

/** One test of the validator's, as it has written it down. */
struct Verdict
{
    std::string suite;
    std::string name;
    std::vector<std::string> messages;
    bool passed = false;
};

std::vector<Verdict> verdictsIn (const std::string& output)
{
    std::vector<Verdict> verdicts;
    std::string suite;

    for (const auto& line : linesOf (output))
    {
        if (line.starts_with ("TestSuite : "))
            suite = line.substr (line.find (": ") + 2);
        else if (line.starts_with ("[") && line != "[Succeeded]" && line != "[XXXXXXX Failed]")
            verdicts.push_back ({ suite, line.substr (1, line.size() - 2), {} });
        else if (! verdicts.empty())
        {
            verdicts.back().messages.push_back (line);
            verdicts.back().passed |= line == "[Succeeded]";
        }
    }

    return verdicts;
}

/** What has come of all tests on one instance. */
const Outcome& onOneInstance()
{
    static const auto outcome = runVst3Validator ({ "-e" });
    return outcome;
}

/** What has come of them on a new instance for each. Only these reach the processor in every layout: on one instance,
    an earlier test has left it bypassed. */
const Outcome& onNewInstances()
{
    static const auto outcome = runVst3Validator ({ "-e", "-l" });
    return outcome;
}

/** The messages of a test; nothing if there is none of the name. */
std::vector<std::string> messagesOf (const std::string& suite, const std::string& name)
{
    for (const auto& verdict : verdictsIn (onNewInstances().output))
        if (verdict.suite == suite && verdict.name == name)
            return verdict.messages;

    return {};
}

const std::string general = "General Tests";
const std::string floats = "Single Precision (32 bit) Tests";

void expectThatAllPassed (const Outcome& outcome)
{
    EXPECT_EQ (outcome.exitStatus, 0) << outcome.output << outcome.errors;
    EXPECT_THAT (outcome.output, Not (HasSubstr ("ERROR:")));

    // A test that cannot be set up counts neither as passed nor as failed.
    const auto verdicts = verdictsIn (outcome.output);

    for (const auto& verdict : verdicts)
        EXPECT_TRUE (verdict.passed) << verdict.suite << ": " << verdict.name;

    EXPECT_EQ (found (outcome.output, "\nResult: ([0-9]+) tests passed, 0 tests failed\n"),
               std::to_string (verdicts.size()));
    EXPECT_GE (verdicts.size(), 500u);
}

TEST (Vst3Validator, FindsNoFaultInOneInstance)
{
    expectThatAllPassed (onOneInstance());
}

TEST (Vst3Validator, FindsNoFaultInNewInstances)
{
    expectThatAllPassed (onNewInstances());
}

TEST (Vst3Validator, SeesThePluginsIdentity)
{
    const auto& report = onNewInstances().output;
    EXPECT_THAT (report, HasSubstr ("\tvendor = Quendal\n"));
    EXPECT_THAT (report,
                 HasSubstr ("\tname = Quendal Larkspire\n"
                            "\tcategory = Audio Module Class\n"
                            "\tsubCategories = Fx|Dynamics\n"
                            "\tversion = 1.0.0\n"));
    EXPECT_THAT (allFound (report, "\tcid = ([0-9A-F]+)\n"),
                 AllOf (Contains ("ABCDEF019182FAEB5175656E546D7771"), Contains ("ABCDEF011234ABCD5175656E546D7771")));
}

TEST (Vst3Validator, SeesTheModesInStepsAndABypass)
{
    const auto messages = messagesOf (general, "Scan Parameters");
    EXPECT_THAT (messages, Contains (EndsWith ("This component exports 2 parameter(s)")));
    EXPECT_THAT (messages,
                 Contains (AllOf (HasSubstr ("[title=\"Mode\"]"), HasSubstr ("[type = D, default = 0.222222,"))));
    EXPECT_THAT (messages,
                 Contains (AllOf (HasSubstr ("[title=\"Bypass\"]"), HasSubstr ("[type = T, default = 0.000000,"))));
}

TEST (Vst3Validator, SeesOneBusEachWay)
{
    const auto messages = messagesOf (general, "Scan Buses");
    EXPECT_THAT (messages, Contains (EndsWith ("=> Audio Buses: [1 In(s) => 1 Out(s)]")));
    EXPECT_THAT (messages, Contains (HasSubstr (" In [0]: \"Input\" (Main-")));
    EXPECT_THAT (messages, Contains (HasSubstr (" Out[0]: \"Output\" (Main-")));
    EXPECT_THAT (messages, Contains (EndsWith ("=> Event Buses: [0 In(s) => 0 Out(s)]")));
}

TEST (Vst3Validator, ProcessesMonoAndStereoAndNoOtherLayout)
{
    int layouts = 0;
    std::vector<std::string> processed;

    for (const auto& [suite, name, messages, passed] : verdictsIn (onNewInstances().output))
    {
        if (suite != floats || ! name.starts_with ("In: "))
            continue;

        ++layouts;

        if (std::none_of (messages.begin(),
                          messages.end(),
                          [] (const auto& message) { return message.find ("is not supported") != std::string::npos; }))
            processed.push_back (name);
    }

    EXPECT_EQ (layouts, 15 * 15);
    EXPECT_THAT (
        processed,
        ElementsAre ("In: Mono: 1 Channels, Out: Mono: 1 Channels", "In: Stereo: 2 Channels, Out: Stereo: 2 Channels"));
}

TEST (Vst3Validator, ProcessesAtEveryRate)
{
    auto rates = messagesOf (floats, "Process Format");
    std::erase_if (rates, [] (const auto& message) { return message.find (" Hz") == std::string::npos; });
    EXPECT_THAT (rates, Each (EndsWith (" Hz - processed successfully!")));
    EXPECT_THAT (rates, testing::SizeIs (12));
    EXPECT_THAT (rates, AllOf (Contains (HasSubstr (" 44100 Hz")), Contains (HasSubstr (" 1234567.8 Hz"))));
}
} // namespace

// SPDX-License-Identifier: AGPL-3.0-only
#include "support/OpenProcessor.h"
#include "support/ProbeProcessor.h"

#include <gtest/gtest.h>

#include <cstring>

namespace
{
/** A processor that leaves the base class's programs in place. It has two parameters, and notes what it is restored
    from. */
class ProgramProcessor : public ProbeProcessor
{
public:
    ProgramProcessor()
    {
        addParameter (amount = newParameter ("amount"));
        addParameter (width = newParameter ("width"));
    }

    /** With two programs, "Soft" and "Loud", and no re-initialisation pending. */
    static std::unique_ptr<ProgramProcessor> settledWithTwoPrograms()
    {
        auto processor = std::make_unique<ProgramProcessor>();
        processor->programs = { { "Soft", "amount=\"0.25\" width=\"0.125\"" }, { "Loud", "amount=\"0.75\"" } };
        processor->runSilence (1);
        return processor;
    }

    void setStateInformation (const void* data, int sizeInBytes) override
    {
        restoredFrom = data;
        restored.emplace_back (data, static_cast<std::size_t> (sizeInBytes));
        ProbeProcessor::setStateInformation (data, sizeInBytes);
    }

    std::map<juce::String, juce::String> store() const { return settings; }

    juce::AudioParameterFloatQuendal* amount = nullptr;
    juce::AudioParameterFloatQuendal* width = nullptr;
    std::vector<juce::MemoryBlock> restored;
    const void* restoredFrom = nullptr;

private:
    static juce::AudioParameterFloatQuendal* newParameter (const char* id)
    {
        return new juce::AudioParameterFloatQuendal (id, id, DisplayMode::LinearAuto, 0.5f, 2, {});
    }
};

TEST (Programs, MakeTheProgramDefaultWhenFirstAskedForTheirNumber)
{
    ProgramProcessor processor;
    ASSERT_TRUE (processor.programs.empty());
    EXPECT_EQ (processor.getNumPrograms(), 1);
    EXPECT_EQ (processor.getNumPrograms(), 1) << "and only once";
    ASSERT_EQ (processor.programs.size(), 1u);
    EXPECT_EQ (processor.programs[0].name, "Default");
    EXPECT_EQ (processor.programs[0].fragment, "");
}

TEST (Programs, MakeTheProgramDefaultWhenFirstAskedForAName)
{
    ProgramProcessor processor;
    EXPECT_EQ (processor.getProgramName (0), "Default");
    EXPECT_EQ (processor.programs.size(), 1u);
}

TEST (Programs, MakeTheProgramDefaultWhenFirstRenamedAndKeepItsName)
{
    ProgramProcessor processor;
    processor.changeProgramName (0, "Mine");
    ASSERT_EQ (processor.programs.size(), 1u);
    EXPECT_EQ (processor.getProgramName (0), "Default");
}

TEST (Programs, AreNotMadeByAskingForTheCurrentOne)
{
    ProgramProcessor processor;
    EXPECT_EQ (processor.getCurrentProgram(), 0);
    EXPECT_TRUE (processor.programs.empty());
}

TEST (Programs, AreThoseThatTheProcessorDefines)
{
    const auto processor = ProgramProcessor::settledWithTwoPrograms();
    EXPECT_EQ (processor->getNumPrograms(), 2);
    EXPECT_EQ (processor->getProgramName (0), "Soft");
    EXPECT_EQ (processor->getProgramName (1), "Loud");
    EXPECT_EQ (processor->programs.size(), 2u);
}

TEST (Programs, KeepTheirNames)
{
    const auto processor = ProgramProcessor::settledWithTwoPrograms();
    processor->changeProgramName (0, "Mine");
    processor->changeProgramName (1, "Yours");
    processor->changeProgramName (77, "Theirs");
    EXPECT_EQ (processor->getProgramName (0), "Soft");
    EXPECT_EQ (processor->getProgramName (1), "Loud");
}

TEST (ProgramSwitch, RestoresTheFragmentsSettings)
{
    const auto processor = ProgramProcessor::settledWithTwoPrograms();
    processor->setSetting ("old", "entry");
    processor->stateTouched = false;
    processor->setCurrentProgram (1);

    EXPECT_EQ (processor->amount->get(), 0.75f);
    EXPECT_EQ (processor->width->get(), 0.5f) << "the fragment does not name it";
    EXPECT_EQ (processor->store(), (std::map<juce::String, juce::String> { { "amount", "0.75" } }));
    EXPECT_EQ (processor->getCurrentProgram(), 1);
    EXPECT_EQ (processor->appliedProgram, 1);
    EXPECT_EQ (processor->samplesSinceChange, 0);
    EXPECT_TRUE (processor->settingsDue);
    EXPECT_TRUE (processor->stateTouched);

    const int updatesBefore = processor->updates;
    processor->runSilence (2);
    EXPECT_EQ (processor->updates, updatesBefore + 1) << "at the next sample, once";
}

TEST (ProgramSwitch, TravelsAsAStateBlockThroughTheVirtualRestore)
{
    const auto processor = ProgramProcessor::settledWithTwoPrograms();
    processor->setCurrentProgram (0);

    const std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?> <settings amount=\"0.25\" width=\"0.125\"/>";
    ASSERT_EQ (processor->restored.size(), 1u);
    const auto& block = processor->restored.front();
    ASSERT_EQ (block.getSize(), text.size() + 9);

    const auto* bytes = static_cast<const char*> (block.getData());
    EXPECT_EQ (std::string (bytes, 4), "VC2!");
    EXPECT_EQ (juce::ByteOrder::littleEndianInt (bytes + 4), text.size());
    EXPECT_EQ (std::string (bytes + 8, text.size()), text);
    EXPECT_EQ (bytes[block.getSize() - 1], 0);

    EXPECT_EQ (processor->restoredFrom, processor->programScratch.getData());
    EXPECT_EQ (processor->programScratch.getSize(), block.getSize());
}

TEST (ProgramSwitch, LoadsProgram0AtTheFirstSwitch)
{
    const auto processor = ProgramProcessor::settledWithTwoPrograms();
    ASSERT_EQ (processor->getCurrentProgram(), 0);
    processor->setCurrentProgram (0);
    EXPECT_EQ (processor->amount->get(), 0.25f);
    EXPECT_EQ (processor->width->get(), 0.125f);
    EXPECT_EQ (processor->appliedProgram, 0);
}

TEST (ProgramSwitch, IsDroppedFromConstructionToTheFirstSample)
{
    ProgramProcessor processor;
    processor.programs = { { "Soft", "amount=\"0.25\"" }, { "Loud", "amount=\"0.75\"" } };
    processor.setSetting ("old", "entry");
    processor.stateTouched = false;
    processor.setCurrentProgram (1);

    EXPECT_EQ (processor.getCurrentProgram(), 1);
    EXPECT_TRUE (processor.stateTouched);
    EXPECT_EQ (processor.appliedProgram, -1);
    EXPECT_TRUE (processor.restored.empty());
    EXPECT_EQ (processor.amount->get(), 0.5f);
    EXPECT_EQ (processor.store().size(), 1u);
    EXPECT_EQ (processor.programScratch.getSize(), 65536u);

    processor.runSilence (10);
    EXPECT_TRUE (processor.restored.empty()) << "nothing comes back to it";

    processor.setCurrentProgram (1);
    EXPECT_EQ (processor.restored.size(), 1u);
    EXPECT_EQ (processor.amount->get(), 0.75f);
}

TEST (ProgramSwitch, IsDroppedBeforeTheListIsLookedAt)
{
    ProgramProcessor processor;
    processor.setCurrentProgram (5);
    EXPECT_EQ (processor.getCurrentProgram(), 5);
    EXPECT_TRUE (processor.programs.empty());
}

TEST (ProgramSwitch, IsDroppedRightAfterAnotherUntilTheBlockLoopHasRun)
{
    const auto processor = ProgramProcessor::settledWithTwoPrograms();
    processor->setCurrentProgram (1);
    processor->setCurrentProgram (0);
    EXPECT_EQ (processor->getCurrentProgram(), 0);
    EXPECT_EQ (processor->appliedProgram, 1);
    EXPECT_EQ (processor->restored.size(), 1u);
    EXPECT_EQ (processor->amount->get(), 0.75f);

    processor->runSilence (0);
    processor->setCurrentProgram (0);
    EXPECT_EQ (processor->restored.size(), 1u) << "an empty block runs nothing";

    processor->runSilence (1);
    processor->setCurrentProgram (0);
    EXPECT_EQ (processor->restored.size(), 2u);
    EXPECT_EQ (processor->amount->get(), 0.25f);
    EXPECT_EQ (processor->appliedProgram, 0);
}

TEST (ProgramSwitch, IsDroppedAfterARestoreOfAProject)
{
    const auto processor = ProgramProcessor::settledWithTwoPrograms();
    processor->setStateInformation ("no state", 8);
    ASSERT_TRUE (processor->settingsDue);
    processor->setCurrentProgram (1);
    EXPECT_EQ (processor->amount->get(), 0.5f);
    EXPECT_EQ (processor->appliedProgram, -1);
}

TEST (ProgramSwitch, IsDroppedWhereNoProgramOrOneIsDefined)
{
    for (const bool defined : { false, true })
        for (const bool due : { false, true })
        {
            ProgramProcessor processor;

            if (defined)
                processor.programs = { { "Only", "amount=\"0.25\"" } };

            processor.settingsDue = due;
            processor.stateTouched = false;
            processor.setCurrentProgram (0);

            EXPECT_TRUE (processor.stateTouched);
            EXPECT_TRUE (processor.restored.empty());
            EXPECT_EQ (processor.appliedProgram, -1);
            EXPECT_EQ (processor.settingsDue, due);
            EXPECT_EQ (processor.amount->get(), 0.5f);
        }
}

TEST (ProgramSwitch, AsksTheVirtualCountHowManyProgramsThereAre)
{
    struct CountingProcessor : ProgramProcessor
    {
        int getNumPrograms() override { return count; }
        int count = 1;
    };

    CountingProcessor processor;
    processor.programs = { { "Soft", "amount=\"0.25\"" }, { "Loud", "amount=\"0.75\"" } };
    processor.runSilence (1);
    processor.setCurrentProgram (1);
    EXPECT_TRUE (processor.restored.empty());

    processor.count = 2;
    processor.setCurrentProgram (1);
    EXPECT_EQ (processor.restored.size(), 1u);
}

TEST (ProgramSwitch, IsDroppedAsARepetition)
{
    const auto processor = ProgramProcessor::settledWithTwoPrograms();
    processor->setCurrentProgram (1);
    processor->runSilence (1);
    processor->amount->setValueNotifyingHost (0.1f);
    processor->stateTouched = false;
    processor->setCurrentProgram (1);

    EXPECT_TRUE (processor->stateTouched);
    EXPECT_EQ (processor->restored.size(), 1u);
    EXPECT_EQ (processor->amount->get(), 0.1f);
    EXPECT_FALSE (processor->settingsDue);
}

TEST (ProgramSwitch, CountsAsARepetitionAlsoAfterARestoreOfAProject)
{
    const auto processor = ProgramProcessor::settledWithTwoPrograms();
    juce::MemoryBlock project;
    processor->getStateInformation (project);

    processor->setCurrentProgram (1);
    processor->runSilence (1);
    processor->setStateInformation (project.getData(), static_cast<int> (project.getSize()));
    processor->runSilence (1);
    ASSERT_EQ (processor->amount->get(), 0.5f);
    EXPECT_EQ (processor->appliedProgram, 1);
    EXPECT_EQ (processor->getCurrentProgram(), 1);

    processor->setCurrentProgram (1);
    EXPECT_EQ (processor->amount->get(), 0.5f);
    processor->setCurrentProgram (0);
    EXPECT_EQ (processor->amount->get(), 0.25f) << "the other one is none";
}

TEST (ProgramSwitch, IsNoPartOfAProject)
{
    const auto saved = ProgramProcessor::settledWithTwoPrograms();
    saved->setCurrentProgram (1);
    juce::MemoryBlock project;
    saved->getStateInformation (project);

    const auto opened = ProgramProcessor::settledWithTwoPrograms();
    opened->setStateInformation (project.getData(), static_cast<int> (project.getSize()));
    EXPECT_EQ (opened->amount->get(), 0.75f);
    EXPECT_EQ (opened->getCurrentProgram(), 0);
    EXPECT_EQ (opened->appliedProgram, -1);
}

TEST (ProgramSwitch, ToAnEmptyFragmentKeepsTheParametersAndEmptiesTheStore)
{
    const auto processor = ProgramProcessor::settledWithTwoPrograms();
    processor->programs.push_back ({ "Empty", {} });
    processor->amount->setValueNotifyingHost (0.3f);
    processor->setSetting ("old", "entry");
    processor->setCurrentProgram (2);

    EXPECT_EQ (processor->restored.size(), 1u);
    EXPECT_EQ (processor->appliedProgram, 2);
    EXPECT_EQ (processor->amount->get(), 0.3f);
    EXPECT_TRUE (processor->store().empty());
    EXPECT_TRUE (processor->settingsDue);
}

TEST (ProgramSwitch, TakesEveryAttributeOfAFragmentIntoTheStore)
{
    const auto processor = ProgramProcessor::settledWithTwoPrograms();
    processor->programs.push_back (
        { "Wide", juce::String::fromUTF8 ("width='2' note=\"&lt;a &amp; b&gt; &quot;ö&quot;\"") });
    processor->setCurrentProgram (2);

    EXPECT_EQ (processor->width->get(), 1.0f) << "clamped as in any restore";
    EXPECT_EQ (processor->store(),
               (std::map<juce::String, juce::String> { { "note", juce::String::fromUTF8 ("<a & b> \"ö\"") },
                                                       { "width", "2" } }));
}

TEST (ProgramSwitch, IsOutOfReachInThePlugIn)
{
    OpenProcessor processor;
    processor.programs = { { "Soft", "mode=\"0\"" }, { "Loud", "mode=\"1\"" } };
    processor.settingsDue = false;
    processor.stateTouched = false;

    for (const int index : { 0, 1, -1, 1000 })
    {
        processor.setCurrentProgram (index);
        EXPECT_EQ (processor.getCurrentProgram(), 0);
        EXPECT_EQ (processor.getProgramName (index), "");
    }

    processor.changeProgramName (0, "Mine");
    EXPECT_EQ (processor.getNumPrograms(), 1);
    EXPECT_EQ (processor.programs[0].name, "Soft");
    EXPECT_EQ (processor.currentProgram, 0);
    EXPECT_EQ (processor.appliedProgram, -1);
    EXPECT_FALSE (processor.stateTouched);
    EXPECT_FALSE (processor.settingsDue);
    EXPECT_EQ (processor.modeParameter->get(), knobPosition (2));
}
} // namespace

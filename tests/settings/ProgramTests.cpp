// SPDX-License-Identifier: AGPL-3.0-only
#include "settings/ProcessorState.h"
#include "support/OpenProcessor.h"
#include "support/ProbeProcessor.h"

#include <gtest/gtest.h>

namespace
{
using namespace state_block;

/** A processor that leaves the base class's programs in place. It has two parameters, and notes what it is restored
    from. */
class ProgramProcessor : public ProbeProcessor
{
public:
    explicit ProgramProcessor (std::vector<juce::Program> list = {})
    {
        addParameter (amount = newParameter ("amount"));
        addParameter (width = newParameter ("width"));
        programs = std::move (list);
        setSetting ("old", "entry");
        stateTouched = false;
    }

    void setStateInformation (const void* data, int sizeInBytes) override
    {
        restoredFrom = data;
        restored.emplace_back (static_cast<const char*> (data), static_cast<std::size_t> (sizeInBytes));
        ProbeProcessor::setStateInformation (data, sizeInBytes);
    }

    Store store() const { return plain (settings); }

    /** Whether all switches so far have come to nothing. */
    bool hasLoadedNothing() const
    {
        return restored.empty() && appliedProgram == -1 && amount->get() == 0.5f && width->get() == 0.5f
               && store() == Store { { "old", "entry" } } && programScratch.getSize() == 65536u;
    }

    juce::AudioParameterFloatQuendal* amount = nullptr;
    juce::AudioParameterFloatQuendal* width = nullptr;
    std::vector<std::string> restored;
    const void* restoredFrom = nullptr;

private:
    static juce::AudioParameterFloatQuendal* newParameter (const char* id)
    {
        return new juce::AudioParameterFloatQuendal (id, id, DisplayMode::LinearAuto, 0.5f, 2, {});
    }
};

const std::vector<juce::Program> softAndLoud { { "Soft", "amount=\"0.25\" width=\"0.125\"" },
                                               { "Loud", "amount=\"0.75\"" } };

/** With two programs and no re-initialisation pending. */
struct SettledProcessor : ProgramProcessor
{
    SettledProcessor() : ProgramProcessor (softAndLoud) { runSilence (1); }
};

TEST (Programs, AreOneNamedDefaultWhereNoneIsDefinedAndSomebodyAsks)
{
    ProgramProcessor asked;
    EXPECT_EQ (asked.getCurrentProgram(), 0);
    EXPECT_TRUE (asked.programs.empty()) << "this question makes none";
    EXPECT_EQ (asked.getNumPrograms(), 1);
    EXPECT_EQ (asked.getNumPrograms(), 1) << "and only once";
    ASSERT_EQ (asked.programs.size(), 1u);
    EXPECT_EQ (asked.programs[0].name, "Default");
    EXPECT_EQ (asked.programs[0].fragment, "");

    ProgramProcessor named;
    EXPECT_EQ (named.getProgramName (0), "Default");
    EXPECT_EQ (named.programs.size(), 1u);

    ProgramProcessor renamed;
    renamed.changeProgramName (0, "Mine");
    ASSERT_EQ (renamed.programs.size(), 1u);
    EXPECT_EQ (renamed.getProgramName (0), "Default");
}

TEST (Programs, AreThoseThatTheProcessorDefinesAndKeepTheirNames)
{
    SettledProcessor processor;
    processor.changeProgramName (0, "Mine");
    processor.changeProgramName (1, "Yours");
    processor.changeProgramName (77, "Theirs");
    EXPECT_EQ (processor.getNumPrograms(), 2);
    EXPECT_EQ (processor.getProgramName (0), "Soft");
    EXPECT_EQ (processor.getProgramName (1), "Loud");
    EXPECT_EQ (processor.programs.size(), 2u);
}

TEST (ProgramSwitch, RestoresTheFragmentsSettings)
{
    SettledProcessor processor;
    processor.setCurrentProgram (1);

    EXPECT_EQ (processor.amount->get(), 0.75f);
    EXPECT_EQ (processor.width->get(), 0.5f) << "the fragment does not name it";
    EXPECT_EQ (processor.store(), (Store { { "amount", "0.75" } }));
    EXPECT_EQ (processor.getCurrentProgram(), 1);
    EXPECT_EQ (processor.appliedProgram, 1);
    EXPECT_EQ (processor.samplesSinceChange, 0);
    EXPECT_TRUE (processor.settingsDue);
    EXPECT_TRUE (processor.stateTouched);

    const int updatesBefore = processor.updates;
    processor.runSilence (2);
    EXPECT_EQ (processor.updates, updatesBefore + 1) << "at the next sample, once";
}

TEST (ProgramSwitch, LoadsProgram0AtTheFirstSwitchAsAStateBlockThroughTheVirtualRestore)
{
    SettledProcessor processor;
    ASSERT_EQ (processor.getCurrentProgram(), 0);
    processor.setCurrentProgram (0);
    EXPECT_EQ (processor.amount->get(), 0.25f);
    EXPECT_EQ (processor.width->get(), 0.125f);
    EXPECT_EQ (processor.appliedProgram, 0);

    EXPECT_EQ (processor.restored, (std::vector { blockWith ("amount=\"0.25\" width=\"0.125\"") }));
    EXPECT_EQ (processor.restoredFrom, processor.programScratch.getData());
    EXPECT_EQ (processor.programScratch.getSize(), processor.restored.front().size());
}

TEST (ProgramSwitch, IsDroppedFromConstructionToTheFirstSample)
{
    ProgramProcessor processor (softAndLoud);
    processor.setCurrentProgram (1);
    EXPECT_EQ (processor.getCurrentProgram(), 1);
    EXPECT_TRUE (processor.stateTouched);
    EXPECT_TRUE (processor.hasLoadedNothing());

    processor.runSilence (10);
    EXPECT_TRUE (processor.hasLoadedNothing()) << "nothing comes back to it";

    processor.setCurrentProgram (1);
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
    SettledProcessor processor;
    processor.setCurrentProgram (1);
    processor.setCurrentProgram (0);
    EXPECT_EQ (processor.getCurrentProgram(), 0);
    EXPECT_EQ (processor.appliedProgram, 1);
    EXPECT_EQ (processor.amount->get(), 0.75f);

    processor.runSilence (0);
    processor.setCurrentProgram (0);
    EXPECT_EQ (processor.restored.size(), 1u) << "an empty block runs nothing";

    processor.runSilence (1);
    processor.setCurrentProgram (0);
    EXPECT_EQ (processor.restored.size(), 2u);
    EXPECT_EQ (processor.amount->get(), 0.25f);
    EXPECT_EQ (processor.appliedProgram, 0);
}

TEST (ProgramSwitch, IsDroppedWhereNoProgramOrOneIsDefined)
{
    for (const auto& list : { std::vector<juce::Program> {}, { { "Only", "amount=\"0.25\"" } } })
        for (const bool due : { false, true })
        {
            ProgramProcessor processor (list);
            processor.settingsDue = due;
            processor.setCurrentProgram (0);
            EXPECT_TRUE (processor.stateTouched);
            EXPECT_TRUE (processor.hasLoadedNothing());
            EXPECT_EQ (processor.settingsDue, due);
        }
}

TEST (ProgramSwitch, AsksTheVirtualCountHowManyProgramsThereAre)
{
    struct CountingProcessor : SettledProcessor
    {
        int getNumPrograms() override { return count; }
        int count = 1;
    };

    CountingProcessor processor;
    processor.setCurrentProgram (1);
    EXPECT_TRUE (processor.hasLoadedNothing());

    processor.count = 2;
    processor.setCurrentProgram (1);
    EXPECT_EQ (processor.restored.size(), 1u);
}

TEST (ProgramSwitch, IsDroppedAsARepetition)
{
    SettledProcessor processor;
    processor.setCurrentProgram (1);
    processor.runSilence (1);
    processor.amount->setValueNotifyingHost (0.1f);
    processor.stateTouched = false;
    processor.setCurrentProgram (1);

    EXPECT_TRUE (processor.stateTouched);
    EXPECT_EQ (processor.restored.size(), 1u);
    EXPECT_EQ (processor.amount->get(), 0.1f);
    EXPECT_FALSE (processor.settingsDue);
}

TEST (ProgramSwitch, IsNoPartOfAProjectWhoseRestoreLeavesTheProgramsAsTheyAre)
{
    SettledProcessor processor;
    const auto project = save (processor);
    processor.setCurrentProgram (1);
    processor.runSilence (1);
    restore (processor, project);
    ASSERT_EQ (processor.amount->get(), 0.5f);
    EXPECT_EQ (processor.appliedProgram, 1);
    EXPECT_EQ (processor.getCurrentProgram(), 1);

    processor.setCurrentProgram (0);
    EXPECT_EQ (processor.amount->get(), 0.5f) << "dropped: the restore asks for a re-initialisation too";

    processor.runSilence (1);
    processor.setCurrentProgram (1);
    EXPECT_EQ (processor.amount->get(), 0.5f) << "still a repetition";

    processor.setCurrentProgram (0);
    EXPECT_EQ (processor.amount->get(), 0.25f);

    SettledProcessor other;
    restore (other, save (processor));
    EXPECT_EQ (other.amount->get(), 0.25f);
    EXPECT_EQ (other.appliedProgram, -1);
}

TEST (ProgramSwitch, ToAnEmptyFragmentKeepsTheParametersAndEmptiesTheStore)
{
    SettledProcessor processor;
    processor.programs.push_back ({ "Empty", {} });
    processor.amount->setValueNotifyingHost (0.3f);
    processor.setCurrentProgram (2);

    EXPECT_EQ (processor.restored.size(), 1u);
    EXPECT_EQ (processor.appliedProgram, 2);
    EXPECT_EQ (processor.amount->get(), 0.3f);
    EXPECT_TRUE (processor.store().empty());
    EXPECT_TRUE (processor.settingsDue);
}

TEST (ProgramSwitch, TakesEveryAttributeOfAFragmentIntoTheStore)
{
    SettledProcessor processor;
    processor.programs.push_back (
        { "Wide", juce::String::fromUTF8 ("width='2' note=\"&lt;a &amp; b&gt; &quot;ö&quot;\"") });
    processor.setCurrentProgram (2);

    EXPECT_EQ (processor.width->get(), 1.0f) << "clamped as in any restore";
    EXPECT_EQ (processor.store(), (Store { { "note", "<a & b> \"ö\"" }, { "width", "2" } }));
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

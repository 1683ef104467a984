// SPDX-License-Identifier: AGPL-3.0-only
#include "support/OpenProcessor.h"

#include <gtest/gtest.h>

#include <cstring>

namespace
{
using juce::AudioChannelSet;

TEST (Processor, AcceptsOnlyMonoToMonoAndStereoToStereo)
{
    const OpenProcessor processor;
    const std::vector<AudioChannelSet> sets { AudioChannelSet::disabled(),      AudioChannelSet::mono(),
                                              AudioChannelSet::stereo(),        AudioChannelSet::createLCR(),
                                              AudioChannelSet::create5point1(), AudioChannelSet::discreteChannels (2) };

    for (const auto& in : sets)
        for (const auto& out : sets)
        {
            const bool wanted = in == out && (in == AudioChannelSet::mono() || in == AudioChannelSet::stereo());
            EXPECT_EQ (processor.isBusesLayoutSupported ({ { in }, { out } }), wanted)
                << in.getDescription() << " to " << out.getDescription();
        }
}

TEST (Processor, TakesAMissingBusForADisabledOne)
{
    const OpenProcessor processor;
    EXPECT_FALSE (processor.isBusesLayoutSupported ({ {}, {} }));
    EXPECT_FALSE (processor.isBusesLayoutSupported ({ {}, { AudioChannelSet::stereo() } }));
    EXPECT_FALSE (processor.isBusesLayoutSupported ({ { AudioChannelSet::stereo() }, {} }));
}

TEST (Processor, HasOneStereoBusEachWay)
{
    const OpenProcessor processor;
    ASSERT_EQ (processor.getBusCount (true), 1);
    ASSERT_EQ (processor.getBusCount (false), 1);
    EXPECT_EQ (processor.getBus (true, 0)->getName(), "Input");
    EXPECT_EQ (processor.getBus (false, 0)->getName(), "Output");
    EXPECT_EQ (processor.getBus (true, 0)->getDefaultLayout(), AudioChannelSet::stereo());
    EXPECT_EQ (processor.getBus (false, 0)->getDefaultLayout(), AudioChannelSet::stereo());
}

TEST (Processor, AnswersTheHostsQuestions)
{
    OpenProcessor processor;
    EXPECT_EQ (processor.getName(), "Quendal Larkspire");
    EXPECT_EQ (processor.getTailLengthSeconds(), 0.0);
    EXPECT_FALSE (processor.acceptsMidi());
    EXPECT_FALSE (processor.producesMidi());
    EXPECT_FALSE (processor.isMidiEffect());
    EXPECT_TRUE (processor.hasEditor());
    EXPECT_EQ (processor.getLatencySamples(), 0);
}

TEST (Processor, HasOneParameterCalledMode)
{
    OpenProcessor processor;
    ASSERT_EQ (processor.getParameters().size(), 1);
    EXPECT_EQ (processor.getParameters().getFirst(), processor.modeParameter);
    EXPECT_EQ (processor.modeParameter->paramID, "mode");
    EXPECT_EQ (processor.modeParameter->name, "Mode");
    EXPECT_EQ (processor.modeParameter->displayMode, 10);
    EXPECT_EQ (processor.modeParameter->numSteps, 10);
    EXPECT_EQ (processor.modeParameter->get(), knobPosition (2));
    EXPECT_EQ (processor.modeParameter->getChoices(),
               (std::vector<std::string> { "bypass", "Gentle", "Medium", "Powerful" }));
}

TEST (Processor, StartsWithUndesignedFiltersAndFixedRiders)
{
    const OpenProcessor processor;
    EXPECT_EQ (processor.modeIndex, 2);
    EXPECT_EQ (processor.levelSum, 0.0f);
    EXPECT_EQ (processor.levelCount, 0);

    const larkspire::PeakingFilter zero {};
    for (const auto* filter : { processor.airFilter, processor.bodyFilter, processor.spareFilter })
        EXPECT_EQ (std::memcmp (filter, &zero, sizeof (zero)), 0);

    const float expected[8] = { 1.0f, 1.0f, 0.5f, 0.5f, 1.0f, 0.75f, 0.5f, 1.0f };
    EXPECT_EQ (std::memcmp (processor.leveller, expected, sizeof (expected)), 0);
    EXPECT_EQ (std::memcmp (processor.expander, expected, sizeof (expected)), 0);
}

TEST (Processor, KeepsItsOldRateAfterAPreparationUntilTheNextRefresh)
{
    OpenProcessor processor;
    std::vector<float> left (65534, 0.1f);
    std::vector<float> right (65534, 0.1f);
    processor.giveRate (48000.0);
    processor.run (left, right); // refreshes at samples 1 and 2 (the first watch finds a change)
    ASSERT_EQ (processor.sampleRate, 48000.0);

    processor.giveRate (44100.0);
    processor.prepareToPlay (44100.0, 512);
    EXPECT_FALSE (processor.settingsDue);
    std::vector<float> one (1, 0.1f);
    processor.run (one, one); // counter 65535
    EXPECT_EQ (processor.sampleRate, 48000.0);
    processor.run (one, one); // counter 0
    EXPECT_EQ (processor.sampleRate, 44100.0);
}

TEST (Processor, IgnoresPreparationAndRelease)
{
    OpenProcessor processor;
    std::vector<float> left (1000, 0.3f);
    std::vector<float> right (1000, -0.2f);
    processor.run (left, right);

    const auto memory = processor.memory();
    processor.releaseResources();
    processor.prepareToPlay (96000.0, 128);
    processor.reset();

    EXPECT_FALSE (processor.settingsDue);
    EXPECT_EQ (processor.oversamplerBlockSize, 32768u);
    EXPECT_EQ (processor.preparedBlockSize, 8192);
    EXPECT_EQ (processor.memory(), memory);
}

TEST (Processor, ShowsTheHostOneProgramWithoutAName)
{
    OpenProcessor processor;
    juce::MemoryBlock state;
    processor.getStateInformation (state);
    processor.setStateInformation (state.getData(), static_cast<int> (state.getSize()));
    processor.setCurrentProgram (7);
    processor.changeProgramName (0, "Name");

    EXPECT_EQ (processor.getNumPrograms(), 1);
    EXPECT_EQ (processor.getCurrentProgram(), 0);

    for (const int index : { -1, 0, 1, 1000 })
        EXPECT_EQ (processor.getProgramName (index), "");

    EXPECT_TRUE (processor.programs.empty()) << "the base class's programs are out of reach";
}

TEST (Processor, NeverTouchesTheSpareFilter)
{
    OpenProcessor processor;
    const larkspire::PeakingFilter zero {};

    for (int position = 0; position < 10; ++position)
    {
        processor.setMode (knobPosition (position));
        std::vector<float> left (200, 0.5f);
        std::vector<float> right (200, -0.5f);
        processor.run (left, right);
        ASSERT_EQ (std::memcmp (processor.spareFilter, &zero, sizeof (zero)), 0) << position;
    }
}
} // namespace

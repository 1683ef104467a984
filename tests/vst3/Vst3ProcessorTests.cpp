// SPDX-License-Identifier: AGPL-3.0-only
#include "vst3/Vst3Processor.h"

#include "settings/ProcessorState.h"
#include "support/Comparison.h"
#include "support/OpenProcessor.h"
#include "support/vst3/ByteStream.h"
#include "support/vst3/ParameterQueue.h"
#include "vst3/PositionParameter.h"
#include "vst3/RecordingWrapper.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

namespace
{
using juce::AudioChannelSet;
using namespace Steinberg;

/** The processor with what it has of the base class open to the tests. */
class OpenVst3Processor : public Opened<larkspire::Vst3Processor>
{
public:
    void giveRate (double rate) { setRateAndBufferSizeDetails (rate, 512); }
    void setMode (float value) { modeParameter->setValueNotifyingHost (value); }
    juce::VST3ClientExtensions& extensions() { return *getVST3ClientExtensions(); }
};

TEST (Vst3Processor, HasNoProgramWhateverItRestores)
{
    OpenVst3Processor processor;
    EXPECT_EQ (processor.getNumPrograms(), 0);

    const std::vector<std::string> blocks { state_block::save (processor),
                                            state_block::blockWith ("mode=\"0.3333\" programs=\"7\" program=\"3\""),
                                            state_block::blockWith ("mode=\"0.3333\""),
                                            std::string (100, 'x'),
                                            "" };

    for (const auto& block : blocks)
    {
        state_block::restore (processor, block);
        EXPECT_EQ (processor.getNumPrograms(), 0);

        for (const int index : { -1, 0, 1, 1000 })
        {
            processor.setCurrentProgram (index);
            processor.changeProgramName (index, "Name");
            EXPECT_EQ (processor.getProgramName (index), "");
            EXPECT_EQ (processor.getCurrentProgram(), 0);
            EXPECT_EQ (processor.getNumPrograms(), 0);
        }

        EXPECT_TRUE (processor.programs.empty()) << "the base class's programs are out of reach";
    }
}

TEST (Vst3Processor, HasOneStereoBusEachWayThatIsOn)
{
    const OpenVst3Processor processor;

    for (const bool isInput : { true, false })
    {
        ASSERT_EQ (processor.getBusCount (isInput), 1);
        const auto& bus = *processor.getBus (isInput, 0);
        EXPECT_TRUE (bus.isEnabled());
        EXPECT_EQ (bus.getCurrentLayout(), AudioChannelSet::stereo());
        EXPECT_EQ (bus.getDefaultLayout(), AudioChannelSet::stereo());
        EXPECT_EQ (bus.getName(), isInput ? "Input" : "Output");
    }

    EXPECT_EQ (processor.getTotalNumInputChannels(), 2);
    EXPECT_EQ (processor.getTotalNumOutputChannels(), 2);
}

TEST (Vst3Processor, AcceptsTheLayoutsOfTheOriginal)
{
    OpenVst3Processor processor;
    OpenProcessor original;
    const std::vector<AudioChannelSet> sets { AudioChannelSet::disabled(),      AudioChannelSet::mono(),
                                              AudioChannelSet::stereo(),        AudioChannelSet::createLCR(),
                                              AudioChannelSet::create5point1(), AudioChannelSet::discreteChannels (2) };

    for (const auto& in : sets)
        for (const auto& out : sets)
        {
            const juce::AudioProcessor::BusesLayout layout { { in }, { out } };
            EXPECT_EQ (processor.setBusesLayout (layout), original.setBusesLayout (layout))
                << in.getDescription() << " to " << out.getDescription();
            EXPECT_EQ (processor.getBusesLayout(), original.getBusesLayout());
        }

    EXPECT_TRUE (processor.setBusesLayout ({ { AudioChannelSet::mono() }, { AudioChannelSet::mono() } }));
}

/** Writes down what a host would be told. */
struct ToldHost : juce::AudioProcessorListener
{
    void audioProcessorParameterChanged (juce::AudioProcessor*, int index, float value) override
    {
        changes.emplace_back (index, value);
    }
    void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails&) override {}

    std::vector<std::pair<int, float>> changes;
};

TEST (Vst3Processor, HasOneParameterOfPositionsInPlaceOfTheOriginals)
{
    OpenVst3Processor processor;
    ASSERT_EQ (processor.getParameters().size(), 1);
    EXPECT_EQ (processor.getParameters().getFirst(), processor.modeParameter);
    EXPECT_NE (dynamic_cast<larkspire::PositionParameter*> (processor.modeParameter), nullptr);
    EXPECT_EQ (processor.modeParameter->paramID, "mode");
    EXPECT_EQ (processor.modeParameter->name, "Mode");
    EXPECT_EQ (processor.modeParameter->getParameterIndex(), 0);
    EXPECT_EQ (processor.modeParameter->get(), knobPosition (2));
    EXPECT_EQ (processor.modeParameter->choices, OpenProcessor().modeParameter->choices);
    EXPECT_EQ (processor.getParameterTree().getParameters (true).size(), 1) << "it is the processor's own";
    EXPECT_EQ (processor.getBypassParameter(), nullptr);

    ToldHost host;
    processor.addListener (&host);
    processor.setMode (0.5f);
    processor.removeListener (&host);
    EXPECT_EQ (host.changes, (std::vector { std::pair (0, 0.5f) }));
}

TEST (Vst3Processor, AnswersTheHostsQuestionsAsTheOriginalDoes)
{
    OpenVst3Processor processor;
    EXPECT_EQ (processor.getName(), "Quendal Larkspire");
    EXPECT_EQ (processor.getTailLengthSeconds(), 0.0);
    EXPECT_EQ (processor.getLatencySamples(), 0);
    EXPECT_FALSE (processor.acceptsMidi());
    EXPECT_FALSE (processor.producesMidi());
    EXPECT_FALSE (processor.isMidiEffect());
    EXPECT_FALSE (processor.supportsDoublePrecisionProcessing());
    EXPECT_TRUE (processor.hasEditor());
}

/** What JUCE's VST 3 wrapper saves behind a state block: the host's bypass. */
std::string wrappersTrail()
{
    using namespace std::string_literals;
    return "\0\0\0\0\0\0\0\0JUCEPrivateData\0\1\1Bypass\0\1\1\3\0\x1d\0\0\0\0\0\0\0JUCEPrivateData"s;
}

TEST (Vst3Processor, OpensTheStatesOfTheOriginalAndTheOtherWayRound)
{
    for (int step = 0; step < 10; ++step)
        for (const auto& trail : { std::string(), wrappersTrail() })
        {
            OpenProcessor original;
            OpenVst3Processor processor;
            original.setMode (knobPosition (step));
            processor.setMode (knobPosition ((step + 5) % 10));
            state_block::restore (processor, state_block::save (original) + trail);
            EXPECT_NEAR (processor.modeParameter->get(), knobPosition (step), 5e-5) << step;

            original.setMode (knobPosition ((step + 5) % 10));
            state_block::restore (original, state_block::save (processor) + trail);
            EXPECT_NEAR (original.modeParameter->get(), knobPosition (step), 5e-5) << step;
        }
}

TEST (Vst3Processor, SavesWhatTheOriginalSaves)
{
    OpenProcessor original;
    OpenVst3Processor processor;
    const auto block = state_block::blockWith ("mode=\"0.3333\" theirs=\"value\"");
    state_block::restore (original, block);
    state_block::restore (processor, block);
    EXPECT_EQ (state_block::timelessAttributesOf (state_block::save (processor)),
               state_block::timelessAttributesOf (state_block::save (original)));
    EXPECT_EQ (state_block::valueOf (state_block::save (processor), "theirs"), "value");
}

/** Runs a signal in blocks of several sizes; on a mono layout its left channel alone. */
template <typename Processor>
Signal through (Processor& processor, Signal signal, bool mono)
{
    constexpr std::array<std::size_t, 5> sizes { 1, 0, 64, 511, 1000 };

    for (std::size_t done = 0, block = 0; done < signal.left.size(); ++block)
    {
        const auto length = std::min (sizes.at (block % sizes.size()), signal.left.size() - done);
        std::vector<std::vector<float>> channels;

        for (auto* channel : { &signal.left, &signal.right })
            channels.emplace_back (channel->data() + done, channel->data() + done + length);

        if (mono)
            channels.pop_back();

        processor.run (channels);
        std::ranges::copy (channels.front(), signal.left.data() + done);
        std::ranges::copy (channels.back(), signal.right.data() + done);
        done += length;
    }

    return signal;
}

class Vst3Sound : public testing::TestWithParam<int>
{
};

INSTANTIATE_TEST_SUITE_P (AtPosition, Vst3Sound, testing::Range (0, 10));

TEST_P (Vst3Sound, IsTheOriginalsToTheBit)
{
    for (const auto& signal : testSignals (3000))
        for (const bool mono : { false, true })
        {
            OpenProcessor original;
            OpenVst3Processor processor;
            const auto set = mono ? AudioChannelSet::mono() : AudioChannelSet::stereo();
            const juce::AudioProcessor::BusesLayout layout { { set }, { set } };
            ASSERT_TRUE (original.setBusesLayout (layout) && processor.setBusesLayout (layout));
            auto expected = signal;
            auto actual = signal;

            for (const int step : { GetParam(), (GetParam() + 3) % 10 })
            {
                original.giveRate (48000.0);
                processor.giveRate (48000.0);
                original.setMode (knobPosition (step));
                processor.setMode (knobPosition (step));
                expected = through (original, expected, mono);
                actual = through (processor, actual, mono);
                ASSERT_TRUE (compare (actual, expected).sameBits) << signal.name << (mono ? ", mono" : ", stereo");
            }
        }
}

TEST (Vst3Processor, SilencesABlockWithTooFewChannelsAndGoesOnAsIfThereHadBeenNone)
{
    struct Row
    {
        bool isMono;
        int channels;
        int frames;
    };

    for (const auto& [isMono, channels, frames] :
         { Row { false, 0, 64 }, { false, 1, 64 }, { false, 1, 0 }, { false, 0, 0 }, { true, 0, 64 }, { true, 0, 0 } })
    {
        OpenVst3Processor processor;
        OpenVst3Processor twin;
        const auto set = isMono ? AudioChannelSet::mono() : AudioChannelSet::stereo();

        for (auto* each : { &processor, &twin })
        {
            ASSERT_TRUE (each->setBusesLayout ({ { set }, { set } }));
            each->giveRate (48000.0);
            through (*each, noise (2000, -12.0, 1), isMono);
        }

        juce::AudioBuffer<float> tooFew (channels, frames);
        juce::MidiBuffer midi;

        for (int channel = 0; channel < channels; ++channel)
            std::fill_n (tooFew.getWritePointer (channel), frames, 0.5f);

        processor.setMode (knobPosition (3));
        twin.setMode (knobPosition (3));
        processor.processBlock (tooFew, midi);

        for (int channel = 0; channel < channels; ++channel)
            for (int frame = 0; frame < frames; ++frame)
                ASSERT_EQ (bitsOf (tooFew.getSample (channel, frame)), bitsOf (0.0f));

        EXPECT_EQ (processor.refreshCounter, twin.refreshCounter);
        EXPECT_EQ (processor.samplesSinceChange, twin.samplesSinceChange);
        const auto next = noise (2000, -12.0, 2);
        EXPECT_TRUE (compare (through (processor, next, isMono), through (twin, next, isMono)).sameBits)
            << channels << " channels of " << frames;
    }
}

TEST (Vst3Processor, LeavesABlockAloneInTheHostsBypassHoweverManyChannelsItHas)
{
    OpenVst3Processor processor;
    juce::MidiBuffer midi;

    for (const int channels : { 0, 1, 2 })
    {
        juce::AudioBuffer<float> buffer (channels, 64);

        for (int channel = 0; channel < channels; ++channel)
            std::fill_n (buffer.getWritePointer (channel), 64, 25.0f);

        processor.processBlockBypassed (buffer, midi);

        for (int channel = 0; channel < channels; ++channel)
            EXPECT_EQ (buffer.getSample (channel, 63), 25.0f) << channels;
    }
}

TEST (Vst3Processor, StandsForTheVst2PluginAndItsOneParameter)
{
    OpenVst3Processor processor;
    constexpr std::array<unsigned char, 16> vst2Plugin { 0x56, 0x53, 0x54, 0x54, 0x6d, 0x77, 0x71, 0x71,
                                                         0x75, 0x65, 0x6e, 0x64, 0x61, 0x6c, 0x20, 0x6c };
    const auto classes = processor.extensions().getCompatibleClasses();
    ASSERT_EQ (classes.size(), 1u);

    for (std::size_t i = 0; i < vst2Plugin.size(); ++i)
        EXPECT_EQ (std::to_integer<unsigned char> (classes.front().at (i)), vst2Plugin.at (i)) << i;

    EXPECT_EQ (processor.extensions().getCompatibleParameterIds (classes.front()),
               (std::map<std::uint32_t, juce::String> { { 0u, "mode" } }));
}

TEST (Vst3Processor, GivesHostsTheGuardedWayToTheStateOfTheWrapper)
{
    OpenVst3Processor processor;
    RecordingWrapper wrapper;
    processor.setPlayHead (&wrapper);
    void* object = nullptr;
    ASSERT_EQ (processor.extensions().queryIAudioProcessor (Vst::IComponent_iid, &object), kResultOk);
    EXPECT_EQ (wrapper.references, 2u);
    auto& guarded = *static_cast<Vst::IComponent*> (object);
    EXPECT_NE (&guarded, static_cast<Vst::IComponent*> (&wrapper));

    ByteStream cutOff ("CcnK");
    EXPECT_NE (guarded.setState (&cutOff), kResultOk);
    EXPECT_TRUE (wrapper.states.empty()) << "it came through the guard";

    EXPECT_EQ (guarded.release(), 1u);
    processor.setPlayHead (nullptr);
}

TEST (Vst3Processor, GivesHostsTheGuardedWayToTheAudioOfTheWrapperAndNoOtherInterface)
{
    OpenVst3Processor processor;
    RecordingWrapper wrapper;
    processor.setPlayHead (&wrapper);

    for (const auto* id : { &FUnknown_iid, &IPluginBase_iid })
    {
        void* object = nullptr;
        EXPECT_NE (processor.extensions().queryIAudioProcessor (*id, &object), kResultOk);
        EXPECT_EQ (object, nullptr);
    }

    EXPECT_EQ (wrapper.references, 1u);
    void* object = nullptr;
    ASSERT_EQ (processor.extensions().queryIAudioProcessor (Vst::IAudioProcessor_iid, &object), kResultOk);
    EXPECT_EQ (wrapper.references, 2u);
    auto& guarded = *static_cast<Vst::IAudioProcessor*> (object);
    EXPECT_NE (&guarded, static_cast<Vst::IAudioProcessor*> (&wrapper));

    Vst::ProcessData block;
    block.symbolicSampleSize = Vst::kSample64;
    EXPECT_EQ (guarded.process (block), kResultOk);
    ASSERT_EQ (wrapper.data.size(), 1u);
    EXPECT_EQ (wrapper.data.front().symbolicSampleSize, Vst::kSample32) << "it came through the guard";

    EXPECT_EQ (guarded.release(), 1u);
    EXPECT_EQ (wrapper.references, 1u);
    processor.setPlayHead (nullptr);
}

TEST (Vst3Processor, HasNoWayToGiveWithoutAWrapper)
{
    struct : juce::AudioPlayHead
    {
        juce::Optional<PositionInfo> getPosition() const override { return {}; }
    } anyPlayHead;

    OpenVst3Processor processor;

    for (auto* playHead :
         { static_cast<juce::AudioPlayHead*> (nullptr), static_cast<juce::AudioPlayHead*> (&anyPlayHead) })
    {
        processor.setPlayHead (playHead);
        void* object = nullptr;
        EXPECT_NE (processor.extensions().queryIAudioProcessor (Vst::IAudioProcessor_iid, &object), kResultOk);
        EXPECT_EQ (object, nullptr);
        processor.extensions().setIHostApplication (nullptr);
    }

    processor.setPlayHead (nullptr);
}

TEST (Vst3Processor, TurnsTheWrappersBusesOnWhenItLearnsOfItsHost)
{
    OpenVst3Processor processor;
    RecordingWrapper wrapper;
    processor.setPlayHead (&wrapper);
    EXPECT_TRUE (wrapper.activations.empty());
    processor.extensions().setIHostApplication (nullptr);
    EXPECT_EQ (wrapper.activations,
               (std::vector<RecordingWrapper::Activation> { { Vst::kAudio, Vst::kInput, 0, TBool { 1 } },
                                                            { Vst::kAudio, Vst::kOutput, 0, TBool { 1 } } }));
    processor.setPlayHead (nullptr);
}

TEST (Vst3Processor, TakesTheKnobsChangesOutOfABlock)
{
    OpenVst3Processor processor;
    RecordingWrapper wrapper;
    processor.setPlayHead (&wrapper);
    void* object = nullptr;
    ASSERT_EQ (processor.extensions().queryIAudioProcessor (Vst::IAudioProcessor_iid, &object), kResultOk);

    ParameterQueues changes;
    changes.add (juce::VST3ClientExtensions::convertJuceParameterId ("mode"), 0.75);
    Vst::ProcessData block;
    block.inputParameterChanges = &changes;
    static_cast<Vst::IAudioProcessor*> (object)->process (block);
    EXPECT_EQ (processor.modeParameter->get(), 0.75f);
    ASSERT_EQ (wrapper.blocks.size(), 1u);
    EXPECT_NE (wrapper.blocks.front().changes, &changes);
    processor.setPlayHead (nullptr);
}
} // namespace

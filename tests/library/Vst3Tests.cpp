// SPDX-License-Identifier: AGPL-3.0-only
// What a VST 3 host reads of the library, and what it may do wrong.
#include "support/Comparison.h"
#include "support/KnobPosition.h"
#include "support/Paths.h"
#include "support/vst3/Vst3Instance.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <pluginterfaces/vst/ivstremapparamid.h>
#include <pluginterfaces/vst/ivstunits.h>
#include <pluginterfaces/vst/vstspeaker.h>

#include <algorithm>
#include <array>
#include <cstdio>

namespace
{
using namespace Steinberg;

std::string hexOf (const TUID& id)
{
    std::string text;

    for (const char byte : id)
    {
        std::array<char, 3> digits {};
        std::snprintf (
            digits.data(), digits.size(), "%02X", static_cast<unsigned int> (static_cast<unsigned char> (byte)));
        text += digits.data();
    }

    return text;
}

Vst::TChar* utf16 (const char* text)
{
    static Vst::String128 buffer;
    std::size_t i = 0;

    for (; text[i] != 0; ++i)
        buffer[i] = static_cast<Vst::TChar> (text[i]);

    buffer[i] = 0;
    return buffer;
}

class Vst3 : public testing::Test
{
protected:
    Vst3Module module { paths::vst3() };
};

TEST_F (Vst3, NamesItsClasses)
{
    struct Class
    {
        std::string id;
        std::string category;
        std::string name;

        bool operator== (const Class&) const = default;
    };

    std::vector<Class> classes;

    for (int32 i = 0; i < module.factory().countClasses(); ++i)
    {
        PClassInfo info;
        ASSERT_EQ (module.factory().getClassInfo (i, &info), kResultOk);
        classes.push_back ({ hexOf (info.cid), info.category, info.name });
    }

    const std::string name = "Quendal Larkspire";
    const std::vector<Class> expected { { "ABCDEF019182FAEB5175656E546D7771", "Audio Module Class", name },
                                        { "ABCDEF011234ABCD5175656E546D7771", "Component Controller Class", name },
                                        { "ABCDEF01C0DEF00D5175656E546D7771", "Plugin Compatibility Class", name } };
    EXPECT_TRUE (classes == expected);

    const auto second = queryFor<IPluginFactory2> (module.factory(), IPluginFactory2_iid);
    PClassInfo2 info;
    ASSERT_EQ (second->getClassInfo2 (0, &info), kResultOk);
    EXPECT_STREQ (info.vendor, "Quendal");
    EXPECT_STREQ (info.subCategories, "Fx|Dynamics");
    EXPECT_STREQ (info.version, "1.0.0");
}

TEST_F (Vst3, HasTheKnobInNineStepsAndTheHostsBypass)
{
    const Vst3Instance instance (module);
    ASSERT_EQ (instance.controller().getParameterCount(), 2);
    Vst::ParameterInfo info {};

    ASSERT_EQ (instance.controller().getParameterInfo (0, info), kResultOk);
    EXPECT_EQ (plainText (info.title), "Mode");
    EXPECT_EQ (plainText (info.units), "");
    EXPECT_EQ (info.stepCount, 9);
    EXPECT_FLOAT_EQ (static_cast<float> (info.defaultNormalizedValue), knobPosition (2));
    EXPECT_TRUE (info.flags & Vst::ParameterInfo::kCanAutomate);
    EXPECT_FALSE (info.flags & Vst::ParameterInfo::kIsBypass);

    ASSERT_EQ (instance.controller().getParameterInfo (1, info), kResultOk);
    EXPECT_EQ (plainText (info.title), "Bypass");
    EXPECT_TRUE (info.flags & Vst::ParameterInfo::kIsBypass);
}

TEST_F (Vst3, ShowsEveryPositionAndUnderstandsWhatItShows)
{
    const Vst3Instance instance (module);
    const std::array texts { "bypass",   "Gentle",   "Medium",   "Powerful", "unused 5",
                             "unused 6", "unused 7", "unused 8", "unused 9", "unused 10" };

    for (std::size_t i = 0; i < texts.size(); ++i)
    {
        const auto value = static_cast<double> (knobPosition (static_cast<int> (i)));
        EXPECT_EQ (instance.text (value), texts.at (i));

        double typed = -1.0;
        ASSERT_EQ (instance.controller().getParamValueByString (instance.modeId(), utf16 (texts.at (i)), typed),
                   kResultOk);
        EXPECT_NEAR (typed, value, 1e-7) << texts.at (i);
    }
}

TEST_F (Vst3, OffersNoProgram)
{
    const Vst3Instance instance (module);
    const auto units = queryFor<Vst::IUnitInfo> (instance.controller(), Vst::IUnitInfo_iid);
    ASSERT_NE (units, nullptr);
    EXPECT_EQ (units->getProgramListCount(), 0);
}

TEST_F (Vst3, StandsForTheVst2Library)
{
    // The number that a VST 2 plug-in has here: "VST", its four letters, and its name in small letters.
    const TUID oldClass = INLINE_UID (0x56535454, 0x6D777171, 0x75656E64, 0x616C206C);

    Vst3Instance instance (module);
    instance.load (instance.save()); // parameters are looked up for the state that was loaded
    const auto remap = queryFor<Vst::IRemapParamID> (instance.controller(), Vst::IRemapParamID_iid);
    ASSERT_NE (remap, nullptr);
    Vst::ParamID id = 0;
    ASSERT_EQ (remap->getCompatibleParamID (oldClass, 0, id), kResultTrue);
    EXPECT_EQ (id, instance.modeId());
    EXPECT_NE (remap->getCompatibleParamID (oldClass, 1, id), kResultTrue);
}

TEST_F (Vst3, HasOneBusEachWayThatIsMonoOrStereoOnBoth)
{
    Vst3Instance instance (module);

    for (const auto direction : { Vst::kInput, Vst::kOutput })
    {
        EXPECT_EQ (instance.component().getBusCount (Vst::kAudio, direction), 1);
        EXPECT_EQ (instance.component().getBusCount (Vst::kEvent, direction), 0);
        Vst::BusInfo bus {};
        ASSERT_EQ (instance.component().getBusInfo (Vst::kAudio, direction, 0, bus), kResultOk);
        EXPECT_EQ (bus.channelCount, 2);
        EXPECT_EQ (bus.busType, Vst::kMain);
        EXPECT_EQ (plainText (bus.name), direction == Vst::kInput ? "Input" : "Output");
    }

    using namespace Vst::SpeakerArr;
    constexpr std::array arrangements { kEmpty, kMono, kStereo, k30Cine, k51 };

    for (auto input : arrangements)
        for (auto output : arrangements)
            EXPECT_EQ (instance.processor().setBusArrangements (&input, 1, &output, 1) == kResultTrue,
                       input == output && (input == kMono || input == kStereo))
                << input << " to " << output;

    EXPECT_EQ (instance.processor().getLatencySamples(), 0u);
    EXPECT_EQ (instance.processor().getTailSamples(), Vst::kNoTail);
}

/** What a host that does everything right hears, in blocks of 512. */
Signal asItShouldBe (const Vst3Module& module, Signal signal)
{
    Vst3Instance instance (module);
    instance.setUp (48000.0, 512);
    instance.activate();

    for (std::size_t done = 0; done < signal.left.size(); done += 512)
    {
        float* const channels[] = { signal.left.data() + done, signal.right.data() + done };
        instance.process (channels, channels, std::min<std::size_t> (512, signal.left.size() - done));
    }

    return signal;
}

/** Buffers of a block as a host hands them over, with room for what it may do wrong. */
struct Block
{
    explicit Block (const Signal& input) : signal (input), out (input)
    {
        data.symbolicSampleSize = Vst::kSample32;
        data.numSamples = static_cast<int32> (signal.left.size());
        data.numInputs = data.numOutputs = 1;
        data.inputs = &inputBus;
        data.outputs = &outputBus;
        inputBus.numChannels = outputBus.numChannels = 2;
        inputBus.channelBuffers32 = inputs;
        outputBus.channelBuffers32 = outputs;
    }

    bool isSilent() const
    {
        const auto isZero = [] (float s) { return s == 0.0f; };
        return std::ranges::all_of (out.left, isZero) && std::ranges::all_of (out.right, isZero);
    }

    Signal signal;
    Signal out;
    float* inputs[2] = { signal.left.data(), signal.right.data() };
    float* outputs[2] = { out.left.data(), out.right.data() };
    Vst::AudioBusBuffers inputBus;
    Vst::AudioBusBuffers outputBus;
    Vst::ProcessData data;
};

class BadVst3Host : public Vst3
{
protected:
    /** After all that, a whole block is processed as if the instance were new but for the time that has gone. */
    static void expectSound (Vst3Instance& instance)
    {
        Block block (noise (512, -12.0, 3));
        EXPECT_EQ (instance.processor().process (block.data), kResultOk);
        EXPECT_FALSE (block.isSilent());
        EXPECT_FALSE (compare (block.out, block.signal).sameBits);
    }
};

TEST_F (BadVst3Host, MayTurnNoBusOn)
{
    const auto signal = noise (512, -12.0, 1);
    Vst3Instance instance (module, Vst3Instance::BusesAsTheyAre {});
    instance.setUp (48000.0, 512);
    instance.activate();
    Block block (signal);
    EXPECT_EQ (instance.processor().process (block.data), kResultOk);
    EXPECT_TRUE (compare (block.out, asItShouldBe (module, signal)).sameBits);
}

TEST_F (BadVst3Host, MayTurnTheBusesOff)
{
    Vst3Instance instance (module);

    for (const auto direction : { Vst::kInput, Vst::kOutput })
        instance.component().activateBus (Vst::kAudio, direction, 0, 0);

    instance.setUp (48000.0, 512);
    instance.activate();
    Block block (noise (512, -12.0, 1));
    std::ranges::fill (block.out.left, 0.5f); // of the block before
    instance.processor().process (block.data);
    EXPECT_TRUE (block.isSilent());

    for (const auto direction : { Vst::kInput, Vst::kOutput })
        instance.component().activateBus (Vst::kAudio, direction, 0, 1);

    expectSound (instance);
}

TEST_F (BadVst3Host, MayProcessBeforeActivating)
{
    Vst3Instance instance (module);

    for (const std::size_t frames : { 1u, 64u, 1024u, 1025u, 5000u })
    {
        Block block (noise (frames, -12.0, 2));
        EXPECT_EQ (instance.processor().process (block.data), kResultOk) << frames;
        EXPECT_FALSE (block.isSilent());
    }

    expectSound (instance);
}

TEST_F (BadVst3Host, MayChangeTheChannelsAndProcessBeforeActivating)
{
    const auto signal = noise (512, -12.0, 1);

    for (auto wanted : { Vst::SpeakerArr::kStereo, Vst::SpeakerArr::k51 })
    {
        Vst3Instance instance (module);
        ASSERT_TRUE (instance.setChannels (1));
        ASSERT_TRUE (instance.setUp (48000.0, 512));
        instance.processor().setBusArrangements (&wanted, 1, &wanted, 1); // which leaves stereo in both cases
        Block block (signal);
        EXPECT_EQ (instance.processor().process (block.data), kResultOk);
        EXPECT_TRUE (compare (block.out, asItShouldBe (module, signal)).sameBits);
    }

    Vst3Instance instance (module);
    EXPECT_EQ (instance.processor().setBusArrangements (nullptr, 1, nullptr, 1), kInvalidArgument);
    expectSound (instance);
}

TEST_F (BadVst3Host, MayOfferMoreBusesThanThereAre)
{
    const auto signal = noise (512, -12.0, 1);
    Vst3Instance instance (module);
    instance.setUp (48000.0, 512);
    instance.activate();
    Block block (signal);
    Block others (signal);
    std::array inputs { block.inputBus, others.inputBus };
    std::array outputs { block.outputBus, others.outputBus };
    block.data.inputs = inputs.data();
    block.data.outputs = outputs.data();
    block.data.numInputs = block.data.numOutputs = 2;
    EXPECT_EQ (instance.processor().process (block.data), kResultOk);
    EXPECT_TRUE (compare (block.out, asItShouldBe (module, signal)).sameBits);
    EXPECT_TRUE (others.isSilent());
}

TEST_F (BadVst3Host, MayProcessMoreThanItAnnounced)
{
    const auto signal = noise (70000, -12.0, 1);

    for (const int announced : { 16, 512, 0, -1, 2147483647 })
    {
        Vst3Instance instance (module);
        ASSERT_TRUE (instance.setUp (48000.0, announced)) << announced;
        instance.activate();
        Block block (signal);
        EXPECT_EQ (instance.processor().process (block.data), kResultOk);
        EXPECT_TRUE (compare (block.out, asItShouldBe (module, signal)).sameBits) << announced;
    }
}

TEST_F (BadVst3Host, MayOfferOtherChannelsThanAgreed)
{
    struct Offer
    {
        int inputChannels = 2;
        int outputChannels = 2;
        int inputBuses = 1;
        int outputBuses = 1;
        bool hasAllSamples = true;
    };

    constexpr std::array offers { Offer { .inputChannels = 0, .outputChannels = 0 },
                                  Offer { .inputChannels = 0 },
                                  Offer { .outputChannels = 0 },
                                  Offer { .inputChannels = 1 },
                                  Offer { .inputBuses = 0, .outputBuses = 0 },
                                  Offer { .inputBuses = 0 },
                                  Offer { .outputBuses = 0 },
                                  Offer { .hasAllSamples = false } };

    for (const auto& offer : offers)
    {
        Vst3Instance instance (module);
        instance.setUp (48000.0, 512);
        instance.activate();

        Block block (noise (512, -12.0, 2));
        block.inputBus.numChannels = offer.inputChannels;
        block.outputBus.numChannels = offer.outputChannels;
        block.data.numInputs = offer.inputBuses;
        block.data.numOutputs = offer.outputBuses;
        block.inputs[1] = offer.hasAllSamples ? block.inputs[1] : nullptr;
        instance.processor().process (block.data);
        const bool isOutput = offer.outputChannels > 0 && offer.outputBuses > 0;
        EXPECT_EQ (block.isSilent(), isOutput) << &offer - offers.data();
        EXPECT_TRUE (isOutput || compare (block.out, block.signal).sameBits) << "no one else's memory is written";
        expectSound (instance);
    }
}

TEST_F (BadVst3Host, MayOfferSamplesOf64Bits)
{
    Vst3Instance instance (module);
    EXPECT_EQ (instance.processor().canProcessSampleSize (Vst::kSample64), kResultFalse);
    EXPECT_FALSE (instance.setUp (48000.0, 512, Vst::kSample64));
    ASSERT_TRUE (instance.setUp (48000.0, 512));
    instance.activate();

    std::vector<double> left (512, 0.25);
    std::vector<double> right (512, 0.25);
    double* channels[] = { left.data(), right.data() };
    Block block (noise (512, -12.0, 2));
    block.data.symbolicSampleSize = Vst::kSample64;
    block.inputBus.channelBuffers64 = block.outputBus.channelBuffers64 = channels;
    instance.processor().process (block.data);
    EXPECT_THAT (left, testing::Each (0.0));
    EXPECT_THAT (right, testing::Each (0.0));
    expectSound (instance);
}

TEST_F (BadVst3Host, MaySetParametersThatThereAreNot)
{
    Vst3Instance instance (module);
    instance.setUp (48000.0, 512);
    instance.activate();
    const auto unknown = instance.modeId() + 1;
    EXPECT_EQ (instance.controller().setParamNormalized (unknown, 1.0), kResultFalse);

    const auto signal = noise (512, -12.0, 1);
    Block block (signal);
    ParameterQueues changes;
    changes.add (unknown, 1.0);
    changes.add (0, 1.0);
    changes.add (0xffffffff, 1.0);
    block.data.inputParameterChanges = &changes;
    EXPECT_EQ (instance.processor().process (block.data), kResultOk);
    EXPECT_TRUE (compare (block.out, asItShouldBe (module, signal)).sameBits);
}

TEST_F (BadVst3Host, MaySetParametersToWhatIsNoPosition)
{
    Vst3Instance instance (module);
    instance.setUp (48000.0, 512);
    instance.activate();

    for (const double value :
         { -1.0, 2.0, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN() })
    {
        instance.setParameter (instance.modeId(), value);
        Block block (noise (512, -12.0, 2));
        instance.process (block.inputs, block.outputs, 512);
        EXPECT_TRUE (std::ranges::all_of (block.out.left, [] (float s) { return std::abs (s) < 1.0f; })) << value;
    }
}

TEST_F (Vst3, TakesAChangeAtTheStartOfItsBlock)
{
    const auto signal = noise (1024, -12.0, 1);
    std::array<Signal, 2> outputs { signal, signal };

    for (std::size_t i = 0; i < outputs.size(); ++i)
    {
        Vst3Instance instance (module);
        instance.setUp (48000.0, 512);
        instance.activate();
        ParameterQueues changes;
        changes.add (instance.modeId(), static_cast<double> (knobPosition (3)), i == 0 ? 0 : 400);
        Block block (signal);
        block.data.inputParameterChanges = &changes;
        instance.processor().process (block.data);
        outputs.at (i) = block.out;
    }

    EXPECT_TRUE (compare (outputs[0], outputs[1]).sameBits) << "whatever frame of the block the host names";
    EXPECT_FALSE (compare (outputs[0], asItShouldBe (module, signal)).sameBits);
}
} // namespace

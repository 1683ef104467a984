// SPDX-License-Identifier: AGPL-3.0-only
#include "vst3/KnobChanges.h"

#include "support/Comparison.h"
#include "support/vst3/ParameterQueue.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{
using larkspire::KnobChanges;
using namespace Steinberg;

constexpr Vst::ParamID modeId = 3357091; // what hosts know "mode" by
constexpr Vst::ParamID bypassId = 1652125811;

/** Counts what is done to it. */
struct CountingParameter : juce::AudioParameterFloat, juce::AudioProcessorParameter::Listener
{
    CountingParameter() : AudioParameterFloat ({ "mode", 0 }, "Mode", 0.0f, 1.0f, 0.5f) { addListener (this); }
    ~CountingParameter() override { removeListener (this); }

    void valueChanged (float) override { ++timesSet; }
    void parameterValueChanged (int, float) override { ++timesTold; }
    void parameterGestureChanged (int, bool) override { ++timesTold; }

    int timesSet = 0;
    int timesTold = 0;
};

/** A host's changes that count their references and hand out what they are given. */
struct HostChanges : ParameterQueues
{
    uint32 PLUGIN_API addRef() override { return ++references; }
    uint32 PLUGIN_API release() override { return --references; }

    uint32 references = 1;
};

/** A list that says it has queues and has none, or one that cannot be read. */
struct BrokenChanges : ParameterQueues
{
    int32 PLUGIN_API getParameterCount() override { return 3; }
    Vst::IParamValueQueue* PLUGIN_API getParameterData (int32 index) override { return index == 1 ? &broken : nullptr; }

    struct BrokenQueue : ParameterQueue
    {
        int32 PLUGIN_API getPointCount() override { return 1; }
        tresult PLUGIN_API getPoint (int32, int32&, Vst::ParamValue& value) override
        {
            value = 0.9;
            return kResultFalse;
        }
    };

    BrokenQueue broken;
};

class Changes : public testing::Test
{
protected:
    CountingParameter parameter;
    KnobChanges knob { parameter };
    HostChanges host;
};

TEST_F (Changes, SetTheKnobToItsLastValueOfTheBlockWithoutTellingAnyone)
{
    host.add (modeId, 0.25, 10);
    host.add (modeId, 0.125, 3);
    host.add (modeId, 0.75, 20);
    knob.take (&host);
    EXPECT_EQ (parameter.get(), 0.75f);
    EXPECT_EQ (parameter.timesSet, 1);
    EXPECT_EQ (parameter.timesTold, 0);
}

TEST_F (Changes, AreLeftForTheWrapperButForTheKnobs)
{
    host.add (bypassId, 1.0);
    host.add (modeId, 0.75);
    host.add (5, 0.25);
    auto* const left = knob.take (&host);
    ASSERT_NE (left, nullptr);
    ASSERT_EQ (left->getParameterCount(), 3);
    EXPECT_EQ (left->getParameterData (0), host.getParameterData (0));
    EXPECT_EQ (left->getParameterData (1), nullptr);
    EXPECT_EQ (left->getParameterData (2), host.getParameterData (2));
    EXPECT_EQ (left->getParameterData (3), nullptr);
    EXPECT_EQ (left->getParameterData (-1), nullptr);
}

TEST_F (Changes, OfOtherParametersDoNotTouchTheKnob)
{
    host.add (bypassId, 1.0);
    host.add (modeId + 1, 0.75);
    host.add (0, 0.25);
    knob.take (&host);
    EXPECT_EQ (parameter.get(), 0.5f);
    EXPECT_EQ (parameter.timesSet, 0);
}

TEST_F (Changes, MayBeNone)
{
    EXPECT_EQ (knob.take (nullptr), nullptr);
    auto* const left = knob.take (&host);
    ASSERT_NE (left, nullptr);
    EXPECT_EQ (left->getParameterCount(), 0);
    EXPECT_EQ (knob.take (nullptr), nullptr) << "whatever the block before had";
    EXPECT_EQ (parameter.timesSet, 0);
}

TEST_F (Changes, ThatCannotBeReadAreNone)
{
    BrokenChanges broken;
    broken.broken.start (modeId);
    auto* const left = knob.take (&broken);
    EXPECT_EQ (parameter.timesSet, 0);
    EXPECT_EQ (left->getParameterData (0), nullptr);

    int32 index = 0;
    host.addParameterData (modeId, index); // a queue without a point
    knob.take (&host);
    EXPECT_EQ (parameter.timesSet, 0);
}

TEST_F (Changes, ThatAreTheSameButForRoundingAreNone)
{
    host.add (modeId, 0.5 + 1e-9);
    knob.take (&host);
    EXPECT_EQ (parameter.timesSet, 0);

    host.clear();
    host.add (modeId, 0.5 + 1e-6);
    knob.take (&host);
    EXPECT_EQ (parameter.timesSet, 1);
}

TEST_F (Changes, ToWhatIsNoPositionEndWhereTheWrapperWouldTakeThem)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();

    for (const double value : { -1.0, 2.0, 1e300, infinity, -infinity, std::numeric_limits<double>::quiet_NaN(), 0.25 })
    {
        CountingParameter expected;
        expected.setValueNotifyingHost (static_cast<float> (value));
        host.clear();
        host.add (modeId, value);
        knob.take (&host);
        EXPECT_EQ (audibleBits (parameter.get()), audibleBits (expected.get())) << value;
    }
}

TEST_F (Changes, AreTheHostsOwnObjectToTheWrapper)
{
    auto* const left = knob.take (&host);
    EXPECT_EQ (left->addRef(), 2u);
    EXPECT_EQ (host.references, 2u);
    EXPECT_EQ (left->release(), 1u);
    EXPECT_EQ (host.references, 1u);

    void* object = nullptr;
    EXPECT_EQ (left->queryInterface (Vst::IParameterChanges_iid, &object), kResultOk);
    EXPECT_EQ (object, static_cast<Vst::IParameterChanges*> (&host));

    int32 index = -1;
    const auto* const added = left->addParameterData (5, index);
    EXPECT_EQ (index, 0);
    ASSERT_NE (added, nullptr);
    EXPECT_EQ (added, host.getParameterData (0));
}
} // namespace

// SPDX-License-Identifier: AGPL-3.0-only
#include "vst3/StateGuard.h"

#include "support/vst3/ByteStream.h"
#include "vst3/RecordingWrapper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{
using namespace Steinberg;
using testing::ElementsAre;

class StateGuard : public testing::Test
{
protected:
    StateGuard() { guard.guard (wrapper); }

    RecordingWrapper wrapper;
    larkspire::StateGuard guard;
};

/** What the wrapper gets of a chunk that tells of no bypass. */
std::string withEmptyTrailer (const std::string& chunk)
{
    return chunk + std::string (16, '\0') + "JUCEPrivateData";
}

TEST_F (StateGuard, PutsWhatAHostHandsOverTogetherAnew)
{
    ByteStream chunk ("chunk");
    ByteStream whole (withEmptyTrailer ("chunk"));
    EXPECT_EQ (guard.setState (&chunk), kResultTrue);
    EXPECT_EQ (guard.setState (&whole), kResultTrue);
    EXPECT_THAT (wrapper.states, ElementsAre (withEmptyTrailer ("chunk"), withEmptyTrailer ("chunk")));
}

TEST_F (StateGuard, TellsWhatTheWrapperAnswers)
{
    ByteStream stream ("chunk");
    wrapper.answers = { kInternalError };
    EXPECT_EQ (guard.setState (&stream), kInternalError);
}

TEST_F (StateGuard, ReadsAStreamFromItsBeginning)
{
    ByteStream stream ("chunk");
    stream.seek (3, IBStream::kIBSeekSet, nullptr);
    EXPECT_EQ (guard.setState (&stream), kResultTrue);
    EXPECT_THAT (wrapper.states, ElementsAre (withEmptyTrailer ("chunk")));
}

TEST_F (StateGuard, ReadsAStreamThatGivesByteForByteAndReportsAnErrorAtItsEnd)
{
    class Slow : public ByteStream
    {
    public:
        using ByteStream::ByteStream;

        tresult PLUGIN_API read (void* buffer, int32 count, int32* done) override
        {
            ByteStream::read (buffer, std::min (count, 1), done);
            return *done == 0 ? kResultFalse : kResultTrue;
        }
    };

    const std::string chunk (10000, 'x');
    Slow stream (chunk);
    EXPECT_EQ (guard.setState (&stream), kResultTrue);
    EXPECT_THAT (wrapper.states, ElementsAre (withEmptyTrailer (chunk)));
}

TEST_F (StateGuard, RefusesAStreamWithoutContentABeginningOrAnEnd)
{
    class Endless : public ByteStream
    {
    public:
        tresult PLUGIN_API read (void*, int32 count, int32* done) override
        {
            *done = count;
            return kResultTrue;
        }
    };

    class Stuck : public ByteStream
    {
    public:
        using ByteStream::ByteStream;
        tresult PLUGIN_API seek (int64, int32, int64*) override { return kNotImplemented; }
    };

    ByteStream empty;
    Endless endless;
    Stuck stuck ("chunk");
    EXPECT_EQ (guard.setState (nullptr), kInvalidArgument);
    EXPECT_EQ (guard.setState (&empty), kResultFalse);
    EXPECT_EQ (guard.setState (&endless), kResultFalse);
    EXPECT_EQ (guard.setState (&stuck), kResultFalse);
    EXPECT_TRUE (wrapper.states.empty());
}

TEST_F (StateGuard, BelievesNoStreamThatItHasWrittenMoreThanItWasAskedFor)
{
    class Boastful : public ByteStream
    {
    public:
        using ByteStream::ByteStream;

        tresult PLUGIN_API read (void* buffer, int32 count, int32* done) override
        {
            const auto result = ByteStream::read (buffer, count, done);
            *done = *done > 0 ? 1 << 30 : 0;
            return result;
        }
    };

    const std::string chunk (4096, 'x'); // as long as one read
    Boastful stream (chunk);
    EXPECT_EQ (guard.setState (&stream), kResultTrue);
    EXPECT_THAT (wrapper.states, ElementsAre (withEmptyTrailer (chunk)));
}

TEST_F (StateGuard, HandsAllElseOn)
{
    TUID id {};
    Vst::BusInfo bus {};
    Vst::RoutingInfo input {};
    Vst::RoutingInfo output {};
    ByteStream stream;
    void* object = nullptr;

    EXPECT_EQ (guard.queryInterface (FUnknown_iid, &object), kResultTrue);
    EXPECT_EQ (object, &wrapper);
    EXPECT_EQ (guard.addRef(), 2u);
    EXPECT_EQ (guard.release(), 1u);

    wrapper.answers = { 21, 22, 23, 24, 25, 26, 27, 28, 29, 30 };
    EXPECT_EQ (guard.initialize (nullptr), 21);
    EXPECT_EQ (guard.terminate(), 22);
    EXPECT_EQ (guard.getControllerClassId (id), 23);
    EXPECT_EQ (id[0], 'C');
    EXPECT_EQ (guard.setIoMode (2), 24);
    EXPECT_EQ (guard.getBusCount (Vst::kEvent, Vst::kInput), 25);
    EXPECT_EQ (guard.getBusInfo (Vst::kEvent, Vst::kInput, 3, bus), 26);
    EXPECT_EQ (bus.channelCount, 13);
    EXPECT_EQ (guard.getRoutingInfo (input, output), 27);
    EXPECT_EQ (output.channel, 1);
    EXPECT_EQ (guard.setActive (1), 28);
    EXPECT_EQ (guard.getState (&stream), 29);
    EXPECT_EQ (guard.activateBus (Vst::kEvent, Vst::kInput, 3, 1), 30);

    EXPECT_THAT (wrapper.calls,
                 ElementsAre ("queryInterface",
                              "initialize",
                              "terminate",
                              "getControllerClassId",
                              "setIoMode 2",
                              "getBusCount 1 0",
                              "getBusInfo 1 0 3",
                              "getRoutingInfo",
                              "setActive 1",
                              "getState"));
    EXPECT_THAT (wrapper.activations, ElementsAre (RecordingWrapper::Activation (Vst::kEvent, Vst::kInput, 3, 1)));
}
} // namespace

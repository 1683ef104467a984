// SPDX-License-Identifier: AGPL-3.0-only
// What an LV2 host finds in the library, and what it may do with ports.
#include "support/Comparison.h"
#include "support/Lv2Instance.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <optional>

namespace
{
constexpr std::size_t length = 1000; // frames
constexpr auto nan = std::numeric_limits<float>::quiet_NaN();
constexpr auto infinity = std::numeric_limits<float>::infinity();

class Lv2 : public testing::Test
{
protected:
    Lv2Library library;
};

/** What an instance makes of a signal in one run, out of place; without a mode its port is not connected. */
Signal processed (const Lv2Instance& instance, Signal signal, std::optional<float> mode)
{
    Signal output { .name = signal.name,
                    .left = std::vector<float> (signal.left.size()),
                    .right = std::vector<float> (signal.right.size()) };
    float* const inputs[] = { signal.left.data(), signal.right.data() };
    float* const outputs[] = { output.left.data(), output.right.data() };
    const auto before = signal;
    instance.connectInputs (inputs);
    instance.connectOutputs (outputs);
    instance.connectMode (mode ? &*mode : nullptr);
    instance.run (signal.left.size());
    EXPECT_TRUE (compare (signal, before).sameBits) << "the input is not the plug-in's";
    return output;
}

Signal processed (const Lv2Library& library, const Signal& signal, std::optional<float> mode)
{
    return processed (Lv2Instance (library, 48000.0, 2), signal, mode);
}

TEST_F (Lv2, DescribesStereoAndMonoAndNothingElse)
{
    ASSERT_NE (library.descriptor (0), nullptr);
    ASSERT_NE (library.descriptor (1), nullptr);
    EXPECT_STREQ (library.descriptor (0)->URI, "urn:quendal:larkspire:stereo");
    EXPECT_STREQ (library.descriptor (1)->URI, "urn:quendal:larkspire:mono");

    for (const std::uint32_t index : { 2u, 3u, 0x80000000u, 0xffffffffu })
        EXPECT_EQ (library.descriptor (index), nullptr) << index;
}

TEST_F (Lv2, GivesNoInstanceAtARateThatIsNone)
{
    for (const std::size_t channels : { 1u, 2u })
    {
        const auto& descriptor = library.descriptorFor (channels);
        const auto instantiate = [&] (double rate)
        { return descriptor.instantiate (&descriptor, rate, paths::lv2().c_str(), nullptr); };

        for (const float rate : { 0.0f, -1.0f, -48000.0f, 500.0f, 1e11f, nan, infinity, -infinity })
            EXPECT_EQ (instantiate (static_cast<double> (rate)), nullptr) << rate;

        for (const double rate : { 1000.0, 8000.0, 768000.0 })
        {
            const auto instance = instantiate (rate);
            EXPECT_NE (instance, nullptr) << rate;
            descriptor.cleanup (instance);
        }
    }
}

TEST_F (Lv2, TakesTheNearestPositionAndMediumForWhatIsNone)
{
    const auto input = noise (length, -12.0, 1);
    std::array<Signal, 4> positions;

    for (std::size_t i = 0; i < positions.size(); ++i)
        positions[i] = processed (library, input, static_cast<float> (i));

    for (std::size_t i = 0; i < positions.size(); ++i)
        for (std::size_t k = 0; k < i; ++k)
            ASSERT_FALSE (compare (positions[i], positions[k]).sameBits);

    struct Wanted
    {
        std::optional<float> value;
        std::size_t position;
    };

    for (const auto& [value, position] : { Wanted { std::nullopt, 2 },
                                           { nan, 2 },
                                           { -nan, 2 },
                                           { infinity, 2 },
                                           { -infinity, 2 },
                                           { -1.0f, 2 },
                                           { -0.6f, 2 },
                                           { -0.4f, 0 },
                                           { -0.0f, 0 },
                                           { 0.4f, 0 },
                                           { 0.6f, 1 },
                                           { 1.4f, 1 },
                                           { 2.4f, 2 },
                                           { 2.6f, 3 },
                                           { 3.4f, 3 },
                                           { 3.6f, 2 },
                                           { 4.0f, 2 },
                                           { 1e30f, 2 },
                                           { -1e30f, 2 },
                                           { 1e-40f, 0 } })
        EXPECT_TRUE (compare (processed (library, input, value), positions.at (position)).sameBits)
            << (value ? std::to_string (*value) : "not connected");
}

TEST_F (Lv2, ProcessesInPlaceAndCrosswise)
{
    const auto input = noise (length, -12.0, 2);
    const auto expected = processed (library, input, 3.0f);
    float mode = 3.0f;

    for (const bool isCrossed : { false, true })
    {
        auto signal = input;
        float* const inputs[] = { signal.left.data(), signal.right.data() };
        float* const crossed[] = { inputs[1], inputs[0] };
        const Lv2Instance instance (library, 48000.0, 2);
        instance.connectInputs (inputs);
        instance.connectOutputs (isCrossed ? crossed : inputs);
        instance.connectMode (&mode);
        instance.run (length);

        if (isCrossed)
            std::swap (signal.left, signal.right);

        EXPECT_TRUE (compare (signal, expected).sameBits) << isCrossed;
    }
}

TEST_F (Lv2, ProcessesOneBufferForBothInputs)
{
    auto input = noise (length, -12.0, 3);
    input.right = input.left;
    auto signal = input;
    float* const inputs[] = { signal.left.data(), signal.left.data() };
    float* const outputs[] = { signal.left.data(), signal.right.data() };
    const Lv2Instance instance (library, 48000.0, 2);
    instance.connectInputs (inputs);
    instance.connectOutputs (outputs);
    instance.run (length);
    EXPECT_TRUE (compare (signal, processed (library, input, 2.0f)).sameBits);
}

TEST_F (Lv2, WritesNoMoreThanItsFrames)
{
    auto input = noise (length, -12.0, 4);
    float* const channels[] = { input.left.data(), input.right.data() };

    for (std::size_t frames = 0; frames < 200; ++frames)
        for (const std::size_t count : { 1u, 2u })
        {
            auto output = noise (length, -12.0, 5);
            const auto before = output;
            float* const outputs[] = { output.left.data() + 1, output.right.data() + 1 };
            const Lv2Instance instance (library, 48000.0, count);
            instance.connectInputs (channels);
            instance.connectOutputs (outputs);
            instance.run (frames);

            for (std::size_t i = 0; i < length; ++i)
            {
                const bool isOutside = i < 1 || i > frames;
                EXPECT_TRUE (! isOutside || output.left[i] == before.left[i]) << frames << ": " << i;
                EXPECT_TRUE (! (isOutside || count == 1) || output.right[i] == before.right[i]) << frames << ": " << i;
            }
        }
}

TEST_F (Lv2, ChangesNothingInAnEmptyBlock)
{
    const auto input = noise (length, -12.0, 6);
    float other = 3.0f;
    const Lv2Instance instance (library, 48000.0, 2);
    instance.run (0); // no port is connected yet
    instance.connectMode (&other);
    instance.run (0);
    EXPECT_TRUE (compare (processed (instance, input, 1.0f), processed (library, input, 1.0f)).sameBits);
}

TEST_F (Lv2, DoesNothingWithoutAllOfItsAudioPorts)
{
    const auto input = noise (length, -12.0, 7);

    for (const std::size_t channels : { 1u, 2u })
        for (std::size_t missing = 0; missing < 2 * channels; ++missing)
        {
            auto in = input;
            auto out = input;
            float* const inputs[] = { in.left.data(), in.right.data() };
            float* const outputs[] = { out.left.data(), out.right.data() };
            const Lv2Instance instance (library, 48000.0, channels);
            instance.connectInputs (inputs);
            instance.connectOutputs (outputs);
            instance.connect (missing, nullptr);
            instance.run (length);
            EXPECT_TRUE (compare (in, input).sameBits && compare (out, input).sameBits) << missing;

            // And once it is there the sound begins anew.
            instance.connectInputs (inputs);
            instance.connectOutputs (outputs);
            instance.run (length);
            const Lv2Instance another (library, 48000.0, channels);
            const auto expected = processed (another, input, 2.0f);
            EXPECT_EQ (out.left, expected.left) << missing;
            EXPECT_TRUE (channels == 1 || out.right == expected.right) << missing;
        }
}

TEST_F (Lv2, KnowsNoOtherPorts)
{
    const auto input = noise (length, -12.0, 8);

    for (const std::size_t channels : { 1u, 2u })
    {
        auto signal = input;
        float* const buffers[] = { signal.left.data(), signal.right.data() };
        float powerful = 3.0f;
        const Lv2Instance instance (library, 48000.0, channels);
        instance.connectInputs (buffers);
        instance.connectOutputs (buffers);

        for (const std::size_t port : { 2 * channels + 1, std::size_t { 6 }, std::size_t { 0xffffffff } })
            instance.connect (port, &powerful);

        instance.run (length);
        const Lv2Instance another (library, 48000.0, channels);
        const auto expected = processed (another, input, std::nullopt);
        EXPECT_EQ (signal.left, expected.left);
        EXPECT_EQ (signal.right, channels == 1 ? input.right : expected.right);
    }
}
} // namespace

// SPDX-License-Identifier: AGPL-3.0-only
// The processor against the oracle, to the bit: its design, its chain and the limits of its input.
#include "reference/ReferencePlugin.h"
#include "reference/ScalarPolynomials.h"
#include "support/Comparison.h"
#include "support/OpenProcessor.h"

#include <gtest/gtest.h>

namespace
{
class ProcessorAndOracle : public testing::TestWithParam<int>
{
};

TEST_P (ProcessorAndOracle, GiveTheSameBitsThroughAChangeOfMode)
{
    constexpr std::size_t half = 3000;
    const ScopedFlushToZero flushToZero;

    // The second rate lies between two 32-bit floats, and only the high-pass can tell.
    for (const double rate : { 1000.0, 1000.00002, 8000.0, 44100.0, 48000.0, 192000.0 })
        for (const bool mono : { false, true })
            for (const auto& signal : testSignals (2 * half))
            {
                OpenProcessor processor;
                const auto channelSet = juce::AudioChannelSet::canonicalChannelSet (mono ? 1 : 2);
                ASSERT_TRUE (processor.setBusesLayout ({ { channelSet }, { channelSet } }));
                processor.giveRate (rate);
                ReferencePlugin oracle (mono, { scalar_polynomials::sine, scalar_polynomials::arcTangent });
                oracle.setHostRate (rate);

                for (const std::size_t start : { std::size_t { 0 }, half })
                {
                    const auto value = knobPosition (start == 0 ? GetParam() : (GetParam() + 1) % 5);
                    processor.setMode (value);
                    oracle.setParameter (value);
                    const auto first = static_cast<std::ptrdiff_t> (start);
                    std::vector<std::vector<float>> channels;

                    for (const auto* channel : { &signal.left, &signal.right })
                        channels.emplace_back (channel->begin() + first, channel->begin() + first + half);

                    channels.resize (mono ? 1 : 2);
                    auto wanted = channels;
                    processor.run (channels);

                    for (std::size_t i = 0; i < half; ++i)
                    {
                        oracle.process (wanted.front()[i], wanted.back()[i]);

                        for (std::size_t channel = 0; channel < channels.size(); ++channel)
                            ASSERT_EQ (bitsOf (channels[channel][i]), bitsOf (wanted[channel][i]))
                                << signal.name << " at " << rate << ", channel " << channel << ", sample " << start + i;
                    }
                }
            }
}

INSTANTIATE_TEST_SUITE_P (Positions, ProcessorAndOracle, testing::Range (0, 5));
} // namespace

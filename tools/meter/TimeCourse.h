// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace larkspire::meter
{

/** How a value went over time, in bins of equal length, for drawing.

    The memory has a bound however long the sound is: when the bins run out, neighbours are joined and a bin becomes
    twice as long. A short sound keeps every sample.
*/
class TimeCourse
{
public:
    struct Bin
    {
        float lowest = 0.0f;
        float highest = 0.0f;
        double sum = 0.0;
        double squares = 0.0; // their sum
    };

    static constexpr std::size_t mostBins = 8192;

    void add (float value) { add (value, value); }

    /** Takes a moment at which the value was two, the channels of a sound. The mean counts the middle, the RMS both. */
    void add (float lower, float upper)
    {
        if (samplesInLast == 0)
            bins.push_back ({ .lowest = lower, .highest = upper });

        auto& bin = bins.back();
        bin.lowest = std::min (bin.lowest, lower);
        bin.highest = std::max (bin.highest, upper);
        bin.sum += 0.5 * (double { lower } + double { upper });
        bin.squares += 0.5 * (double { lower } * double { lower } + double { upper } * double { upper });
        ++samplesInLast;

        if (samplesInLast == binLength)
        {
            samplesInLast = 0;

            if (bins.size() == mostBins)
                joinNeighbours();
        }
    }

    std::size_t size() const noexcept { return bins.size(); }

    const Bin& operator[] (std::size_t index) const { return bins[index]; }

    /** The mean of a bin; the last one may hold fewer samples than the others. */
    double mean (std::size_t index) const { return bins[index].sum / samplesIn (index); }

    /** The mean of the squares in a bin. */
    double power (std::size_t index) const { return bins[index].squares / samplesIn (index); }

    /** Samples in a bin. Bin i begins with the sample i * samplesPerBin. */
    std::int64_t samplesPerBin() const noexcept { return binLength; }

private:
    double samplesIn (std::size_t index) const
    {
        const auto whole = index + 1 < bins.size() || samplesInLast == 0;
        return static_cast<double> (whole ? binLength : samplesInLast);
    }

    void joinNeighbours()
    {
        for (std::size_t i = 0; i < bins.size() / 2; ++i)
        {
            const auto& first = bins[2 * i];
            const auto& second = bins[2 * i + 1];
            bins[i] = { .lowest = std::min (first.lowest, second.lowest),
                        .highest = std::max (first.highest, second.highest),
                        .sum = first.sum + second.sum,
                        .squares = first.squares + second.squares };
        }

        bins.resize (bins.size() / 2);
        binLength *= 2;
    }

    std::vector<Bin> bins;
    std::int64_t binLength = 1;
    std::int64_t samplesInLast = 0;
};

} // namespace larkspire::meter

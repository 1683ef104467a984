// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "finish/Sketch.h"
#include "meter/SoundFigures.h"

#include <cmath>
#include <optional>

namespace larkspire::finish
{

/** How a finished sound shall be. */
struct Target
{
    double lufs = -16.0;       // integrated loudness
    double ceilingDbtp = -1.0; // that no true peak is above
};

/** What has become of it. */
struct FinishReport
{
    Target target {};
    meter::Figure reachedLufs {}; // nullopt for a sound that has no loudness, and was left as it is
    double gainDb = 0.0;
    LimiterWork limiter {};

    /** Whether the sound has no loudness, or another one than was asked for. */
    bool missed() const { return ! reachedLufs || std::abs (*reachedLufs - target.lufs) > 0.2; }
};

/** Brings a sound to a loudness, with a gain and a look-ahead limiter for true peaks behind it.

    What the limiter takes off has to be made good by the gain, which then asks more of the limiter, so a gain is tried
    until it fits. The sound waits on the disk meanwhile, since it was made by a chain that should not run again and
    again, and perhaps from an input that cannot be read twice: it goes there once and comes back once, and the memory
    does not grow with it. The gains are tried on a sketch. What comes of the one that fits is measured by whoever
    writes it; should it miss, there is another round.
*/
class Finisher
{
public:
    /** @param result  beside which the sound waits. Throws Failure if it cannot. */
    Finisher (const AudioShape& shape, const Target& target, const std::filesystem::path& result);

    /** Takes whole frames, channels interleaved, linear full scale 1.0. Throws Failure if the disk is full. */
    void add (std::span<const float> interleaved);

    /** Nothing is added from here on: finds the gain. */
    void end();

    /** Reads frames of the finished sound, as many as fit, and returns how many samples those are: 0 is the end.
        Samples are as many as were added, and in the same places. */
    std::size_t read (std::span<float> interleaved);

    /** Takes the figures of what was read. If they miss what was meant by more than 0.05 dB, all is got ready to be
        read anew, a little lower or higher, and the answer is no; at the third time it is taken as it is. */
    bool accepts (const meter::SoundFigures& figures);

    const FinishReport& report() const noexcept { return finished; }

private:
    void plan();
    void readFromTheStart();
    double forecastAt (double gainDb);

    AudioShape shape;
    FinishReport finished;
    Spool samples;
    std::optional<Sketch> sketch; // none at a sample rate that has no loudness
    bool allFinite = true;

    double aimLufs;
    double aimDbtp;
    bool louderIsImpossible = false;
    int rounds = 0;

    std::optional<LimitedBins> bins;
    LimitedBins::Bin bin;
    double slope = 0.0; // of the limiter's gain, a frame
    std::size_t frameInBin = 0;
};

} // namespace larkspire::finish

// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "audio/AudioShape.h"
#include "meter/ChainProbe.h"
#include "meter/Decibels.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace larkspire::meter
{

/** Where a voice and the room behind it lie, in dBFS (AES17): of the RMS levels of all 50 ms windows the 95th
    percentile, which is the loud syllables without the loudest, and the 10th, the quietest tenth. Windows in which the
    recording is digital silence do not count. */
struct VoiceAndRoom
{
    Figure voiceDbfs;
    Figure roomDbfs;

    Figure distanceDb() const { return voiceDbfs && roomDbfs ? Figure (*voiceDbfs - *roomDbfs) : std::nullopt; }
};

/** Levels of windows in steps of a tenth of a decibel, and with each level the mean of a gain: what percentiles need,
    in a memory that does not grow. */
class WindowLevels
{
public:
    /** @param power  mean square; what lies below -160 dBFS counts as that */
    void add (double power, double gain = 1.0);

    /** The level that a share of the windows do not exceed, in dBFS (AES17); nullopt if there are none. */
    Figure level (double share) const;

    /** The mean gain of the windows up to that level, linear; nullopt likewise. */
    Figure meanGain (double share) const;

private:
    static constexpr double lowest = -160.0; // dBFS
    static constexpr double stepDb = 0.1;
    static constexpr std::size_t steps = 2000;

    std::size_t stepOf (double share) const;

    std::array<std::int64_t, steps> counts {};
    std::array<double, steps> sumsOfGain {};
    std::int64_t windows = 0;
};

/** A mode's chain on a recording that is fed to it with a gain: what it would make of voice and room. */
class GainTrial
{
public:
    /** @param modeIndex  1 to 3
        @param gain       linear, ahead of the chain */
    GainTrial (int modeIndex, const AudioShape& shape, Voices voices, double gain);
    ~GainTrial();

    GainTrial (const GainTrial&) = delete;
    GainTrial& operator= (const GainTrial&) = delete;

    /** Takes whole frames of the recording, channels interleaved, linear full scale 1.0. */
    void add (std::span<const float> interleaved);

    VoiceAndRoom before() const; // with the gain
    VoiceAndRoom after() const;

    /** Whether the expander is closed while only the room is heard: its mean gain in the quietest tenth of the windows
        lies more than half way down, in decibels. */
    bool closes() const;

private:
    struct Chain;

    void endWindow();

    std::size_t channels;
    float gain;
    std::vector<std::unique_ptr<Chain>> chains; // two where the voices are split
    std::size_t framesPerWindow;
    std::size_t framesHeard = 0; // of the window that is being filled
    double powerBefore = 0.0;
    double powerAfter = 0.0;
    double sumOfGain = 0.0;
    WindowLevels levelsBefore;
    WindowLevels levelsAfter;
};

} // namespace larkspire::meter

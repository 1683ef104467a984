// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "audio/AudioShape.h"
#include "meter/Decibels.h"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace larkspire::meter
{

/** Whether a meter keeps how its figures went over time, which takes longer than the figures do. */
enum class Courses
{
    none,
    kept
};

/** Loudness as EBU R 128 has it (ITU-R BS.1770), by libebur128.

    A mono file is one channel: the same voice on two channels is 3 LU louder.
*/
class LoudnessMeter
{
public:
    explicit LoudnessMeter (const AudioShape& shape, Courses courses = Courses::kept);
    ~LoudnessMeter();

    LoudnessMeter (LoudnessMeter&&) noexcept;
    LoudnessMeter& operator= (LoudnessMeter&&) noexcept;

    /** Takes whole frames, channels interleaved, linear full scale 1.0. */
    void add (std::span<const float> interleaved);

    /** The gated loudness of all of it, in LUFS. nullopt for less than 0.4 s (one gating block) or if no block
        exceeds -70 LUFS. */
    Figure integrated() const;

    /** The loudness range in LU, EBU Tech 3342. nullopt for less than 4 s (two windows of 3 s, 1 s apart) or if no
        window reaches -70 LUFS. */
    Figure range() const;

    /** The step of the two courses, in seconds; the loudness is read at the end of each. */
    static constexpr double stepSeconds = 0.1;
    static constexpr double momentarySeconds = 0.4;
    static constexpr double shortTermSeconds = 3.0;

    /** The loudness in LUFS of the last 0.4 s and of the last 3 s at the end of each step; minus infinity for
        silence, NaN until so much has been heard. Empty where no courses are kept. */
    const std::vector<float>& momentary() const noexcept { return momentaryCourse; }
    const std::vector<float>& shortTerm() const noexcept { return shortTermCourse; }

private:
    struct Library; // its header's names are too plain to be let in here

    void readCourses();
    void lookAtWindow();
    bool hasHeard (double seconds) const;

    int channels;
    int sampleRate;
    Courses wanted;
    std::unique_ptr<Library> library;
    std::int64_t framesPerStep;
    std::int64_t framesHeard = 0;
    bool anyWindowCounts = false; // whether one of those that the range is made of reaches the gate
    std::vector<float> momentaryCourse;
    std::vector<float> shortTermCourse;
};

} // namespace larkspire::meter

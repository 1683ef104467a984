// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "meter/SoundFigures.h"
#include "meter/StageGains.h"

#include <array>

namespace larkspire::render
{

/** A figure of a group and what the two reports call it. */
template <typename Group>
struct NamedFigure
{
    const char* label; // in the table
    const char* key;   // in the document
    meter::Figure Group::*figure;
};

inline constexpr std::array<NamedFigure<meter::SoundFigures>, 4> soundFigures { {
    { "integrated loudness, LUFS", "integrated_lufs", &meter::SoundFigures::integratedLufs },
    { "loudness range, LU", "loudness_range_lu", &meter::SoundFigures::loudnessRangeLu },
    { "true peak, dBTP", "true_peak_dbtp", &meter::SoundFigures::truePeakDbtp },
    { "quietest tenth, dBFS (AES17)", "quietest_tenth_dbfs", &meter::SoundFigures::quietestTenthDbfs },
} };

inline constexpr std::array<NamedFigure<meter::StageGains>, 7> stageGains { {
    { "  high-pass", "high_pass_db", &meter::StageGains::highPassDb },
    { "  expander, mean over time", "expander_mean_db", &meter::StageGains::expanderDb },
    { "  stereo fold", "stereo_fold_db", &meter::StageGains::foldDb },
    { "  air and body", "air_and_body_db", &meter::StageGains::airAndBodyDb },
    { "  leveller, mean over time", "leveller_mean_db", &meter::StageGains::levellerDb },
    { "  make-up", "make_up_db", &meter::StageGains::makeUpDb },
    { "  soft clip", "soft_clip_db", &meter::StageGains::softClipDb },
} };

} // namespace larkspire::render

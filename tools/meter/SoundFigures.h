// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "meter/Decibels.h"

namespace larkspire::meter
{

/** What is said of a sound in numbers; how each is measured stands with its meter. */
struct SoundFigures
{
    Figure integratedLufs;
    Figure loudnessRangeLu;
    Figure truePeakDbtp;
    Figure noiseDbfs;

    bool operator== (const SoundFigures&) const = default;
};

} // namespace larkspire::meter

// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "meter/Decibels.h"

namespace larkspire::meter
{

/** The figures of a sound; its meter says how each is measured. */
struct SoundFigures
{
    Figure integratedLufs {};
    Figure loudnessRangeLu {};
    Figure truePeakDbtp {};
    Figure quietestTenthDbfs {};

    bool operator== (const SoundFigures&) const = default;
};

} // namespace larkspire::meter

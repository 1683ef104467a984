// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "render/InputTrials.h"

#include <string>
#include <vector>

namespace larkspire::render
{

/** What a recording's level means for a mode. */
struct Advice
{
    std::vector<Trial> trials;          // those that it rests on
    std::vector<std::string> sentences; // for people, each complete
};

/** The trials that advice about a mode needs: at the gain that the recording would get all voice modes, the wanted one
    first, and that one at all levels that are worth a trial. None in bypass. */
std::vector<Trial> trialsForAdvice (KnobMode mode, double peakDbfs, double gainDb);

/** Says in words what follows from such trials, once they are done.

    @param peakDbfs  of the recording itself */
Advice adviceFrom (std::vector<Trial> trials, double peakDbfs);

} // namespace larkspire::render

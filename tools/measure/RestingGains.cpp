// SPDX-License-Identifier: AGPL-3.0-only
#include "measure/RestingGains.h"

#include "measure/Instance.h"
#include "measure/Tone.h"

#include <cstddef>

namespace larkspire::measure
{

std::vector<double>
restingGains (const Subject& subject, const VoiceMode& mode, int rate, const std::vector<double>& frequencies)
{
    constexpr double level = -68.0; // dBFS
    const auto settling = static_cast<std::size_t> (rate / 10);
    const auto listening = static_cast<std::size_t> (rate / 2);

    Instance instance (subject, mode, Instance::Start::atRest, rate);
    std::vector<double> gains;

    for (const auto frequency : frequencies)
    {
        Tone tone (frequency / rate);
        instance.process (tone.next (settling, level));
        const auto output = instance.process (tone.next (listening, level));
        gains.push_back (componentAt (output, frequency / rate) / fromDecibels (level));
    }

    return gains;
}

} // namespace larkspire::measure

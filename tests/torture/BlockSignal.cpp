// SPDX-License-Identifier: AGPL-3.0-only
#include "torture/BlockSignal.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

namespace
{
using Limits = std::numeric_limits<float>;

constexpr std::array poison { Limits::quiet_NaN(),
                              -Limits::quiet_NaN(),
                              Limits::signaling_NaN(),
                              Limits::infinity(),
                              -Limits::infinity(),
                              Limits::max(),
                              -Limits::max(),
                              Limits::denorm_min(),
                              -Limits::denorm_min(),
                              Limits::min(),
                              -0.0f,
                              1.0e-8f,
                              20.0f,
                              -20.0f,
                              -30.0f,
                              std::numbers::pi_v<float> };

float someLevel (Dice& dice)
{
    return std::pow (10.0f, dice.unit() * 7.0f - 5.5f); // -110 to 30 dB
}

void fillWithNoise (std::span<float> channel, float level, Dice& dice)
{
    for (float& sample : channel)
        sample = level * dice.bipolar();
}

void fillWithTone (std::span<float> channel, float level, Dice& dice)
{
    const float step = 3.0f * dice.unit();
    float phase = 6.0f * dice.unit();

    for (float& sample : channel)
    {
        sample = level * std::sin (phase);
        phase = std::fmod (phase + step, 2.0f * std::numbers::pi_v<float>);
    }
}
} // namespace

void fillWithSomeSignal (std::span<float> channel, Dice& dice)
{
    switch (dice.below (6))
    {
    case 0:
        std::fill (channel.begin(), channel.end(), 0.0f);
        break;

    case 1:
        std::fill (channel.begin(), channel.end(), someLevel (dice));
        break;

    case 2:
        fillWithNoise (channel, 1.0e-38f, dice);
        break;

    case 3:
        fillWithTone (channel, someLevel (dice), dice);
        break;

    default:
        fillWithNoise (channel, someLevel (dice), dice);
    }

    if (! channel.empty() && dice.onceIn (4))
        for (std::size_t count = 1 + dice.below (8); count > 0; --count)
            channel[dice.below (channel.size())] = dice.oneOf (poison);
}

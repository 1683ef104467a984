// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <array>
#include <cstddef>

namespace larkspire
{

/** The positions of the plug-in's knob that have a name. The numbers are those of the plug-in. */
enum class KnobMode
{
    bypass = 0,
    gentle = 1,
    medium = 2,
    powerful = 3
};

/** All of them, in the order of the knob. */
inline constexpr std::array<KnobMode, 4> knobModes {
    KnobMode::bypass, KnobMode::gentle, KnobMode::medium, KnobMode::powerful
};

/** What the plug-in calls a mode. */
constexpr const char* nameOf (KnobMode mode)
{
    constexpr std::array<const char*, knobModes.size()> names { "bypass", "Gentle", "Medium", "Powerful" };
    return names.at (static_cast<std::size_t> (mode));
}

/** The parameter's value at a step of the knob, 0 to 9: ninths. From 4 on they have no name. */
constexpr float knobPosition (int step)
{
    return static_cast<float> (step) / 9.0f;
}

/** The parameter's value in a mode. */
constexpr float knobPosition (KnobMode mode)
{
    return knobPosition (static_cast<int> (mode));
}

} // namespace larkspire

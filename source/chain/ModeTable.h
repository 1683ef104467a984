// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/LevelRider.h"

#include <array>

namespace larkspire
{

/** The six settings of a LevelRider; the meanings stand there. */
struct RiderSettings
{
    float threshold;
    float attackRate;
    float releaseRate;
    float gainScale;
    float gainOffset;
    float outputGain;
};

/** The arguments of designPeaking that a mode fixes. */
struct PeakSettings
{
    float gainDb;
    float frequency; // Hz
    float bandwidth; // octaves
};

/** Corner in Hz and resonance of the high-pass. The Q is a 32-bit float that the design widens. */
struct HighPassSettings
{
    double corner;
    float q;
};

/** All that a position of the knob sets. */
struct ModeRow
{
    RiderSettings leveller;
    RiderSettings expander;
    PeakSettings air;
    PeakSettings body;
    HighPassSettings highPass;
};

// The product: four rows of numbers. The digits are those of the 32-bit floats themselves; two of the expander's
// thresholds stand one step of the last place beside the round number and are meant to.
// clang-format off

/** What prepares the chain for "bypass", and what positions without a name really run on. */
inline constexpr ModeRow neutralMode {
    .leveller = { .threshold = 1.0f,   .attackRate = 4.1327885e-07f, .releaseRate = 1.2697093e-07f, .gainScale = 0.5f, .gainOffset = 0.5f, .outputGain = 1.0f },
    .expander = { .threshold = 1e-06f, .attackRate = 0.00012331999f, .releaseRate = 1.2697093e-07f, .gainScale = 0.70710677f, .gainOffset = 0.29289323f, .outputGain = 1.0f },
    .air      = { .gainDb = 0.0f, .frequency = 10000.0f, .bandwidth = 2.0f },
    .body     = { .gainDb = 0.0f, .frequency = 120.0f,   .bandwidth = 2.0f },
    .highPass = { .corner = 20.0, .q = 1.0f },
};

/** "Gentle", "Medium" and "Powerful". */
inline constexpr std::array<ModeRow, 3> voiceModes { {
    {
        .leveller = { .threshold = 0.015f,          .attackRate = 0.00013360231f, .releaseRate = 5.4113156e-07f, .gainScale = 1.0f, .gainOffset = 0.0f, .outputGain = 25.0f },
        .expander = { .threshold = 0.000100000005f, .attackRate = 8.565843e-06f,  .releaseRate = 1.5935553e-05f, .gainScale = 0.8660254f, .gainOffset = 0.13397461f, .outputGain = 1.0f },
        .air      = { .gainDb = 7.0f, .frequency = 13000.0f, .bandwidth = 2.0f },
        .body     = { .gainDb = 1.0f, .frequency = 150.0f,   .bandwidth = 2.3f },
        .highPass = { .corner = 150.0, .q = 0.707f },
    },
    {
        .leveller = { .threshold = 0.015f,         .attackRate = 0.00020838086f, .releaseRate = 1.5935553e-05f, .gainScale = 1.0f, .gainOffset = 0.0f, .outputGain = 12.0f },
        .expander = { .threshold = 0.00020000001f, .attackRate = 8.565843e-06f,  .releaseRate = 1.5935553e-05f, .gainScale = 0.94868326f, .gainOffset = 0.051316738f, .outputGain = 1.0f },
        .air      = { .gainDb = 12.0f, .frequency = 15000.0f, .bandwidth = 1.8f },
        .body     = { .gainDb = 1.5f,  .frequency = 120.0f,   .bandwidth = 2.3f },
        .highPass = { .corner = 135.0, .q = 0.85f },
    },
    {
        .leveller = { .threshold = 0.015f,   .attackRate = 0.00032501374f, .releaseRate = 6.791503e-05f,  .gainScale = 1.0f, .gainOffset = 0.0f, .outputGain = 9.0f },
        .expander = { .threshold = 0.00025f, .attackRate = 8.565843e-06f,  .releaseRate = 1.5935553e-05f, .gainScale = 1.0f, .gainOffset = 0.0f, .outputGain = 1.0f },
        .air      = { .gainDb = 12.0f, .frequency = 15000.0f, .bandwidth = 1.8f },
        .body     = { .gainDb = 3.0f,  .frequency = 120.0f,   .bandwidth = 2.3f },
        .highPass = { .corner = 125.0, .q = 1.0f },
    },
} };

// clang-format on

/** The row of a mode index: 1 to 3 are the voice modes, every other index, negative ones too, is the neutral row. */
constexpr const ModeRow& modeForIndex (int modeIndex)
{
    if (modeIndex < 1 || modeIndex > static_cast<int> (voiceModes.size()))
        return neutralMode;

    return voiceModes[static_cast<std::size_t> (modeIndex - 1)];
}

/** Writes a row's settings and leaves the running gains where they are. */
constexpr void applySettings (LevelRider& rider, const RiderSettings& settings)
{
    rider.threshold = settings.threshold;
    rider.attackRate = settings.attackRate;
    rider.releaseRate = settings.releaseRate;
    rider.gainScale = settings.gainScale;
    rider.gainOffset = settings.gainOffset;
    rider.outputGain = settings.outputGain;
}

} // namespace larkspire

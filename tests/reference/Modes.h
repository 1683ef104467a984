// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <array>
#include <cstddef>

/** What the oracle is made of. Nothing here includes anything of the plug-in. */
namespace reference
{

/** The settings of an automatic gain: the expander or the leveller. */
struct Rider
{
    float threshold;
    float attackRate;
    float releaseRate;
    float gainScale;
    float gainOffset;
    float outputGain;
};

/** The settings of a peaking filter. */
struct Peak
{
    float gainDb;
    float frequency; // Hz
    float bandwidth; // octaves
};

struct Mode
{
    const char* name;
    Rider leveller;
    Rider expander;
    Peak air;
    Peak body;
    double corner; // of the high-pass, Hz
    float q;
};

// The product's numbers once more, kept by hand: for the oracle and for every test that needs one.
// clang-format off
inline constexpr std::array<Mode, 4> modes { {
    {
        .name = "neutral",
        .leveller = { .threshold = 1.0f, .attackRate = 4.1327885e-07f, .releaseRate = 1.2697093e-07f,
                      .gainScale = 0.5f, .gainOffset = 0.5f, .outputGain = 1.0f },
        .expander = { .threshold = 1e-06f, .attackRate = 0.00012331999f, .releaseRate = 1.2697093e-07f,
                      .gainScale = 0.70710677f, .gainOffset = 0.29289323f, .outputGain = 1.0f },
        .air = { .gainDb = 0.0f, .frequency = 10000.0f, .bandwidth = 2.0f },
        .body = { .gainDb = 0.0f, .frequency = 120.0f, .bandwidth = 2.0f },
        .corner = 20.0, .q = 1.0f,
    },
    {
        .name = "gentle",
        .leveller = { .threshold = 0.015f, .attackRate = 0.00013360231f, .releaseRate = 5.4113156e-07f,
                      .gainScale = 1.0f, .gainOffset = 0.0f, .outputGain = 25.0f },
        .expander = { .threshold = 0.000100000005f, .attackRate = 8.565843e-06f, .releaseRate = 1.5935553e-05f,
                      .gainScale = 0.8660254f, .gainOffset = 0.13397461f, .outputGain = 1.0f },
        .air = { .gainDb = 7.0f, .frequency = 13000.0f, .bandwidth = 2.0f },
        .body = { .gainDb = 1.0f, .frequency = 150.0f, .bandwidth = 2.3f },
        .corner = 150.0, .q = 0.707f,
    },
    {
        .name = "medium",
        .leveller = { .threshold = 0.015f, .attackRate = 0.00020838086f, .releaseRate = 1.5935553e-05f,
                      .gainScale = 1.0f, .gainOffset = 0.0f, .outputGain = 12.0f },
        .expander = { .threshold = 0.00020000001f, .attackRate = 8.565843e-06f, .releaseRate = 1.5935553e-05f,
                      .gainScale = 0.94868326f, .gainOffset = 0.051316738f, .outputGain = 1.0f },
        .air = { .gainDb = 12.0f, .frequency = 15000.0f, .bandwidth = 1.8f },
        .body = { .gainDb = 1.5f, .frequency = 120.0f, .bandwidth = 2.3f },
        .corner = 135.0, .q = 0.85f,
    },
    {
        .name = "powerful",
        .leveller = { .threshold = 0.015f, .attackRate = 0.00032501374f, .releaseRate = 6.791503e-05f,
                      .gainScale = 1.0f, .gainOffset = 0.0f, .outputGain = 9.0f },
        .expander = { .threshold = 0.00025f, .attackRate = 8.565843e-06f, .releaseRate = 1.5935553e-05f,
                      .gainScale = 1.0f, .gainOffset = 0.0f, .outputGain = 1.0f },
        .air = { .gainDb = 12.0f, .frequency = 15000.0f, .bandwidth = 1.8f },
        .body = { .gainDb = 3.0f, .frequency = 120.0f, .bandwidth = 2.3f },
        .corner = 125.0, .q = 1.0f,
    },
} };
// clang-format on

/** The row that a position of the knob runs on: those without a name share the neutral one. */
constexpr const Mode& modeAt (int position)
{
    return modes[position >= 1 && position <= 3 ? static_cast<std::size_t> (position) : 0];
}

} // namespace reference

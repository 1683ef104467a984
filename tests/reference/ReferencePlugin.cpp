// SPDX-License-Identifier: AGPL-3.0-only
#include "reference/ReferencePlugin.h"

ReferencePlugin::ReferencePlugin (bool isMono)
    : ReferencePlugin (isMono, { [] (float x) { return std::sin (x); }, [] (float x) { return std::atan (x); } })
{
}

int ReferencePlugin::indexOf (float value)
{
    constexpr int noNumber = -1;
    return std::isnan (value) ? noNumber : static_cast<int> (std::lround (9.0f * value));
}

void ReferencePlugin::process (float& left, float& right)
{
    float l = left;

    if (l >= -30.0f)
        l = std::fmin (l, 20.0f);
    else
        l = -30.0f;

    float r = l;

    if (! mono)
    {
        r = right;

        if (r >= -20.0f)
            r = std::fmin (r, 20.0f);
        else
            r = -20.0f;
    }

    refreshCounter = (refreshCounter + 1) % 65536;

    if (due || refreshCounter == 0)
    {
        due = false;
        refresh();
    }

    if (parameter < lastParameter || parameter > lastParameter)
    {
        lastParameter = parameter;
        due = true;
    }

    if (modeIndex != 0)
        chain (l, r);

    left = l;

    if (! mono)
        right = r;
}

void ReferencePlugin::refresh()
{
    if (hostRate > 999.0 && hostRate < 10000000001.0)
        rate = hostRate;

    modeIndex = indexOf (parameter);

    const auto& mode = reference::modeAt (modeIndex);
    leveller = mode.leveller;
    expander = mode.expander;
    design (air, static_cast<float> (rate), mode.air);
    design (body, static_cast<float> (rate), mode.body);
    design (highPass, rate, mode.corner, mode.q);
}

void ReferencePlugin::chain (float& left, float& right)
{
    float l = run (highPass, 0, left);
    float r = run (highPass, 1, right);
    expanderGain[0] = reference::expanderGain (expander, expanderGain[0], l);
    expanderGain[1] = reference::expanderGain (expander, expanderGain[1], r);
    l = ridden (expander, expanderGain[0], l);
    r = ridden (expander, expanderGain[1], r);
    reference::fold (l, r);

    float al = l;
    float ar = r;
    run (air, al, ar);

    float bl = l;
    float br = r;
    run (body, bl, br);

    const float v[2] = { functions.arcTangent ((al - l) * 50.0f) * 0.02f + bl,
                         functions.arcTangent ((ar - r) * 50.0f) * 0.02f + br };
    float out[2] = {};

    for (std::size_t i = 0; i < 2; ++i)
    {
        levellerGain[i] = reference::levellerGain (leveller, levellerGain[i], v[i]);
        float w = ridden (leveller, levellerGain[i], v[i]);
        const float quarterTurn = std::bit_cast<float> (0x3FC90FDBu);

        if (w < -quarterTurn)
            w = -quarterTurn;

        if (w > quarterTurn)
            w = quarterTurn;

        out[i] = functions.sine (w) * 0.9885f;
    }

    left = out[0];
    right = out[1];
}

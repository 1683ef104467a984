// SPDX-License-Identifier: AGPL-3.0-only
#include "reference/ReferencePlugin.h"

#include <bit>
#include <cmath>

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

    float airGain = 0, airFrequency = 0, airBandwidth = 0;
    float bodyGain = 0, bodyFrequency = 0, bodyBandwidth = 0;
    double piCorner = 0, inverseQ = 0;

    if (modeIndex == 1)
    {
        levellerThreshold = 0.015f;
        levellerAttack = 0.00013360231f;
        levellerRelease = 5.4113156e-07f;
        levellerScale = 1.0f;
        levellerOffset = 0.0f;
        levellerOutput = 25.0f;
        expanderThreshold = 0.000100000005f;
        expanderAttack = 8.565843e-06f;
        expanderScale = 0.8660254f;
        expanderOffset = 0.13397461f;
        expanderOutput = 1.0f;
        airGain = 7.0f;
        airFrequency = 13000.0f;
        airBandwidth = 2.0f;
        bodyGain = 1.0f;
        bodyFrequency = 150.0f;
        bodyBandwidth = 2.3f;
        piCorner = 471.23889803846896;
        inverseQ = 1.4144271226587684;
    }
    else if (modeIndex == 2)
    {
        levellerThreshold = 0.015f;
        levellerAttack = 0.00020838086f;
        levellerRelease = 1.5935553e-05f;
        levellerScale = 1.0f;
        levellerOffset = 0.0f;
        levellerOutput = 12.0f;
        expanderThreshold = 0.00020000001f;
        expanderAttack = 8.565843e-06f;
        expanderScale = 0.94868326f;
        expanderOffset = 0.051316738f;
        expanderOutput = 1.0f;
        airGain = 12.0f;
        airFrequency = 15000.0f;
        airBandwidth = 1.8f;
        bodyGain = 1.5f;
        bodyFrequency = 120.0f;
        bodyBandwidth = 2.3f;
        piCorner = 424.11500823462205;
        inverseQ = 1.1764705552361838;
    }
    else if (modeIndex == 3)
    {
        levellerThreshold = 0.015f;
        levellerAttack = 0.00032501374f;
        levellerRelease = 6.791503e-05f;
        levellerScale = 1.0f;
        levellerOffset = 0.0f;
        levellerOutput = 9.0f;
        expanderThreshold = 0.00025f;
        expanderAttack = 8.565843e-06f;
        expanderScale = 1.0f;
        expanderOffset = 0.0f;
        expanderOutput = 1.0f;
        airGain = 12.0f;
        airFrequency = 15000.0f;
        airBandwidth = 1.8f;
        bodyGain = 3.0f;
        bodyFrequency = 120.0f;
        bodyBandwidth = 2.3f;
        piCorner = 392.6990816987241;
        inverseQ = 1.0;
    }
    else
    {
        levellerThreshold = 1.0f;
        levellerAttack = 4.1327885e-07f;
        levellerRelease = 1.2697093e-07f;
        levellerScale = 0.5f;
        levellerOffset = 0.5f;
        levellerOutput = 1.0f;
        expanderThreshold = 1e-06f;
        expanderAttack = 0.00012331999f;
        expanderScale = 0.70710677f;
        expanderOffset = 0.29289323f;
        expanderOutput = 1.0f;
        airGain = 0.0f;
        airFrequency = 10000.0f;
        airBandwidth = 2.0f;
        bodyGain = 0.0f;
        bodyFrequency = 120.0f;
        bodyBandwidth = 2.0f;
        piCorner = 62.83185307179586;
        inverseQ = 1.0;
    }

    design (air, static_cast<float> (rate), airGain, airFrequency, airBandwidth);
    design (body, static_cast<float> (rate), bodyGain, bodyFrequency, bodyBandwidth);

    const double k = std::tan (piCorner / rate);
    const double c = 1.0 / ((k * inverseQ + 1.0) + k * k);
    highPass.c0 = static_cast<float> (c);
    highPass.c1 = static_cast<float> (c * -2.0);
    highPass.c2 = static_cast<float> (c);
    highPass.c3 = static_cast<float> ((c + c) * (k * k - 1.0));
    highPass.c4 = static_cast<float> (((1.0 - k * inverseQ) + k * k) * c);
}

void ReferencePlugin::design (Biquad& filter, float designRate, float gainDb, float frequency, float bandwidth)
{
    const float a = std::pow (10.0f, gainDb * 0.025f);
    float w = frequency * std::bit_cast<float> (0x40C90FDCu);
    w = w / designRate;
    const float s = std::sin (w);
    const float c = std::cos (w);
    float t = bandwidth * std::bit_cast<float> (0x3EB17218u);
    t = t * w;
    t = t / s;
    float alpha = std::sinh (t) * s;

    if (! (alpha < 1.5f))
        alpha = 1.5f;

    filter.b0 = 1.0f + alpha * a;
    filter.b1 = -2.0f * c;
    filter.b2 = 1.0f - alpha * a;
    filter.a0 = 1.0f + alpha / a;
    filter.a1 = -2.0f * c;
    filter.a2 = 1.0f - alpha / a;
}

void ReferencePlugin::run (Biquad& filter, float& left, float& right)
{
    const float r = 1.0f / filter.a0;
    const float b0 = r * filter.b0;
    const float b1 = r * filter.b1;
    const float b2 = r * filter.b2;
    const float a1 = r * filter.a1;
    const float a2 = r * filter.a2;

    for (std::size_t channel = 0; channel < 2; ++channel)
    {
        float& sample = channel == 0 ? left : right;
        const float x = sample;
        float y = b0 * x;
        y = y + b1 * filter.x1[channel];
        y = y + b2 * filter.x2[channel];
        y = y - a1 * filter.y1[channel];
        y = y - a2 * filter.y2[channel];
        filter.x2[channel] = filter.x1[channel];
        filter.x1[channel] = x;
        filter.y2[channel] = filter.y1[channel];
        filter.y1[channel] = y;
        sample = y;
    }
}

float ReferencePlugin::runHighPass (int channel, float x)
{
    // A direct form II in its transposed shape; outputs within 1e-8 of zero, and what is no number, become zero.
    float& v1 = highPass.v1[static_cast<std::size_t> (channel)];
    float& v2 = highPass.v2[static_cast<std::size_t> (channel)];
    float y = highPass.c0 * x + v1;

    if (! (y < -1.0e-8f || y > 1.0e-8f))
        y = 0.0f;

    v1 = highPass.c1 * x - highPass.c3 * y + v2;
    v2 = highPass.c2 * x - highPass.c4 * y;
    return y;
}

void ReferencePlugin::chain (float& left, float& right)
{
    const float x[2] = { runHighPass (0, left), runHighPass (1, right) };

    for (std::size_t i = 0; i < 2; ++i)
    {
        float g = expanderGain[i];

        if (std::fabs (g * x[i]) > expanderThreshold)
        {
            g = (std::fabs (x[i] / expanderThreshold) * expanderAttack + 1.0f) * g;
        }
        else
        {
            g = g * 0.9998f;

            if (! (g >= 0.2f))
                g = 0.2f;
        }

        if (g > 1.0f)
            g = 1.0f;

        expanderGain[i] = g;
    }

    const float dl = (expanderGain[0] * expanderScale + expanderOffset) * x[0] * expanderOutput;
    const float dr = (expanderGain[1] * expanderScale + expanderOffset) * x[1] * expanderOutput;

    const float s = (dl - dr) * 0.5f;
    const float m = dr + dl;
    const float ul = (s + m) * 0.75f;
    const float ur = (m - s) * 0.75f;

    float al = ul;
    float ar = ur;
    run (air, al, ar);

    float bl = ul;
    float br = ur;
    run (body, bl, br);

    const float v[2] = { functions.arcTangent ((al - ul) * 50.0f) * 0.02f + bl,
                         functions.arcTangent ((ar - ur) * 50.0f) * 0.02f + br };
    float out[2] = {};

    for (std::size_t i = 0; i < 2; ++i)
    {
        float g = levellerGain[i];

        if (std::fabs (g * v[i]) > levellerThreshold)
        {
            g = g / (std::fabs (v[i] / levellerThreshold) * levellerAttack + 1.0f);
        }
        else
        {
            g = (1.0f - g) * levellerRelease + g;

            if (g > 1.0f)
                g = 1.0f;
        }

        levellerGain[i] = g;

        float w = (g * levellerScale + levellerOffset) * v[i] * levellerOutput;
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

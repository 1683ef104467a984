// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <array>
#include <cstdint>

/** The oracle: the whole audible behaviour of the plug-in once more, written as plainly as it can be.

    One scalar statement after another with the C library's functions, no structure to share and no include from the
    plug-in, so that both can only agree by both being right. It knows the block loop's limits and refresh, the change
    watch, the table, the design and the chain. 32-bit floats throughout, but for the high-pass design.
*/
class ReferencePlugin
{
public:
    /** The two functions that a last bit may come from. Whoever compares to the bit gives those of the plug-in. */
    struct Functions
    {
        float (*sine) (float);
        float (*arcTangent) (float);
    };

    /** With the C library's functions. */
    explicit ReferencePlugin (bool isMono);
    ReferencePlugin (bool isMono, Functions given) : functions (given), mono (isMono) {}

    /** The host's automation value, 0 to 1. */
    void setParameter (float value) { parameter = value; }

    /** The host's rate in Hz, as it stands after a resume. It reaches the filters with the next refresh. */
    void setHostRate (double newRate) { hostRate = newRate; }

    /** The host's layout: one channel or two. */
    void setMono (bool isMono) { mono = isMono; }

    /** What a load of a state asks for, whatever it holds. */
    void requestRefresh() { due = true; }

    /** One sample in place; on a mono layout right is neither read nor written. The caller sets flush-to-zero. */
    void process (float& left, float& right);

    int modeIndex = 2;
    std::array<float, 2> expanderGain { 0.5f, 0.5f };
    std::array<float, 2> levellerGain { 0.5f, 0.5f };

private:
    struct Biquad
    {
        float b0 = 0, b1 = 0, b2 = 0, a0 = 0, a1 = 0, a2 = 0;
        std::array<float, 2> x1 {}, x2 {}, y1 {}, y2 {};
    };

    struct HighPass
    {
        float c0 = 0, c1 = 0, c2 = 0, c3 = 0, c4 = 0;
        std::array<float, 2> v1 {}, v2 {};
    };

    void refresh();
    static int indexOf (float value);
    void chain (float& left, float& right);
    float runHighPass (int channel, float x);
    static void design (Biquad& filter, float designRate, float gainDb, float frequency, float bandwidth);
    static void run (Biquad& filter, float& left, float& right);

    Functions functions;
    bool mono;
    float parameter = 2.0f / 9.0f;
    float lastParameter = -1e20f;
    double hostRate = 0.0;
    double rate = 96000.0;
    std::uint32_t refreshCounter = 0;
    bool due = true;

    float levellerThreshold = 0, levellerAttack = 0, levellerRelease = 0, levellerScale = 0, levellerOffset = 0,
          levellerOutput = 0;
    float expanderThreshold = 0, expanderAttack = 0, expanderScale = 0, expanderOffset = 0, expanderOutput = 0;
    Biquad air;
    Biquad body;
    HighPass highPass;
};

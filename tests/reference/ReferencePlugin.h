// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "reference/Stages.h"

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
    void refresh();
    static int indexOf (float value);
    void chain (float& left, float& right);

    Functions functions;
    bool mono;
    float parameter = 2.0f / 9.0f;
    float lastParameter = -1e20f;
    double hostRate = 0.0;
    double rate = 96000.0;
    std::uint32_t refreshCounter = 0;
    bool due = true;

    reference::Rider leveller {};
    reference::Rider expander {};
    reference::Biquad air;
    reference::Biquad body;
    reference::HighPass highPass;
};

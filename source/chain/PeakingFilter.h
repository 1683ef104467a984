// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

namespace larkspire
{

/** A two-channel peaking biquad in direct form I, 32-bit floats throughout.

    The coefficients stay unnormalised and the channels share them. All zero, as here, the filter divides by zero: it
    must be designed before it runs.
*/
struct PeakingFilter
{
    /** What one channel remembers: inputs and outputs of the samples before. */
    struct ChannelState
    {
        float x0 = 0.0f; // the newest input, kept beside the memory but not part of the recursion
        float x1 = 0.0f;
        float x2 = 0.0f;
        float y1 = 0.0f;
        float y2 = 0.0f;
    };

    float b0 = 0.0f;
    float b1 = 0.0f;
    float b2 = 0.0f;
    float a0 = 0.0f;
    float a1 = 0.0f;
    float a2 = 0.0f;
    ChannelState left;
    ChannelState right;
};

static_assert (sizeof (PeakingFilter) == 16 * sizeof (float));

/** Designs a peaking equaliser and leaves the filter's memory alone, so that it may run between two samples.

    The peaking equaliser of the Audio EQ Cookbook in its bandwidth form, A = 10^(gain / 40):

        w0    = 2 pi frequency / sampleRate
        alpha = sin (w0) sinh (ln 2 / 2 * bandwidth * w0 / sin (w0)), at most 1.5
        b     = 1 + alpha A,  -2 cos (w0),  1 - alpha A
        a     = 1 + alpha / A, -2 cos (w0), 1 - alpha / A

    Any numbers are taken: a frequency at or above half the sample rate gives a filter too, if not a useful one, and an
    alpha that is NaN becomes the cap.

    @param sampleRate  in Hz
    @param gainDb      the gain at the centre, in dB
    @param frequency   the centre, in Hz
    @param bandwidth   in octaves
*/
void designPeaking (PeakingFilter& filter, float sampleRate, float gainDb, float frequency, float bandwidth);

/** y = (b0 x + b1 x1 + b2 x2 - a1 y1 - a2 y2) / a0, each coefficient divided first, the terms added in this order. */
inline float step (PeakingFilter::ChannelState& state, float nb0, float nb1, float nb2, float na1, float na2, float x)
{
    const float y = nb0 * x + nb1 * state.x1 + nb2 * state.x2 - na1 * state.y1 - na2 * state.y2;
    state.x0 = x;
    state.x2 = state.x1;
    state.x1 = x;
    state.y2 = state.y1;
    state.y1 = y;
    return y;
}

/** Filters one sample of each channel in place. The coefficients are normalised at every call; nothing is cached. */
inline void process (PeakingFilter& filter, float& left, float& right)
{
    const float r = 1.0f / filter.a0;
    const float nb0 = r * filter.b0;
    const float nb1 = r * filter.b1;
    const float nb2 = r * filter.b2;
    const float na1 = r * filter.a1;
    const float na2 = r * filter.a2;
    left = step (filter.left, nb0, nb1, nb2, na1, na2, left);
    right = step (filter.right, nb0, nb1, nb2, na1, na2, right);
}

} // namespace larkspire

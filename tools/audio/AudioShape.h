// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

namespace larkspire
{

/** What both ends of a rendering have in common. */
struct AudioShape
{
    int channels = 1;
    int sampleRate = 44100; // Hz
};

} // namespace larkspire

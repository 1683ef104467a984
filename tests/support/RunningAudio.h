// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/Repeating.h"

#include <array>
#include <atomic>
#include <cmath>
#include <vector>

/** Blocks of a tone, some quiet, some far too loud, through an instance on a thread of its own, until the end of this.
 */
class RunningAudio
{
public:
    template <typename Plugin>
    explicit RunningAudio (Plugin& plugin) : thread ([this, &plugin] { processBlock (plugin); })
    {
    }

    std::size_t blocks() const { return thread.times(); }
    bool wasAlwaysFinite() const { return finite; }

    /** Whether nothing came out that the soft clip would not let through. In bypass that is not so. */
    bool wasAlwaysWithinItsBounds() const { return withinBounds; }

private:
    template <typename Plugin>
    void processBlock (Plugin& plugin)
    {
        constexpr std::array levels { 0.001f, 0.25f, 1.0f, 19.0f };
        const float level = levels.at (nextLevel++ % levels.size());

        for (std::size_t i = 0; i < left.size(); ++i)
            left[i] = right[i] = level * std::sin (0.05f * static_cast<float> (i));

        float* const channels[] = { left.data(), right.data() };
        plugin.process (channels, channels, left.size());

        for (const auto* channel : { &left, &right })
            for (const float sample : *channel)
            {
                if (! std::isfinite (sample))
                    finite = false;

                if (! (std::abs (sample) <= 0.9885f))
                    withinBounds = false;
            }
    }

    std::vector<float> left = std::vector<float> (256);
    std::vector<float> right = std::vector<float> (256);
    std::size_t nextLevel = 0;
    std::atomic<bool> finite { true };
    std::atomic<bool> withinBounds { true };
    Repeating thread; // the last member: it begins when all others are there
};

// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/RawHost.h"

#include <array>
#include <atomic>
#include <cmath>
#include <thread>
#include <vector>

/** Blocks of a tone, some quiet, some far too loud, through an instance on a thread of its own, until the end of this.
 */
class RunningAudio
{
public:
    explicit RunningAudio (RawHost& host) : thread ([this, &host] { run (host); }) {}

    ~RunningAudio()
    {
        stop = true;
        thread.join();
    }

    RunningAudio (const RunningAudio&) = delete;
    RunningAudio& operator= (const RunningAudio&) = delete;

    std::size_t blocks() const { return blockCount; }
    bool wasAlwaysFinite() const { return finite; }

    /** Whether nothing came out that the soft clip would not let through. In bypass that is not so. */
    bool wasAlwaysWithinItsBounds() const { return withinBounds; }

private:
    void run (RawHost& host)
    {
        constexpr std::array levels { 0.001f, 0.25f, 1.0f, 19.0f };
        std::vector<float> left (256);
        std::vector<float> right (256);

        while (! stop)
        {
            const float level = levels.at (blockCount % levels.size());

            for (std::size_t i = 0; i < left.size(); ++i)
                left[i] = right[i] = level * std::sin (0.05f * static_cast<float> (i));

            host.process (left, right, 0, left.size());

            for (const auto* channel : { &left, &right })
                for (const float sample : *channel)
                {
                    if (! std::isfinite (sample))
                        finite = false;

                    if (! (std::abs (sample) <= 0.9885f))
                        withinBounds = false;
                }

            ++blockCount;
        }
    }

    std::atomic<bool> stop { false };
    std::atomic<bool> finite { true };
    std::atomic<bool> withinBounds { true };
    std::atomic<std::size_t> blockCount { 0 };
    std::thread thread;
};

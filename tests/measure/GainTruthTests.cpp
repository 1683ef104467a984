// SPDX-License-Identifier: AGPL-3.0-only
// The committed times of the gains against what follows from the settings on paper.
#include "measure/CommittedTables.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <string>

namespace
{
constexpr double pi = std::numbers::pi;

struct Gains
{
    std::string mode;
    double expanderThreshold, expanderScale;
    double levellerAttack, levellerRelease;
};

// Written down once more; the plug-in's own table is not asked.
const Gains gains[] = { { "gentle", 0.0001, std::sqrt (0.75), 0.00013360231, 5.4113156e-07 },
                        { "medium", 0.0002, std::sqrt (0.9), 0.00020838086, 1.5935553e-05 },
                        { "powerful", 0.00025, 1.0, 0.00032501374, 6.791503e-05 } };

double fromDecibels (double decibels)
{
    return std::pow (10.0, decibels / 20.0);
}

/** The expander's applied gain for a running gain. */
double applied (const Gains& g, double running)
{
    return running * g.expanderScale + 1.0 - g.expanderScale;
}

/** The running gain at a part of the way in dB from open to closed. */
double runningAt (const Gains& g, double part)
{
    return (std::pow (applied (g, 0.2), part) - 1.0 + g.expanderScale) / g.expanderScale;
}

/** The mean of |x| where a sine of this peak is above 1, per sample of the whole. */
double meanAbove (double peak)
{
    return peak > 1.0 ? peak * std::sqrt (1.0 - 1.0 / (peak * peak)) * 2.0 / pi : 0.0;
}

/** The part of the time that it is below. */
double partBelow (double peak)
{
    return peak > 1.0 ? std::asin (1.0 / peak) * 2.0 / pi : 1.0;
}

/** How long the expander takes to open, by the mean of its growth and decay over a sine. */
double openingTime (const Gains& g, double level)
{
    const double peak = fromDecibels (level) / g.expanderThreshold;
    double running = 0.2;
    double frames = 0;

    while (running < runningAt (g, 0.1) && frames < 1e6)
    {
        // A sample counts as above by the scaled gain and moves it by the raw one.
        const double scaled = running * peak;
        running *= 1.0 + 8.565843e-06 * meanAbove (scaled) / running - 0.0002 * partBelow (scaled);
        frames += 1.0;
    }

    return frames;
}

TEST (GainTruth, TheExpanderClosesByItsDecay)
{
    const auto times = committed ("times");

    for (const auto& g : gains)
    {
        const double expected = std::log (runningAt (g, 0.9)) / std::log (0.9998);

        // The filters' ringing keeps it open for a moment longer.
        for (const std::string rate : { "44100", "48000", "96000" })
        {
            const double closing = times.at ("expander closes", g.mode + "_" + rate + "_frames");
            EXPECT_GT (closing, 0.995 * expected) << g.mode << " at " << rate;
            EXPECT_LT (closing, 1.03 * expected) << g.mode << " at " << rate;
        }
    }
}

TEST (GainTruth, TheExpanderOpensByItsAttack)
{
    const auto times = committed ("times");
    const auto opening = committed ("opening");

    for (const auto& g : gains)
    {
        EXPECT_NEAR (times.at ("expander opens", g.mode + "_48000_frames"),
                     openingTime (g, -42.0),
                     0.05 * openingTime (g, -42.0))
            << g.mode;

        for (const std::string level : { "-12", "-24", "-36", "-42" })
            EXPECT_NEAR (opening.at (level, g.mode + "_stage_frames"),
                         openingTime (g, std::stod (level)),
                         24.0 + 0.03 * openingTime (g, std::stod (level)))
                << g.mode << " at " << level;
    }
}

TEST (GainTruth, TheLibraryOpensLikeTheStage)
{
    const auto opening = committed ("opening");
    int compared = 0;

    for (const auto& g : gains)
        for (const auto& row : opening.rows)
        {
            const double ofLibrary = opening.at (row.key, g.mode + "_library_frames");
            const double ofStage = opening.at (row.key, g.mode + "_stage_frames");

            // Near the level at which it does not open at all, a hair's breadth of level is much time.
            if (std::isnan (ofLibrary) || ofStage > 20000.0)
                continue;

            EXPECT_NEAR (ofLibrary, ofStage, 0.03 * ofStage) << g.mode << " at " << row.key;
            ++compared;
        }

    EXPECT_GE (compared, 12);
}

/** The peak of the tone behind the filters, over the leveller's threshold. */
double overLeveller (double level)
{
    constexpr double filters = 1.03; // at 1 kHz
    return fromDecibels (level) * 1.5 * filters / 0.015;
}

TEST (GainTruth, TheLevellerFallsByItsAttack)
{
    const auto times = committed ("times");

    for (const auto& g : gains)
    {
        const double peak = overLeveller (-22.0);
        const double settled = 1.0 / peak;
        const double wanted = std::pow (settled, 0.9);
        double gain = 1.0;
        double frames = 0;

        for (; gain > wanted; frames += 1.0)
            gain *= 1.0 - g.levellerAttack * meanAbove (gain * peak) / gain;

        EXPECT_NEAR (times.at ("leveller falls", g.mode + "_48000_frames"), frames, 0.05 * frames) << g.mode;
    }
}

TEST (GainTruth, TheLevellerReturnsByItsRelease)
{
    const auto times = committed ("times");

    for (const auto& g : gains)
    {
        // Gentle's steps are a few units of a float's last place, so its way must be gone in floats. It ends where a
        // step is too small to count.
        const auto release = static_cast<float> (g.levellerRelease);
        const auto next = [&] (float gain) { return (1.0f - gain) * release + gain; };
        const auto lowered = static_cast<float> (1.0 / overLeveller (-22.0));
        float end = lowered;

        while (next (end) > end)
            end = next (end);

        const float wanted = end * std::pow (lowered / end, 0.1f);
        double expected = 0;

        for (float gain = lowered; gain < wanted; gain = next (gain))
            expected += 1.0;

        for (const std::string rate : { "44100", "48000", "96000" })
            EXPECT_NEAR (times.at ("leveller returns", g.mode + "_" + rate + "_frames"), expected, 0.03 * expected)
                << g.mode << " at " << rate;
    }
}

TEST (GainTruth, TimesAreCountedInSamplesAtEveryRate)
{
    const auto times = committed ("times");

    for (const auto& row : times.rows)
        for (const auto& g : gains)
            for (const std::string rate : { "44100", "96000" })
            {
                const auto at48k = times.at (row.key, g.mode + "_48000_frames");
                EXPECT_NEAR (times.at (row.key, g.mode + "_" + rate + "_frames"), at48k, 0.015 * at48k)
                    << row.key << ", " << g.mode << " at " << rate;
            }
}

TEST (GainTruth, TheImageBeginsAsTheFoldLeavesItWhereNothingClipsYet)
{
    const auto image = committed ("image-over-time");
    EXPECT_NEAR (image.at ("0.5", "powerful_db"), 20.0 * std::log10 (3.0), 0.3);
}
} // namespace

// SPDX-License-Identifier: AGPL-3.0-only
#include "render/Advice.h"

#include "base/Texts.h"
#include "meter/LevelAdvice.h"

#include <algorithm>
#include <cmath>

namespace larkspire::render
{

namespace
{
/** What a mode wants; not for bypass, which wants nothing. */
const meter::LevelAdvice& levelAdviceFor (KnobMode mode)
{
    return meter::levelAdvice.at (static_cast<std::size_t> (mode) - 1);
}

std::string decibels (double value)
{
    return fixed (value, 1) + " dB";
}

std::string peakOption (double peakDbfs, const Trial& trial)
{
    return "--input-peak " + std::to_string (std::lround (peakDbfs + trial.gainDb));
}

std::string distanceSentence (const Trial& now, double peakDbfs)
{
    const auto ahead = *now.before.distanceDb();
    const auto behind = *now.after.distanceDb();
    const auto change = behind - ahead;
    return "with a peak of " + fixed (peakDbfs + now.gainDb, 1) + " dBFS the voice lies at "
           + fixed (*now.before.voiceDbfs, 1) + " dBFS and the room at " + fixed (*now.before.roomDbfs, 1) + ": "
           + decibels (ahead) + " apart, and behind " + nameOf (now.mode) + " " + decibels (behind) + ", "
           + decibels (std::abs (change)) + (change < 0.0 ? " less" : " more");
}

/** What would let the expander close: other modes at this gain, and less gain. */
std::string remediesIn (const std::vector<Trial>& trials, double peakDbfs)
{
    const auto& now = trials.front();
    const Trial* highest = nullptr;
    std::string remedies;
    const auto add = [&remedies] (const std::string& remedy) { remedies += (remedies.empty() ? "" : " or ") + remedy; };

    for (const auto& trial : trials)
    {
        if (! trial.closes)
            continue;

        if (trial.mode != now.mode)
            add (nameOf (trial.mode));
        else if (trial.gainDb < now.gainDb && (highest == nullptr || trial.gainDb > highest->gainDb))
            highest = &trial;
    }

    if (highest != nullptr)
        add (decibels (now.gainDb - highest->gainDb) + " less gain (" + peakOption (peakDbfs, *highest) + ")");

    return remedies;
}

std::string expanderSentence (const std::vector<Trial>& trials, double peakDbfs)
{
    const auto& now = trials.front();
    const std::string mode (nameOf (now.mode));

    if (now.closes)
        return "the expander closes in " + mode + " where only the room is heard";

    const auto room = *now.before.roomDbfs;
    const auto limit = double (levelAdviceFor (now.mode).highestRoom);
    const auto remedies = remediesIn (trials, peakDbfs);
    return "room at " + fixed (room, 0) + " dBFS" + (room > limit ? " lies above " + fixed (limit, 0) : "")
           + ": the expander will not close in " + mode + "; "
           + (remedies.empty() ? "nor will it in another mode, or with less gain" : remedies + " will do");
}

/** The level that most voices want, and the one that this recording does. */
std::string levelSentence (const std::vector<Trial>& trials, double peakDbfs)
{
    std::vector<Trial> ofMode;
    std::copy_if (trials.begin(),
                  trials.end(),
                  std::back_inserter (ofMode),
                  [&trials] (const Trial& trial) { return trial.mode == trials.front().mode; });
    const auto& best = *bestOf (ofMode);
    const auto gained = *best.after.distanceDb() - *trials.front().after.distanceDb();
    const auto general =
        "for " + std::string (nameOf (best.mode)) + " " + adviceOnPeak (levelAdviceFor (best.mode)) + "; ";

    if (gained < 0.5)
        return general + "this one keeps voice and room no further apart at another level";

    return general + "this one keeps voice and room furthest apart, " + decibels (*best.after.distanceDb()) + ", with "
           + peakOption (peakDbfs, best);
}
} // namespace

std::vector<Trial> trialsForAdvice (KnobMode mode, double peakDbfs, double gainDb)
{
    if (mode == KnobMode::bypass)
        return {};

    std::vector<Trial> trials { { .mode = mode, .gainDb = gainDb } };

    for (const auto other : knobModes)
        if (other != mode && other != KnobMode::bypass)
            trials.push_back ({ .mode = other, .gainDb = gainDb });

    const auto levels = trialsOfLevels (mode, peakDbfs);
    trials.insert (trials.end(), levels.begin(), levels.end());
    return trials;
}

Advice adviceFrom (std::vector<Trial> trials, double peakDbfs)
{
    Advice advice { .trials = std::move (trials), .sentences = {} };

    if (advice.trials.empty())
        return advice;

    const auto& now = advice.trials.front();

    if (! now.before.distanceDb().has_value())
        advice.sentences = { "there is no voice to be told from the room: it is silent or shorter than 0.05 s" };
    else
        advice.sentences = { distanceSentence (now, peakDbfs),
                             expanderSentence (advice.trials, peakDbfs),
                             levelSentence (advice.trials, peakDbfs) };

    return advice;
}

} // namespace larkspire::render

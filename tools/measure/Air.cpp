// SPDX-License-Identifier: AGPL-3.0-only
// What the air term lifts, by level: in the chain's own code, and of the built library.
#include "base/Texts.h"
#include "chain/AirTerm.h"
#include "chain/FiltersSideBySide.h"
#include "measure/DesignedPeak.h"
#include "measure/Frequencies.h"
#include "measure/Instance.h"
#include "measure/Measurements.h"
#include "measure/RestingGains.h"
#include "measure/Tone.h"
#include "measure/VoiceModes.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace larkspire::measure
{

namespace
{
constexpr std::array levels { -54.0, -42.0, -30.0, -18.0, -6.0 }; // dBFS

// The expander, once open, stays open at it in each mode, and the leveller is at rest whatever the air adds.
constexpr double levelOfLibrary = -54.0; // dBFS
constexpr double openingLevel = -42.0;   // dBFS, likewise

// Both channels alike come out of the fold so much louder.
constexpr double foldOfMiddle = 1.5;

constexpr std::size_t settling = usualRate / 20;
constexpr std::size_t listening = usualRate / 5;

/** The linear factor from what the fold gives to what the leveller gets. */
double gainOfStage (const VoiceMode& mode, double level, double frequency)
{
    RunningFilters filters (designedPeak (mode.settings().air), designedPeak (mode.settings().body));
    Tone tone (frequency / usualRate);
    const auto peak = fromDecibels (level) * foldOfMiddle;
    auto samples = tone.next (settling + listening, toDecibels (peak));

    for (auto& sample : samples)
    {
        const auto dry = broadcast (sample);
        const auto filtered = filters.process (dry);
        sample = addSaturatedAir (upperHalf (filtered), lowerHalf (filtered) - dry)[0];
    }

    return componentAt (std::span (samples).subspan (settling), frequency / usualRate) / peak;
}

double gainOfLibrary (Instance& instance, double frequency)
{
    Tone tone (frequency / usualRate);
    instance.process (tone.next (settling, levelOfLibrary));
    const auto output = instance.process (tone.next (listening, levelOfLibrary));
    return componentAt (output, frequency / usualRate) / fromDecibels (levelOfLibrary);
}

std::vector<float> sum (std::vector<float> a, const std::vector<float>& b)
{
    std::transform (a.begin(), a.end(), b.begin(), a.begin(), std::plus<>());
    return a;
}
} // namespace

Table measureAir (const Subject& subject)
{
    std::vector<std::string> endings;
    endings.reserve (levels.size() + 1);

    for (const auto level : levels)
        endings.push_back ("at_" + fixed (level, 0) + "_db");

    endings.push_back ("library_at_" + fixed (levelOfLibrary, 0) + "_db");
    Table table { .keyColumn = "frequency_hz", .columns = columnsForModes (endings) };
    const auto frequencies = frequenciesFrom (500.0);
    std::vector<std::vector<double>> lists;
    const auto addRelative = [&] (const auto& gainAt)
    {
        const auto reference = gainAt (referenceFrequency);
        auto& list = lists.emplace_back();

        for (const auto frequency : frequencies)
            list.push_back (toDecibels (gainAt (frequency) / reference));
    };

    for (const auto& mode : voiceModes)
    {
        for (const auto level : levels)
            addRelative ([&] (double frequency) { return gainOfStage (mode, level, frequency); });

        Instance instance (subject, mode, Instance::Start::atRest);
        Tone opening (referenceFrequency / usualRate);
        instance.process (opening.next (usualRate, openingLevel));
        addRelative ([&] (double frequency) { return gainOfLibrary (instance, frequency); });
    }

    table.addLists (frequencies, 2, lists);
    return table;
}

Table measureAirUnderVoice (const Subject& subject)
{
    constexpr double vowel = 250.0;          // Hz
    constexpr double consonant = 12000.0;    // Hz
    constexpr double consonantLevel = -48.0; // dBFS
    constexpr std::size_t settlingOnVowel = usualRate * std::size_t { 2 };
    Table table { .keyColumn = "vowel_dbfs", .columns = columnsForModes ({ "db" }) };
    const std::vector vowelLevels { -36.0, -24.0, -18.0, -12.0, -6.0, 0.0 };
    std::vector<std::vector<double>> lists;

    for (const auto& mode : voiceModes)
    {
        // The vowel's own gain shows where the leveller stands, once the filters' share in it is known.
        const auto atRest = restingGains (subject, mode, usualRate, { referenceFrequency, vowel });
        Instance instance (subject, mode, Instance::Start::fresh);
        Tone loud (vowel / usualRate);
        Tone soft (consonant / usualRate);
        auto& list = lists.emplace_back();

        for (const auto level : vowelLevels)
        {
            const auto next = [&] (std::size_t frames)
            { return sum (loud.next (frames, level), soft.next (frames, consonantLevel)); };
            instance.process (next (settlingOnVowel));
            const auto output = instance.process (next (usualRate / 2));
            const auto gainOfVowel = componentAt (output, vowel / usualRate) / fromDecibels (level);
            const auto gainOfConsonant = componentAt (output, consonant / usualRate) / fromDecibels (consonantLevel);
            list.push_back (toDecibels (gainOfConsonant / gainOfVowel * atRest[1] / atRest[0]));
        }
    }

    table.addLists (vowelLevels, 0, lists);
    return table;
}

} // namespace larkspire::measure

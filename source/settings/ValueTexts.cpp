// SPDX-License-Identifier: AGPL-3.0-only
#include "settings/ValueTexts.h"

#include "frame/DisplayMode.h"
#include "frame/TruncateToInt.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <vector>

namespace larkspire
{

namespace
{
enum class Sign
{
    onlyMinus,
    always
};

/** A number with a fixed count of decimals. */
std::string decimal (double number, int decimals, Sign sign = Sign::onlyMinus)
{
    const char* format = sign == Sign::always ? "%+.*f" : "%.*f";
    const int length = std::snprintf (nullptr, 0, format, decimals, number);
    std::string text (static_cast<std::size_t> (length), '\0');
    std::snprintf (text.data(), text.size() + 1, format, decimals, number);
    return text;
}

/** A whole number with its sign, except for 0. */
std::string signedWhole (int number)
{
    return (number > 0 ? "+" : "") + std::to_string (number);
}

std::string withUnit (const std::string& number, const std::string& unit)
{
    return number + " " + unit;
}

/** Halves go away from zero. */
int roundToInt (double x) noexcept
{
    return truncateToInt (std::round (x));
}

/** (max - min) v + min, with as many decimals as a range of that size needs, and signed if it reaches below 0.

    The range 0 to 1 comes ahead of the mode: it is the one that JUCE itself maps, limits included, and
    always has one decimal.
*/
std::string linear (const ValueTextSettings& settings, float v)
{
    const auto& [mode, min, max, unit] = settings;

    if (min == 0.0f && max == 1.0f)
        return withUnit (decimal (static_cast<double> (min + (max - min) * std::clamp (v, 0.0f, 1.0f)), 1), unit);

    const float x = (max - min) * v + min;
    const auto sign = min < 0.0f ? Sign::always : Sign::onlyMinus;
    const bool whole = mode == DisplayMode::LinearWhole || max > 29.0f;
    const int decimals = whole ? 0 : (max > 2.9f ? 1 : 2);
    return withUnit (decimal (static_cast<double> (x), decimals, sign), unit);
}

/** 100 v, a whole number. */
std::string percent (const ValueTextSettings& settings, float v)
{
    return withUnit (std::to_string (roundToInt (static_cast<double> (v * 100.0f))), settings.unit);
}

/** (max - min) v^3 + min, in 64-bit floats from the difference on. */
std::string cubicRange (const ValueTextSettings& settings, float v)
{
    if (! (v > 0.0f))
        return "OFF";

    const auto range = static_cast<double> (settings.rangeMax - settings.rangeMin);
    const auto w = static_cast<double> (v);
    const auto x = (range * w) * (w * w) + static_cast<double> (settings.rangeMin);
    return withUnit (decimal (x, 1, Sign::always), settings.unit);
}

/** 20 log10 (factor v^3), in 64-bit floats: the decibels of a cubic fader. */
std::string cubicGain (const ValueTextSettings& settings, float v, double factor)
{
    if (! (v > 0.0f))
        return "OFF";

    const auto w = static_cast<double> (v);
    return withUnit (decimal (20.0 * std::log10 ((w * w) * (w * factor)), 1, Sign::always), settings.unit);
}

/** +10 dB at the top. The factor stands for the square root of ten and has only these digits. */
std::string cubicGain10 (const ValueTextSettings& settings, float v)
{
    return cubicGain (settings, v, 3.162278);
}

/** +18 dB at the top: a factor of 8. */
std::string cubicGain18 (const ValueTextSettings& settings, float v)
{
    return cubicGain (settings, v, 8.0);
}

/** min (max / min)^v, by way of 32-bit logarithms. */
double logarithmic (const ValueTextSettings& settings, float v)
{
    const float logMin = std::log (settings.rangeMin);
    const float logMax = std::log (settings.rangeMax);
    return static_cast<double> (std::exp ((logMax - logMin) * v + logMin));
}

std::string logFrequency (const ValueTextSettings& settings, float v)
{
    return frequencyText (logarithmic (settings, v), settings.unit);
}

std::string logValue (const ValueTextSettings& settings, float v)
{
    return magnitudeText (logarithmic (settings, v), settings.unit);
}

std::string logDuration (const ValueTextSettings& settings, float v)
{
    return timeText (logarithmic (settings, v), settings.unit);
}

/** 15 v. */
std::string signed15 (const ValueTextSettings& settings, float v)
{
    return withUnit (decimal (static_cast<double> (v * 15.0f), 1, Sign::always), settings.unit);
}

/** 4.9 v^2 + 0.1, in 64-bit floats from the square on. */
std::string square5 (const ValueTextSettings& settings, float v)
{
    return withUnit (decimal (static_cast<double> (v * v) * 4.9 + 0.1, 1), settings.unit);
}

/** (max - min) v + min, whole where the range is wide. A zero has blanks in the sign's place, which keep its digit in
    line with those of the signed values.
*/
std::string signedLinear (const ValueTextSettings& settings, float v)
{
    const float range = settings.rangeMax - settings.rangeMin;
    const float x = v * range + settings.rangeMin;

    if (range >= 11.0f)
    {
        const int whole = roundToInt (static_cast<double> (x));
        return withUnit (whole == 0 ? "  0" : signedWhole (whole), settings.unit);
    }

    const bool shown = std::abs (x) >= 0.1f;
    return withUnit (shown ? decimal (static_cast<double> (x), 1, Sign::always) : "  0.0", settings.unit);
}

/** 1 / x, and 0 for 0. */
double reciprocal (double x) noexcept
{
    return x == 0.0 ? 0.0 : 1.0 / x;
}

/** 1 / ((1 / max - 1 / min) sqrt v + 1 / min), where an end of 0 has the reciprocal 0. In 64-bit floats from the root
    on. No blank ahead of the unit.
*/
std::string reciprocalSweep (const ValueTextSettings& settings, float v)
{
    const auto atMin = reciprocal (static_cast<double> (settings.rangeMin));
    const auto atMax = reciprocal (static_cast<double> (settings.rangeMax));
    const auto x = reciprocal (static_cast<double> (std::sqrt (v)) * (atMax - atMin) + atMin);
    return decimal (x, x >= 10.0 ? 0 : 1) + settings.unit;
}

struct DurationUnit
{
    double seconds;
    const char* one;
    const char* several;
};

constexpr std::array<DurationUnit, 8> durationUnits { {
    { 31536000.0, " year", " years" },
    { 2592000.0, " month", " months" },
    { 86400.0, " day", " days" },
    { 3600.0, " hour", " hours" },
    { 60.0, " minute", " minutes" },
    { 1.0, " sec", " sec" },
    { 0.001, " ms", " ms" },
    { 0.000001, " micros", " micros" },
} };

/** How often each unit fits into what the larger ones left over, from the first that fits at all. */
std::vector<std::string> termsOfDuration (double seconds)
{
    std::vector<std::string> terms;
    double rest = seconds;

    for (const auto& unit : durationUnits)
    {
        const double count = std::floor (rest / unit.seconds);
        rest -= count * unit.seconds;

        if (terms.empty() && count == 0.0)
            continue;

        const int shown = truncateToInt (count);
        terms.push_back (std::to_string (shown) + (shown == 1 ? unit.one : unit.several));
    }

    return terms;
}
} // namespace

// One row a mode.
// clang-format off
std::string valueText (const ValueTextSettings& settings, float position)
{
    switch (settings.displayMode)
    {
        case DisplayMode::Percent:         return percent (settings, position);
        case DisplayMode::CubicRange:      return cubicRange (settings, position);
        case DisplayMode::CubicGain10:     return cubicGain10 (settings, position);
        case DisplayMode::CubicGain18:     return cubicGain18 (settings, position);
        case DisplayMode::LogFrequency:    return logFrequency (settings, position);
        case DisplayMode::LogValue:        return logValue (settings, position);
        case DisplayMode::Signed15:        return signed15 (settings, position);
        case DisplayMode::Square5:         return square5 (settings, position);
        case DisplayMode::SignedLinear:    return signedLinear (settings, position);
        case DisplayMode::ReciprocalSweep: return reciprocalSweep (settings, position);
        case DisplayMode::LogDuration:     return logDuration (settings, position);
        default:                           return linear (settings, position);
    }
}
// clang-format on

std::string frequencyText (double frequency, const std::string& unit)
{
    if (frequency == 0.0)
        return withUnit ("0", unit);

    if (frequency < 0.3)
        return durationText (1.0 / frequency);

    if (frequency < 3.0)
        return withUnit (decimal (frequency, 2), unit);

    if (frequency < 30.0)
        return withUnit (decimal (frequency, 1), unit);

    if (! (frequency > 1000.0))
        return withUnit (decimal (frequency, 0), unit);

    return withUnit (decimal (frequency * 0.001, frequency > 19000.0 ? 0 : 1), "k" + unit);
}

std::string magnitudeText (double magnitude, const std::string& unit)
{
    if (magnitude == 0.0)
        return withUnit ("0", unit);

    return withUnit (decimal (magnitude, magnitude < 3.0 ? 2 : (magnitude < 30.0 ? 1 : 0)), unit);
}

std::string timeText (double seconds, const std::string& unit)
{
    return seconds > 0.0 ? durationText (seconds) : withUnit ("0", unit);
}

std::string durationText (double seconds, std::size_t terms)
{
    const auto all = termsOfDuration (seconds);
    const auto shown = std::min (terms, all.size());
    std::string text;

    for (std::size_t i = 0; i < shown; ++i)
    {
        text += all[i];

        if (i + 1 < shown)
            text += i + 2 == terms ? " and " : ", ";
    }

    return text;
}

} // namespace larkspire

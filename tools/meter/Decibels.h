// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <cmath>
#include <optional>

namespace larkspire::meter
{

/** A figure, or nullopt: silence has no level. */
using Figure = std::optional<double>;

/** The value, or nullopt if it is infinite or NaN. */
inline Figure finite (double value)
{
    return std::isfinite (value) ? Figure (value) : std::nullopt;
}

/** 20 log10 of a ratio of amplitudes; nullopt for zero. */
inline Figure amplitudeDecibels (double ratio)
{
    return finite (20.0 * std::log10 (ratio));
}

/** 10 log10 of a ratio of powers; nullopt for zero. */
inline Figure powerDecibels (double ratio)
{
    return finite (10.0 * std::log10 (ratio));
}

} // namespace larkspire::meter

// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <cmath>
#include <optional>

namespace larkspire::meter
{

/** A figure, or nothing where there is none: silence has no level. */
using Figure = std::optional<double>;

/** The value, or nothing where it is infinite or no number. */
inline Figure finite (double value)
{
    return std::isfinite (value) ? Figure (value) : std::nullopt;
}

/** 20 log10 of a ratio of amplitudes; nothing for none. */
inline Figure amplitudeDecibels (double ratio)
{
    return finite (20.0 * std::log10 (ratio));
}

/** 10 log10 of a ratio of powers; nothing for none. */
inline Figure powerDecibels (double ratio)
{
    return finite (10.0 * std::log10 (ratio));
}

} // namespace larkspire::meter

// SPDX-License-Identifier: AGPL-3.0-only
#include "chain/HighPass.h"

#include <cmath>
#include <numbers>

namespace larkspire
{

std::array<float, 5> designHighPass (double rate, const HighPassSettings& settings)
{
    const double k = std::tan (std::numbers::pi * settings.corner / rate);
    const double square = k * k;
    const double inverseQ = 1.0 / static_cast<double> (settings.q);
    const double c = 1.0 / (1.0 + inverseQ * k + square);

    return { static_cast<float> (c),
             static_cast<float> (c * -2.0),
             static_cast<float> (c),
             static_cast<float> (c * 2.0 * (square - 1.0)),
             static_cast<float> (c * (1.0 - inverseQ * k + square)) };
}

} // namespace larkspire

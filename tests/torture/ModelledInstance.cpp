// SPDX-License-Identifier: AGPL-3.0-only
// The instance and its parameter. Its sound and its state have files of their own.
#include "torture/ModelledInstance.h"

#include "reference/ScalarPolynomials.h"
#include "torture/Mismatch.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace
{
constexpr std::array modeNames { "bypass", "Gentle", "Medium", "Powerful" };
} // namespace

ModelledInstance::ModelledInstance (double firstRate)
    : // The C library's functions may differ in the last bit, and a gain that is compared with a threshold makes much
      // of that bit once in a long while. With the plug-in's own the model has every bit.
      sound (false, { scalar_polynomials::sine, scalar_polynomials::arcTangent }),
      rate (firstRate)
{
}

bool ModelledInstance::isSameNumber (float a, float b)
{
    return a == b || (std::isnan (a) && std::isnan (b));
}

bool ModelledInstance::isTakenForEqual (float a, float b)
{
    if (! std::isfinite (a) || ! std::isfinite (b))
        return a == b;

    const float distance = std::abs (a - b);
    return distance <= std::numeric_limits<float>::min()
           || distance <= std::numeric_limits<float>::epsilon() * std::max (std::abs (a), std::abs (b));
}

std::string ModelledInstance::expectedText() const
{
    const float position = 9.0f * parameter;
    return position >= -0.5f && position < 3.5f ? modeNames.at (static_cast<std::size_t> (std::lround (position))) : "";
}

void ModelledInstance::setModelParameter (float value)
{
    if (! isTakenForEqual (parameter, value))
        parameter = std::isnan (value) ? value : 0.0f + std::clamp (value, 0.0f, 1.0f); // without the sign of zero

    sound.setParameter (parameter);
}

std::string ModelledInstance::setParameter (Dice& dice)
{
    constexpr std::array special { -1.0f,
                                   2.0f,
                                   -0.0f,
                                   1.0e-30f,
                                   std::numeric_limits<float>::quiet_NaN(),
                                   std::numeric_limits<float>::infinity(),
                                   1.0f,
                                   0.5f,
                                   0.05555555f,
                                   0.05555556f,
                                   0.3888889f,
                                   3.4e38f };
    const float value = dice.onceIn (8)   ? dice.oneOf (special)
                        : dice.onceIn (3) ? dice.unit()
                        : dice.onceIn (5) ? parameter * (1.0f + 1.0e-7f * dice.bipolar())
                                          : knobPosition (static_cast<int> (dice.below (10)));
    tellParameter (value);
    setModelParameter (value);
    requireParameter();
    requireSilenceTowardsTheHost();
    return "parameter " + std::to_string (value);
}

std::string ModelledInstance::setParameterByText (Dice& dice)
{
    const auto typed = someText (dice);
    tellText (typed.text);

    if (typed.value)
        setModelParameter (*typed.value);

    requireParameter();
    requireSilenceTowardsTheHost();
    return "text \"" + typed.text + "\"";
}

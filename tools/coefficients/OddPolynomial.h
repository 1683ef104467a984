// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <vector>

/** What stands for an odd function f in 32-bit floats: f (x) ~ x + x^3 (c[0] + c[1] x^2 + c[2] x^4 + ...). */
struct OddPolynomial
{
    std::vector<float> coefficients;
    long double relativeError = 0; // the largest, before the evaluation's own rounding
};

/** The odd polynomial whose largest relative error on (0, end] is smallest, with coefficients that are floats.

    Remez's exchange finds the polynomial. Then one coefficient after the other, the lowest power first, is rounded to a
    float and the remaining ones are found again around it, so that they make up for what the rounding cost.

    @param function  odd, smooth, with slope 1 at zero, without another zero up to end
    @param end       where the range ends
    @param count     how many coefficients, at least 1

    Throws std::runtime_error if the exchange does not settle.
*/
OddPolynomial findOddPolynomial (long double (*function) (long double), long double end, int count);

/** The odd polynomial with four coefficients for sin (x), radians, that gives no more than 1 for any float up to a
    quarter turn when it is evaluated as source/chain/Sine.h does it.

    What the search finds gives the float after 1 for a few floats near the quarter turn, and the soft clip would exceed
    its ceiling. The last coefficient is moved towards zero, float by float, until there are none.
*/
OddPolynomial findSinePolynomial();

// SPDX-License-Identifier: AGPL-3.0-only
// Finds the coefficients of source/chain/OddPolynomials.h and prints them.
#include "coefficients/OddPolynomial.h"

#include <cmath>
#include <cstdio>
#include <exception>

namespace
{
void print (const char* name, const OddPolynomial& polynomial)
{
    std::printf (
        "%s, relative error at most %.3f * 2^-24:\n", name, static_cast<double> (polynomial.relativeError * 0x1p24L));

    for (const float coefficient : polynomial.coefficients)
        std::printf ("    %.9gf\n", static_cast<double> (coefficient));
}
} // namespace

int main()
{
    try
    {
        print ("sine up to a quarter turn", findSinePolynomial());
        print ("arc tangent up to 1", findOddPolynomial ([] (long double x) { return std::atan (x); }, 1, 8));
        return 0;
    }
    catch (const std::exception& problem)
    {
        std::fprintf (stderr, "larkspire-coefficients: %s\n", problem.what());
        return 1;
    }
}

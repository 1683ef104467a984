// SPDX-License-Identifier: AGPL-3.0-only
#include "coefficients/OddPolynomial.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>
#include <utility>

namespace
{
using Numbers = std::vector<long double>;

/** x + x^3 (c[0] + c[1] x^2 + ...). */
long double valueAt (const Numbers& coefficients, long double x)
{
    long double sum = 0;

    for (auto i = coefficients.size(); i-- > 0;)
        sum = sum * x * x + coefficients[i];

    return x + x * x * x * sum;
}

/** Solves a square system, each row with its right side at the end, by elimination with pivots. */
Numbers solve (std::vector<Numbers> rows)
{
    const auto size = rows.size();

    for (std::size_t column = 0; column < size; ++column)
    {
        for (auto row = column + 1; row < size; ++row)
            if (std::abs (rows[row][column]) > std::abs (rows[column][column]))
                std::swap (rows[row], rows[column]);

        for (auto row = column + 1; row < size; ++row)
        {
            const auto factor = rows[row][column] / rows[column][column];

            for (auto i = column; i <= size; ++i)
                rows[row][i] -= factor * rows[column][i];
        }
    }

    Numbers solution (size);

    for (auto row = size; row-- > 0;)
    {
        auto sum = rows[row][size];

        for (auto i = row + 1; i < size; ++i)
            sum -= rows[row][i] * solution[i];

        solution[row] = sum / rows[row][row];
    }

    return solution;
}

/** One search: the first coefficients are given, the others are free. */
class Exchange
{
public:
    Exchange (long double (*functionToMeet) (long double), long double endOfRange, Numbers given, std::size_t count)
        : function (functionToMeet),
          end (endOfRange),
          coefficients (std::move (given)),
          fixed (coefficients.size())
    {
        coefficients.resize (count);
        const auto points = count - fixed + 1;

        for (std::size_t i = 1; i <= points; ++i)
            reference.push_back (end
                                 * std::sin (std::numbers::pi_v<long double> / 2 * static_cast<long double> (i)
                                             / static_cast<long double> (points)));
    }

    Numbers run()
    {
        for (int round = 0; round < 100; ++round)
        {
            level();
            const auto [lowest, highest] = moveToExtremes();

            if (highest - lowest <= highest * 1e-6L)
                return coefficients;
        }

        throw std::runtime_error ("the exchange does not settle");
    }

    long double worst() const
    {
        long double largest = 0;

        for (const auto x : reference)
            largest = std::max (largest, std::abs (relativeError (x)));

        return largest;
    }

private:
    long double relativeError (long double x) const { return valueAt (coefficients, x) / function (x) - 1; }

    /** Makes the error alternate between the reference points with one magnitude. */
    void level()
    {
        const auto unknowns = coefficients.size() - fixed + 1;
        const Numbers given (coefficients.begin(), coefficients.begin() + static_cast<std::ptrdiff_t> (fixed));
        std::vector<Numbers> rows;

        for (std::size_t i = 0; i < unknowns; ++i)
        {
            const auto x = reference[i];
            Numbers row;

            for (auto power = fixed; power < coefficients.size(); ++power)
                row.push_back (std::pow (x, static_cast<long double> (2 * power + 3)) / function (x));

            row.push_back (i % 2 == 0 ? 1 : -1);
            row.push_back (1 - valueAt (given, x) / function (x));
            rows.push_back (row);
        }

        const auto solution = solve (rows);
        std::copy (solution.begin(), solution.end() - 1, coefficients.begin() + static_cast<std::ptrdiff_t> (fixed));
    }

    /** Puts the reference points where the error is largest between its changes of sign, and gives the least and the
        greatest magnitude there. */
    std::pair<long double, long double> moveToExtremes()
    {
        constexpr int steps = 20000;
        Numbers extremes;
        Numbers errors;

        for (int i = 1; i <= steps; ++i)
        {
            // Closer together towards both ends, where the extremes are.
            const auto x = end * (1 - std::cos (std::numbers::pi_v<long double> * i / steps)) / 2;
            const auto error = relativeError (x);

            if (errors.empty() || (error < 0) != (errors.back() < 0))
            {
                extremes.push_back (x);
                errors.push_back (error);
            }
            else if (std::abs (error) > std::abs (errors.back()))
            {
                extremes.back() = x;
                errors.back() = error;
            }
        }

        // Near zero the error is smaller than what a long double can tell; signs found there are none.
        while (extremes.size() > reference.size())
        {
            extremes.erase (extremes.begin());
            errors.erase (errors.begin());
        }

        if (extremes.size() < reference.size())
            throw std::runtime_error ("the error has too few changes of sign");

        reference = extremes;
        const auto [lowest, highest] = std::minmax_element (
            errors.begin(), errors.end(), [] (auto a, auto b) { return std::abs (a) < std::abs (b); });
        return { std::abs (*lowest), std::abs (*highest) };
    }

    long double (*function) (long double);
    long double end;
    Numbers coefficients;
    std::size_t fixed;
    Numbers reference;
};
} // namespace

OddPolynomial findOddPolynomial (long double (*function) (long double), long double end, int count)
{
    const auto size = static_cast<std::size_t> (count);
    Numbers rounded;
    OddPolynomial found;

    while (rounded.size() < size)
    {
        Exchange exchange (function, end, rounded, size);
        const auto nearest = static_cast<float> (exchange.run()[rounded.size()]);
        found.relativeError = exchange.worst();
        found.coefficients.push_back (nearest);
        rounded.push_back (static_cast<long double> (nearest));
    }

    return found;
}

// SPDX-License-Identifier: AGPL-3.0-only
#include "measure/Drift.h"

#include "base/Texts.h"

#include <algorithm>
#include <cmath>

namespace larkspire::measure
{

namespace
{
/** How far apart two numbers are, in tolerances; more than one is too far. */
double distance (std::string_view column, double committed, double measured)
{
    if (std::isnan (committed) || std::isnan (measured))
        return std::isnan (committed) && std::isnan (measured) ? 0.0 : INFINITY;

    return std::abs (measured - committed) / toleranceOf (column, committed);
}

std::string shown (std::string_view column, double value)
{
    return std::isnan (value) ? "nothing" : fixed (value, digitsOf (column));
}

/** The drift of one column as a line, or nothing. */
std::string driftOf (std::size_t column, const Table& committed, const Table& measured)
{
    const auto& name = committed.columns[column];
    std::size_t worst = 0;
    double worstDistance = 0;
    int drifted = 0;

    for (std::size_t row = 0; row < committed.rows.size(); ++row)
    {
        const auto apart = distance (name, committed.rows[row].values[column], measured.rows[row].values[column]);
        drifted += apart > 1.0 ? 1 : 0;

        if (apart > worstDistance)
        {
            worstDistance = apart;
            worst = row;
        }
    }

    if (drifted == 0)
        return "";

    const auto& row = committed.rows[worst];
    const auto was = row.values[column];
    return committed.name + ": " + name + " has drifted in " + std::to_string (drifted) + " of "
           + std::to_string (committed.rows.size()) + " rows, most at " + committed.keyColumn + " " + row.key + ": was "
           + shown (name, was) + ", is " + shown (name, measured.rows[worst].values[column]) + ", tolerance "
           + fixed (toleranceOf (name, std::isnan (was) ? 0.0 : was), 4) + "\n";
}
} // namespace

double toleranceOf (std::string_view column, double value)
{
    if (isInDecibels (column))
        return 0.05;

    if (column.ends_with ("_frames"))
        return 0.01 * std::abs (value) + 2.0;

    return 0.002;
}

std::string drift (const Table& committed, const Table& measured)
{
    const auto sameKey = [] (const Row& a, const Row& b) { return a.key == b.key; };

    if (committed.keyColumn != measured.keyColumn || committed.columns != measured.columns
        || ! std::equal (
            committed.rows.begin(), committed.rows.end(), measured.rows.begin(), measured.rows.end(), sameKey))
        return committed.name + ": the rows or columns are others than those of the committed table\n";

    std::string lines;

    for (std::size_t column = 0; column < committed.columns.size(); ++column)
        lines += driftOf (column, committed, measured);

    return lines;
}

} // namespace larkspire::measure

// SPDX-License-Identifier: AGPL-3.0-only
#include "measure/Table.h"

#include "base/Texts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <sstream>
#include <stdexcept>

namespace larkspire::measure
{

namespace
{
constexpr std::array<std::string_view, 5> decibelUnits { "_db", "_dbfs", "_dbtp", "_lu", "_lufs" };

constexpr double none = std::numeric_limits<double>::quiet_NaN();

std::vector<std::string> fieldsOf (const std::string& line)
{
    std::vector<std::string> fields;
    std::istringstream rest (line + ',');

    for (std::string field; std::getline (rest, field, ',');)
        fields.push_back (field);

    return fields;
}

double numberIn (const std::string& field)
{
    if (field.empty())
        return none;

    double value = 0;
    const auto* end = field.data() + field.size();
    const auto result = std::from_chars (field.data(), end, value);

    if (result.ec != std::errc() || result.ptr != end)
        throw std::invalid_argument ("'" + field + "' is no number");

    return value;
}

/** Where a column stands. */
std::size_t columnOf (const Table& table, std::string_view column)
{
    const auto found = std::find (table.columns.begin(), table.columns.end(), column);

    if (found == table.columns.end())
        throw std::out_of_range (table.name + ": no column " + std::string (column));

    return static_cast<std::size_t> (found - table.columns.begin());
}
} // namespace

void Table::add (std::string key, std::vector<double> values)
{
    if (values.size() != columns.size())
        throw std::logic_error ("a row of " + std::to_string (values.size()) + " values for "
                                + std::to_string (columns.size()) + " columns");

    rows.push_back ({ std::move (key), std::move (values) });
}

void Table::addAcross (std::string key, const std::vector<std::vector<double>>& lists, std::size_t place)
{
    std::vector<double> values;
    values.reserve (lists.size());

    for (const auto& list : lists)
        values.push_back (list[place]);

    add (std::move (key), std::move (values));
}

void Table::addLists (const std::vector<double>& keys, int digits, const std::vector<std::vector<double>>& lists)
{
    for (std::size_t row = 0; row < keys.size(); ++row)
        addAcross (fixed (keys[row], digits), lists, row);
}

double Table::at (std::string_view key, std::string_view column) const
{
    const auto found = std::find_if (rows.begin(), rows.end(), [&] (const Row& row) { return row.key == key; });

    if (found == rows.end())
        throw std::out_of_range (name + ": no row " + std::string (key));

    return found->values[columnOf (*this, column)];
}

std::vector<double> Table::column (std::string_view column) const
{
    const auto index = columnOf (*this, column);
    std::vector<double> values;
    values.reserve (rows.size());

    for (const auto& row : rows)
        values.push_back (row.values[index]);

    return values;
}

std::vector<double> Table::keys() const
{
    std::vector<double> values;
    values.reserve (rows.size());

    for (const auto& row : rows)
        values.push_back (numberIn (row.key));

    return values;
}

bool isInDecibels (std::string_view column)
{
    return std::any_of (
        decibelUnits.begin(), decibelUnits.end(), [column] (std::string_view unit) { return column.ends_with (unit); });
}

int digitsOf (std::string_view column)
{
    if (column.ends_with ("_frames"))
        return 0;

    return isInDecibels (column) ? 3 : 4;
}

std::string toCsv (const Table& table)
{
    std::string text = table.keyColumn;

    for (const auto& column : table.columns)
        text.append (1, ',').append (column);

    text += '\n';

    for (const auto& row : table.rows)
    {
        text += row.key;

        for (std::size_t i = 0; i < row.values.size(); ++i)
        {
            text += ',';

            if (! std::isnan (row.values[i]))
                text += fixed (row.values[i], digitsOf (table.columns[i]));
        }

        text += '\n';
    }

    return text;
}

Table fromCsv (const std::string& name, const std::string& text)
{
    std::istringstream lines (text);
    std::string line;

    if (! std::getline (lines, line))
        throw std::runtime_error (name + ": the table is empty");

    const auto headings = fieldsOf (line);
    Table table { .name = name, .keyColumn = headings.front(), .columns = { headings.begin() + 1, headings.end() } };

    while (std::getline (lines, line))
    {
        const auto fields = fieldsOf (line);

        if (fields.size() != headings.size())
            throw std::runtime_error (name + ": a line has another number of fields than the heading");

        std::vector<double> values;
        std::transform (fields.begin() + 1, fields.end(), std::back_inserter (values), numberIn);
        table.add (fields.front(), std::move (values));
    }

    return table;
}

std::filesystem::path fileOf (const std::filesystem::path& folder, std::string_view table)
{
    return folder / std::string (table).append (".csv");
}

} // namespace larkspire::measure

// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace larkspire::measure
{

/** What stands under one key: a number a column, NaN where there is none. */
struct Row
{
    std::string key;
    std::vector<double> values;
};

/** A measurement: rows of numbers under keys. The end of a column's name is its unit, which says how exactly it is
    written and compared: _db, _dbfs, _dbtp, _lu, _lufs, _frames; none for a plain number, linear full scale 1.0. */
struct Table
{
    std::string name = {}; // the file's, without its ending; a new measurement is named by its list
    std::string keyColumn;
    std::vector<std::string> columns;
    std::vector<Row> rows = {};

    /** Appends a row; the values must be as many as the columns. Throws std::logic_error if they are not. */
    void add (std::string key, std::vector<double> values);

    /** Appends a row of the numbers that stand at one place in lists, of which there is one a column. */
    void addAcross (std::string key, const std::vector<std::vector<double>>& lists, std::size_t place);

    /** Appends all of such lists, the keys being numbers with so many digits behind the point. */
    void addLists (const std::vector<double>& keys, int digits, const std::vector<std::vector<double>>& lists);

    /** The number under a key in a column. Throws std::out_of_range if there is none. */
    double at (std::string_view key, std::string_view column) const;

    /** A column from top to bottom. Throws std::out_of_range if there is none of that name. */
    std::vector<double> column (std::string_view column) const;

    /** The keys as numbers. Throws std::invalid_argument if one is not a number. */
    std::vector<double> keys() const;
};

/** Whether a column's numbers are decibels of some kind. */
bool isInDecibels (std::string_view column);

/** How many digits behind the point a column is written with. */
int digitsOf (std::string_view column);

/** The table as comma-separated values, one heading line, an empty field for NaN. */
std::string toCsv (const Table& table);

/** The table that toCsv has written, as exact as it was written. Throws std::runtime_error if the text is not a
    table. */
Table fromCsv (const std::string& name, const std::string& text);

/** Where a table's file lies in a folder. */
std::filesystem::path fileOf (const std::filesystem::path& folder, std::string_view table);

} // namespace larkspire::measure

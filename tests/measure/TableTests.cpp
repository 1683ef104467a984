// SPDX-License-Identifier: AGPL-3.0-only
// The files of the measurements.
#include "measure/Table.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

namespace
{
using namespace larkspire::measure;

TEST (Table, IsReadAsItWasWritten)
{
    Table table { .name = "name", .keyColumn = "what", .columns = { "level_db", "time_frames", "factor" } };
    table.add ("first one", { -1.2345, 1234.5, 0.12345 });
    table.add ("-3.5", { NAN, 7.0, -0.00001 });
    const std::string text = "what,level_db,time_frames,factor\nfirst one,-1.234,1234,0.1235\n-3.5,,7,0.0000\n";
    EXPECT_EQ (toCsv (table), text);

    const auto read = fromCsv ("name", text);
    EXPECT_EQ (toCsv (read), text);
    EXPECT_EQ (read.columns, table.columns);
    EXPECT_EQ (read.at ("first one", "level_db"), -1.234);
    EXPECT_TRUE (std::isnan (read.at ("-3.5", "level_db")));
}

TEST (Table, RefusesWhatIsNone)
{
    EXPECT_THROW (fromCsv ("name", ""), std::runtime_error);
    EXPECT_THROW (fromCsv ("name", "key,value\na,1,2\n"), std::runtime_error);
    EXPECT_THROW (fromCsv ("name", "key,value\na,one\n"), std::invalid_argument);
    EXPECT_THROW (fromCsv ("name", "key,value\na,1x\n"), std::invalid_argument);

    Table table { .name = "name", .keyColumn = "key", .columns = { "value" } };
    EXPECT_THROW (table.add ("a", { 1.0, 2.0 }), std::logic_error);
    EXPECT_THROW (table.at ("a", "value"), std::out_of_range);
    EXPECT_THROW (table.column ("values"), std::out_of_range);
}
} // namespace

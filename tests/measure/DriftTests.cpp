// SPDX-License-Identifier: AGPL-3.0-only
// The committed measurements against the library as it is built now.
#include "measure/CommittedTables.h"
#include "measure/Drift.h"
#include "measure/Measurements.h"
#include "support/Child.h"
#include "support/Paths.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <ostream>
#include <string>

namespace larkspire::measure
{
/** What the test framework shows of a parameter. */
static void PrintTo (const Measurement& measurement, std::ostream* stream)
{
    *stream << measurement.name;
}
} // namespace larkspire::measure

namespace
{
using namespace larkspire;
using namespace larkspire::measure;

class Committed : public testing::TestWithParam<Measurement>
{
};

TEST_P (Committed, IsWhatTheLibraryAsBuiltGives)
{
    const TemporaryFolder folder;
    const auto voices = folder / "voices";

    if (GetParam().name.starts_with ("voice"))
    {
        const auto made = run (Call { .arguments = { voices }, .program = paths::source ("scripts/voices") });
        ASSERT_EQ (made.exitStatus, 0) << made.errors;
    }

    const PluginLibrary library (paths::plugin());
    const auto measured = GetParam().measure ({ .library = library, .voices = voices });
    const auto moved = drift (committed (GetParam().name), measured);
    EXPECT_TRUE (moved.empty())
        << moved
        << "The sound has changed, or the way it is measured. If that is meant: make docs, and look at the pictures.";
}

std::string nameOf (const testing::TestParamInfo<Measurement>& info)
{
    std::string name (info.param.name);
    std::replace (name.begin(), name.end(), '-', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P (Measurements,
                          Committed,
                          testing::ValuesIn (measurements().begin(), measurements().end()),
                          nameOf);

constexpr double none = std::numeric_limits<double>::quiet_NaN();

Table sample()
{
    Table table { .name = "sample", .keyColumn = "key", .columns = { "gain_db", "time_frames", "factor" } };
    table.add ("a", { 1.0, 1000.0, 0.5 });
    table.add ("b", { 2.0, 2000.0, none });
    return table;
}

TEST (Drift, IsNothingWithinTheToleranceOfEachUnit)
{
    auto measured = sample();
    measured.rows[0].values = { 1.04, 1011.0, 0.5019 };
    EXPECT_EQ (drift (sample(), measured), "");
}

TEST (Drift, NamesTheCurveTheRowBothNumbersAndTheTolerance)
{
    auto measured = sample();
    measured.rows[0].values[0] = 1.06;
    measured.rows[1].values[0] = 2.5;
    EXPECT_EQ (drift (sample(), measured),
               "sample: gain_db has drifted in 2 of 2 rows, most at key b: was 2.000, is 2.500, tolerance 0.0500\n");
}

TEST (Drift, SeesFramesFactorsAndWhatHasComeOrGone)
{
    for (const auto& [column, value] : { std::pair { 1, 1013.0 }, std::pair { 2, 0.5021 }, std::pair { 2, none } })
    {
        auto measured = sample();
        measured.rows[0].values[static_cast<std::size_t> (column)] = value;
        EXPECT_NE (drift (sample(), measured), "") << column << ": " << value;
    }

    auto there = sample();
    there.rows[1].values[2] = 1.0;
    EXPECT_NE (drift (sample(), there), "");
}

TEST (Drift, OfEveryKindOfDecibelIsHeldToTheSame)
{
    for (const auto* const column : { "a_db", "a_dbfs", "a_dbtp", "a_lu", "a_lufs" })
        EXPECT_EQ (toleranceOf (column, 1.0), 0.05) << column;

    EXPECT_EQ (toleranceOf ("a_bulb", 1.0), 0.002);
}

TEST (Drift, SeesOtherRowsAndColumns)
{
    auto shorter = sample();
    shorter.rows.pop_back();
    EXPECT_NE (drift (sample(), shorter), "");

    auto renamed = sample();
    renamed.columns[0] = "level_db";
    EXPECT_NE (drift (sample(), renamed), "");
}
} // namespace

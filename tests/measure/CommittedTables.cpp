// SPDX-License-Identifier: AGPL-3.0-only
#include "measure/CommittedTables.h"

#include "measure/Measurements.h"
#include "support/Paths.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

std::string textOf (const std::filesystem::path& path)
{
    std::ifstream file (path, std::ios::binary);

    if (! file)
        throw std::runtime_error (path.string() + " is missing: run make docs");

    return { std::istreambuf_iterator<char> (file), {} };
}

larkspire::measure::Table committed (std::string_view name)
{
    const std::filesystem::path folder = paths::source ("docs/sound/data");
    return larkspire::measure::fromCsv (std::string (name), textOf (larkspire::measure::fileOf (folder, name)));
}

larkspire::measure::Tables allCommitted()
{
    larkspire::measure::Tables tables;

    for (const auto& measurement : larkspire::measure::measurements())
        tables.emplace (measurement.name, committed (measurement.name));

    return tables;
}

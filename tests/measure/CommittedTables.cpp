// SPDX-License-Identifier: AGPL-3.0-only
#include "measure/CommittedTables.h"

#include "measure/Measurements.h"
#include "support/Paths.h"
#include "support/Recording.h"

larkspire::measure::Table committed (std::string_view name)
{
    const std::filesystem::path folder = paths::source ("docs/sound/data");
    return larkspire::measure::fromCsv (std::string (name), bytesOf (larkspire::measure::fileOf (folder, name)));
}

larkspire::measure::Tables allCommitted()
{
    larkspire::measure::Tables tables;

    for (const auto& measurement : larkspire::measure::measurements())
        tables.emplace (measurement.name, committed (measurement.name));

    return tables;
}

// SPDX-License-Identifier: AGPL-3.0-only
// larkspire-measure: measures the built library as a host and writes what it finds: a file a measurement, and the
// tables of a document.
#include "audio/AudioInput.h"
#include "base/Failure.h"
#include "base/PartialFile.h"
#include "host/NoDisplay.h"
#include "measure/Document.h"
#include "measure/Measurements.h"
#include "measure/VoicesInRoom.h"

#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <string>

namespace
{
using namespace larkspire;
using namespace larkspire::measure;

std::string textOf (const std::filesystem::path& path)
{
    std::ifstream file (path, std::ios::binary);
    std::string text { std::istreambuf_iterator<char> (file), {} };

    if (! file)
        throw Failure (path, "cannot be read");

    return text;
}

void write (const std::filesystem::path& path, const std::string& text)
{
    PartialFile file (path);
    file.write (text.data(), std::ssize (text));
    file.commit();
}

void run (const std::filesystem::path& libraryPath,
          const std::filesystem::path& voices,
          const std::filesystem::path& folder,
          const std::filesystem::path& document)
{
    const auto text = textOf (document);
    const PluginLibrary library (libraryPath);
    library.check();

    // They are measured last, and a wrong name should not cost the time before.
    for (const auto voice : voiceNames)
        const AudioInput recording (recordingOf (voices, voice));

    const Subject subject { .library = library, .voices = voices };
    Tables tables;

    for (const auto& measurement : measurements())
    {
        std::printf ("measuring: %s\n", std::string (measurement.name).c_str());
        std::fflush (stdout);
        const auto csv = toCsv (measurement.measure (subject));
        tables.emplace (measurement.name, fromCsv (std::string (measurement.name), csv));
    }

    const auto newText = withTables (text, tables);
    std::filesystem::create_directories (folder);

    for (const auto& [name, table] : tables)
        write (fileOf (folder, name), toCsv (table));

    write (document, newText);
    std::printf ("%s\n", document.c_str());
}
} // namespace

int main (int argumentCount, char** arguments)
{
    if (argumentCount != 5)
    {
        std::fputs ("usage: larkspire-measure LIBRARY VOICES FOLDER DOCUMENT\n", stderr);
        return 2;
    }

    try
    {
        larkspire::useNoDisplay();
        run (arguments[1], arguments[2], arguments[3], arguments[4]);
        return 0;
    }
    catch (const std::exception& fault)
    {
        std::fprintf (stderr, "larkspire-measure: %s\n", fault.what());
        return 1;
    }
}

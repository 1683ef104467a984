// SPDX-License-Identifier: AGPL-3.0-only
// docs/sound.md, its tables and pictures, and the program that writes them.
#include "measure/CommittedTables.h"
#include "measure/Document.h"
#include "measure/VoicesInRoom.h"
#include "support/Child.h"
#include "support/Paths.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cctype>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{
using namespace larkspire::measure;
using testing::HasSubstr;

const std::filesystem::path docs = paths::source ("docs");

std::set<std::string> stemsIn (const std::filesystem::path& folder, const std::string& extension)
{
    std::set<std::string> stems;

    for (const auto& entry : std::filesystem::directory_iterator (folder))
        if (entry.path().extension() == extension)
            stems.insert (entry.path().stem().string());

    return stems;
}

TEST (Document, HoldsTheTablesOfTheCommittedMeasurements)
{
    const auto text = bytesOf (docs / "sound.md");
    EXPECT_NE (text.find ("<!-- table: "), std::string::npos);
    EXPECT_TRUE (withTables (text, allCommitted()) == text)
        << "docs/sound.md is not that of docs/sound/data: make docs";
}

TEST (Document, ShowsEveryPictureAndEveryPictureHasItsScript)
{
    const auto text = bytesOf (docs / "sound.md");
    auto scripts = stemsIn (paths::source ("tools/measure/pictures"), ".gp");
    EXPECT_EQ (scripts.erase ("style"), 1u);
    EXPECT_EQ (stemsIn (docs / "sound", ".png"), scripts);

    for (const auto& name : scripts)
        EXPECT_NE (text.find ("(sound/" + name + ".png)"), std::string::npos) << name;
}

/** The addresses of a page's sections, as those who show Markdown make them of the headings. */
std::set<std::string> sectionsOf (const std::string& text)
{
    std::set<std::string> sections;
    std::istringstream lines (text);

    for (std::string line; std::getline (lines, line);)
    {
        if (! line.starts_with ('#'))
            continue;

        std::string section;

        for (const auto letter : line.substr (line.find_first_not_of ('#') + 1))
            if (letter == ' ')
                section += '-';
            else if (std::isalnum (static_cast<unsigned char> (letter)) != 0 || letter == '-' || letter == '_')
                section += static_cast<char> (std::tolower (static_cast<unsigned char> (letter)));

        sections.insert (section);
    }

    return sections;
}

TEST (Documents, PointOnlyToWhatIsThere)
{
    std::vector<std::filesystem::path> pages { paths::source ("README.md"), paths::source ("CONTRIBUTING.md") };

    for (const auto& page : stemsIn (docs, ".md"))
        pages.push_back (docs / (page + ".md"));

    const std::regex link (R"(\]\(([^)#]*)(?:#([^)]*))?\))");
    std::size_t links = 0;

    for (const auto& page : pages)
    {
        const auto text = bytesOf (page);

        for (std::sregex_iterator match (text.begin(), text.end(), link), end; match != end; ++match, ++links)
        {
            const auto target = match->str (1).empty() ? page : page.parent_path() / match->str (1);
            ASSERT_TRUE (std::filesystem::exists (target)) << page << ": " << match->str();

            if (! match->str (2).empty())
            {
                EXPECT_EQ (sectionsOf (bytesOf (target)).count (match->str (2)), 1u) << page << ": " << match->str();
            }
        }
    }

    EXPECT_GT (links, 40u);
}

TEST (Document, KeepsWhatIsNoTable)
{
    const std::string before = "Text.\n<!-- table: fold -->\nold\n<!-- end of table -->\nMore.\n";
    const auto after = withTables (before, allCommitted());
    EXPECT_TRUE (after.starts_with ("Text.\n<!-- table: fold -->\n\n| Source |")) << after;
    EXPECT_TRUE (after.ends_with (" |\n\n<!-- end of table -->\nMore.\n")) << after;
    EXPECT_EQ (withTables (after, allCommitted()), after);
    EXPECT_EQ (withTables ("No table.\n", allCommitted()), "No table.\n");
}

TEST (Document, ShowsARangeOverVoicesAndNoneThatHasNoNumber)
{
    Table table { .name = "voices-by-level", .keyColumn = "peak_dbfs", .columns = {} };
    std::vector<double> values;

    for (const auto& mode : voiceModes)
        for (const auto voice : voiceNames)
        {
            table.columns.push_back (voiceColumn (mode, voice, "brightness_db"));
            values.push_back (voice == "operator"     ? NAN
                              : mode.name == "gentle" ? (voice == "player" ? -1.6 : 0.2)
                              : mode.name == "medium" ? (voice == "player" ? 2.4 : 11.5)
                                                      : 3.0);
        }

    table.add ("-24", values);
    const auto text = documentTable ("brightness of voices", { { "voices-by-level", table } });
    EXPECT_THAT (text, HasSubstr ("| −24 dBFS | −2 to 0 dB | +2 to +12 dB | +3 dB |\n"));
}

TEST (Document, IsRefusedIfATableIsUnknownOrHasNoEnd)
{
    EXPECT_THROW (withTables ("<!-- table: nobody -->\n<!-- end of table -->\n", allCommitted()), std::runtime_error);
    EXPECT_THROW (withTables ("<!-- table: fold -->\n", allCommitted()), std::runtime_error);
    EXPECT_THROW (withTables ("<!-- table: fold\n<!-- end of table -->\n", allCommitted()), std::runtime_error);
}

TEST (Measure, ExplainsABadCallInOneLineAndWritesNothing)
{
    const TemporaryFolder folder;
    std::ofstream (folder / "sound.md") << "Text.\n";
    const auto call = [&] (const std::vector<std::string>& arguments)
    { return run (Call { .arguments = arguments, .program = paths::measure() }); };

    EXPECT_EQ (call ({ "one" }).exitStatus, 2);

    const auto noDocument = call ({ paths::plugin(), folder / "no.wav", folder / "data", folder / "no.md" });
    EXPECT_EQ (noDocument.exitStatus, 1);
    EXPECT_EQ (noDocument.errors, "larkspire-measure: " + (folder / "no.md") + ": cannot be read\n");

    const auto noLibrary = call ({ folder / "no.so", folder / "no.wav", folder / "data", folder / "sound.md" });
    EXPECT_EQ (noLibrary.exitStatus, 1);
    EXPECT_EQ (linesOf (noLibrary.errors).size(), 1u) << noLibrary.errors;

    const auto noVoice = call ({ paths::plugin(), folder / "no.wav", folder / "data", folder / "sound.md" });
    EXPECT_EQ (noVoice.exitStatus, 1);
    EXPECT_THAT (noVoice.errors, HasSubstr ("no.wav"));
    EXPECT_EQ (folder.contents(), std::vector<std::string> { "sound.md" });
}
} // namespace

// SPDX-License-Identifier: AGPL-3.0-only
// What the built library makes of chunks good and bad, a table.
#include "library/ChunkBytes.h"
#include "support/RawHost.h"

#include <gtest/gtest.h>

#include <ostream>

namespace
{
/** What a chunk does to an instance that stands at 0.625 and carries an attribute "kept". */
struct ChunkRow
{
    const char* what;
    std::string bytes;
    float mode;
    bool keeps; // the store as it was
};

void PrintTo (const ChunkRow& row, std::ostream* out)
{
    *out << row.what;
}

const std::string goodText = "<settings mode=\"0.25\"/>";

std::vector<ChunkRow> chunkRows()
{
    const auto lengthOf = [] (const std::string& text) { return static_cast<std::int32_t> (text.size()); };
    const auto value = [] (const std::string& text) { return withAttributes ("mode=\"" + text + "\""); };

    return { // no document
             { "one byte", "V", 0.625f, true },
             { "8 bytes", around (goodText).substr (0, 8), 0.625f, true },
             { "9 bytes", around ("<").substr (0, 9), 0.625f, true },
             { "another magic number", "VC1!" + around (goodText).substr (4), 0.625f, true },
             { "plain XML", goodText, 0.625f, true },
             { "a length of 0", around (goodText, 0), 0.625f, true },
             { "a length of -1", around (goodText, -1), 0.625f, true },
             { "a length too small", around (goodText, lengthOf (goodText) - 1), 0.625f, true },
             { "a text that does not parse", around ("<settings mode"), 0.625f, true },
             { "another root", around ("<setting mode=\"0.25\"/>"), 0.625f, true },
             { "elements without end", around ("<settings>" + std::string (300000, '<')), 0.625f, true },
             { "half a number of a character", around ("<settings a=\"&#x"), 0.625f, true },

             // documents
             { "a good document", around (goodText), 0.25f, false },
             { "a length too large", around (goodText, 2147483647), 0.25f, false },
             { "no zero behind it", around (goodText).substr (0, goodText.size() + 8), 0.25f, false },
             { "a root in capitals", around ("<SETTINGS mode=\"0.25\"/>"), 0.25f, false },
             { "a root with a capital", around ("<Settings mode=\"0.25\"/>"), 0.25f, false },
             { "no attribute", around ("<settings/>"), 0.625f, false },
             { "no parameter", withAttributes ("theirs=\"value\""), 0.625f, false },
             { "another case", withAttributes ("MODE=\"0.25\""), 0.625f, false },
             { "the parameter twice", withAttributes ("mode=\"0.25\" mode=\"0.75\""), 0.25f, false },
             { "no number", value ("Medium"), 0.0f, false },
             { "an empty value", value (""), 0.0f, false },
             { "below the range", value ("-0.1"), 0.0f, false },
             { "above the range", value ("1.1"), 1.0f, false },
             { "nan", value ("nan"), 0.0f, false },
             { "inf", value ("inf"), 1.0f, false },
             { "-inf", value ("-inf"), 0.0f, false },
             { "a decimal comma", value ("0,75"), 0.0f, false }
    };
}

class RestoredChunk : public RawHost::Anchored<testing::TestWithParam<std::tuple<ChunkRow, bool>>>
{
};

TEST_P (RestoredChunk, SetsAndKeepsWhatItShouldAndTellsTheHostNothing)
{
    const auto& [row, ofProgram] = GetParam();
    RawHost host;
    host.setChunk (withAttributes ("mode=\"0.625\" kept=\"entry\""), ofProgram);
    ASSERT_EQ (host.getParameter(), 0.625f);
    host.takeCalls();

    host.setChunk (row.bytes, ofProgram);
    EXPECT_EQ (host.getParameter(), row.mode);

    const auto text = textOf (host.chunk (ofProgram));
    EXPECT_EQ (text.find (" kept=\"entry\"") != std::string::npos, row.keeps) << text;

    for (const auto& call : host.takeCalls())
        ADD_FAILURE() << "the host was told opcode " << call.opcode;
}

INSTANTIATE_TEST_SUITE_P (Rows, RestoredChunk, testing::Combine (testing::ValuesIn (chunkRows()), testing::Bool()));
} // namespace

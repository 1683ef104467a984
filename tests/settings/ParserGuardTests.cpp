// SPDX-License-Identifier: AGPL-3.0-only
// Texts at the edge of what JUCE's parser can deal with: on this side of it they are taken in, whatever else
// they hold, and beyond it they are no document.
#include "settings/ParserGuard.h"

#include "settings/ProcessorState.h"
#include "support/OpenProcessor.h"

#include <gtest/gtest.h>

#include <ostream>

namespace
{
using namespace state_block;

/** So many copies of a text. */
std::string times (int count, std::string_view text)
{
    std::string copies;

    for (int i = 0; i < count; ++i)
        copies += text;

    return copies;
}

/** A document that holds something behind the attribute "mode" of a quarter. */
std::string holding (const std::string& content)
{
    return "<settings mode=\"0.2500\">" + content + "</settings>";
}

/** As many elements inside each other as may be, less some. */
std::string nested (int fewer, const std::string& innermost = "")
{
    const int count = larkspire::deepestElement - fewer;
    return times (count, "<a>") + innermost + times (count, "</a>");
}

struct Text
{
    const char* what;
    std::string text;
};

void PrintTo (const Text& text, std::ostream* out)
{
    *out << text.what;
}

class GuardedText : public testing::TestWithParam<Text>
{
protected:
    GuardedText()
    {
        processor.setMode (0.625f);
        processor.settings = { { "kept", "entry" } };
        restore (processor, around (GetParam().text));
    }

    OpenProcessor processor;
};

class HarmlessText : public GuardedText
{
};

TEST_P (HarmlessText, IsTakenInAsTheParserTakesIt)
{
    ASSERT_NE (
        juce::parseXML (juce::String::fromUTF8 (GetParam().text.data(), static_cast<int> (GetParam().text.size()))),
        nullptr);
    EXPECT_EQ (processor.modeParameter->get(), 0.25f);
    EXPECT_FALSE (processor.settings.contains ("kept"));
}

INSTANTIATE_TEST_SUITE_P (
    AheadOfTheRoot,
    HarmlessText,
    testing::Values (
        Text { "blanks ahead of the header", "  <?xml version=\"1.0\"?><settings mode=\"0.2500\"/>" },
        Text { "a header without an encoding", "<?xml version=\"1.0\"?><settings mode=\"0.2500\"/>" },
        Text { "a header in single quotes", "<?xml version='1.0' encoding='utf-8'?><settings mode=\"0.2500\"/>" },
        Text { "a stand-alone header",
               "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\" ?>\n<settings mode=\"0.2500\"/>" },
        Text { "a header of another encoding", "<?xml encoding=\"latin1\"?><settings mode=\"0.2500\"/>" },
        Text { "two headers", "<?xml version=\"1.0\"?><?xml version=\"1.1\"?><settings mode=\"0.2500\"/>" },
        Text { "an instruction behind the header", "<?xml version=\"1.0\"?> <?a b?> <settings mode=\"0.2500\"/>" },
        Text { "an instruction behind a comment", "<!-- a --><?a b?><settings mode=\"0.2500\"/>" },
        Text { "a comment that looks like an instruction", "<!-- <?a --><settings mode=\"0.2500\"/>" },
        Text { "a comment full of brackets", "<!--" + times (5000, "<") + "--><settings mode=\"0.2500\"/>" },
        Text { "a blank ahead of the root's name", "< settings mode=\"0.2500\"/>" }));

INSTANTIATE_TEST_SUITE_P (
    InADocumentType,
    HarmlessText,
    testing::Values (
        Text { "a name alone", "<!DOCTYPE settings><settings mode=\"0.2500\"/>" },
        Text { "a file that is not read", "<!DOCTYPE settings SYSTEM \"f\"><settings mode=\"0.2500\" a=\"&b;\"/>" },
        Text { "a public name",
               "<?xml version=\"1.0\"?><!DOCTYPE settings PUBLIC \"a\" \"b\"><settings mode=\"0.2500\"/>" },
        Text { "elements and attributes",
               "<!DOCTYPE settings [<!ELEMENT settings EMPTY><!ATTLIST settings mode CDATA \"1\">]>"
               "<settings mode=\"0.2500\"/>" },
        Text { "an entity", "<!DOCTYPE settings [<!ENTITY v \"0.25\">]><settings mode=\"&v;\"/>" },
        Text { "an entity in other letters", "<!DOCTYPE settings [<!entity v '0.25'>]><settings mode='&v;'/>" },
        Text { "an entity of an entity's name",
               "<!DOCTYPE settings [<!ENTITY % p \"q\">%p;]><settings mode=\"0.25\"/>" },
        Text { "an entity that is an element",
               "<!DOCTYPE settings [<!ENTITY v \"<a>text</a>\">]>" + holding ("&v;&v;") },
        Text { "an entity that nothing uses",
               "<!DOCTYPE settings [<!ENTITY v \"" + times (100000, "long ") + "\">]>" + holding ("") },
        Text { "an ampersand without an entity", "<!DOCTYPE settings [ & &a; ]>" + holding ("&a;") }));

INSTANTIATE_TEST_SUITE_P (
    InsideAValue,
    HarmlessText,
    testing::Values (Text { "a bracket", "<settings a=\" < \" mode=\"0.2500\"/>" },
                     Text { "an ampersand ahead of a bracket", "<settings a=\" &<a; \" mode=\"0.2500\"/>" },
                     Text { "an instruction", "<settings a=\"<?a?>b\" mode=\"0.2500\"/>" },
                     Text { "a definition", "<settings a='<!ENTITY a \"x&a;\">&a;' mode=\"0.2500\"/>" },
                     Text { "brackets without end", "<settings a=\"" + times (5000, "<a>") + "\" mode=\"0.2500\"/>" },
                     Text { "another quote", "<settings a='\"' b=\"'\" mode='0.2500'/>" },
                     Text { "a number of a character without its end", "<settings a=\"&#x41 \" mode=\"0.2500\"/>" },
                     Text { "a zero that half a number steps over",
                            std::string ("<settings a=\"&#x") + '\0' + "\" mode=\"0.2500\"/>" },
                     Text { "a number of too many digits",
                            "<settings a=\"&#x123456789;&#1234567890123;\" mode=\"0.2500\"/>" },
                     Text { "no number of a character", "<settings a=\"&#;&#z;\" mode=\"0.2500\"/>" },
                     Text { "a name that nothing defines", "<settings a=\"&b;\" mode=\"0.2500\"/>" }));

INSTANTIATE_TEST_SUITE_P (InsideATag,
                          HarmlessText,
                          testing::Values (Text { "an instruction", "<settings <?a b?> mode=\"0.2500\"/>" },
                                           Text { "a comment", "<settings <!-- <a> --> mode=\"0.2500\"/>" },
                                           Text { "blanks around the sign", "<settings mode = \t\n \"0.2500\" />" },
                                           Text { "no blank between attributes",
                                                  "<settings a=\"\"mode=\"0.2500\"b=\"\"/>" }));

INSTANTIATE_TEST_SUITE_P (
    InsideTheRoot,
    HarmlessText,
    testing::Values (Text { "an instruction ahead of an element", holding ("<?a?><a/>") },
                     Text { "an instruction ahead of the end", holding ("text<?a?>") },
                     Text { "instructions and comments", holding ("<!-- a --><?a?> <!-- b --> <?b?>") },
                     Text { "comments ahead of text", holding ("<!-- a --> <!-- b -->text<!-- c -->text") },
                     Text { "character data", holding ("<![CDATA[ <a> &a; <?a?> ]] ]]>text<![CDATA[]]>") },
                     Text { "an ampersand alone ahead of an element", holding (" &<; ") },
                     Text { "an element for a name of an entity", holding ("&<a b='c'/> text;") },
                     Text { "an end of another name", "<settings mode=\"0.2500\"></a>" },
                     Text { "an end that does not end", "<settings mode=\"0.2500\"></settings" },
                     Text { "many elements", holding (times (20000, "<a/>")) },
                     Text { "elements as deep as may be", holding (nested (1)) },
                     Text { "elements as deep as may be and text", holding (nested (1, "text<a/>text")) },
                     Text { "elements in an entity's name as deep as may be",
                            holding (times (500, "<a>") + "&" + times (499, "<a>") + times (499, "</a>") + ";"
                                     + times (500, "</a>")) }));

INSTANTIATE_TEST_SUITE_P (BehindTheRoot,
                          HarmlessText,
                          testing::Values (Text { "a comment", "<settings mode=\"0.2500\"/><!-- a" },
                                           Text { "an instruction ahead of text", "<settings mode=\"0.2500\"/><?a?>b" },
                                           Text { "elements without end",
                                                  "<settings mode=\"0.2500\"/>" + times (300000, "<a>") },
                                           Text { "half a number", "<settings mode=\"0.2500\"/>&#x" }));

// Cuts that the parser lets pass.
INSTANTIATE_TEST_SUITE_P (CutOff,
                          HarmlessText,
                          testing::Values (Text { "behind a value", "<settings mode=\"0.2500\"" },
                                           Text { "behind a value and a blank", "<settings mode=\"0.2500\" " },
                                           Text { "behind a sign", "<settings mode=\"0.2500\" a=" },
                                           Text { "behind an opening quote", "<settings mode=\"0.2500\" a=\"" },
                                           Text { "behind an ampersand", "<settings mode=\"0.2500\" a=\"b &" }));

TEST (TextCutOffBehindTheNameOfItsRoot, IsADocumentWithoutAttributes)
{
    OpenProcessor processor;
    processor.setMode (0.625f);
    processor.settings = { { "kept", "entry" } };
    restore (processor, around ("<?xml version=\"1.0\" encoding=\"UTF-8\"?> <settings"));
    EXPECT_EQ (processor.modeParameter->get(), 0.625f);
    EXPECT_TRUE (processor.settings.empty());
}

class HarmfulText : public GuardedText
{
};

TEST_P (HarmfulText, IsNoDocument)
{
    EXPECT_EQ (processor.modeParameter->get(), 0.625f);
    EXPECT_EQ (plain (processor.settings), (Store { { "kept", "entry" } }));
}

INSTANTIATE_TEST_SUITE_P (
    ToTheStack,
    HarmfulText,
    testing::Values (Text { "elements without end", "<settings>" + times (300000, "<a>") },
                     Text { "elements without end, with attributes", "<settings>" + times (300000, "<a b=\"c\">") },
                     Text { "one element too deep", holding (nested (0)) },
                     Text { "one element too deep in an entity's name",
                            holding (times (500, "<a>") + "&" + times (500, "<a>") + ";" + times (500, "</a>")) },
                     Text { "elements without end in an entity",
                            "<!DOCTYPE settings [<!ENTITY a \"" + times (100000, "<a>") + "\">]>" + holding ("&a;") }));

INSTANTIATE_TEST_SUITE_P (
    ByEntities,
    HarmfulText,
    testing::Values (
        Text { "one defined by itself", "<!DOCTYPE settings [<!ENTITY a \"x&a;\">]><settings x=\"&a;\"/>" },
        Text { "one that grows for ever",
               "<!DOCTYPE settings [<!entity a \"&z;&y;&y;&y;&y;&y;&y;;;;;;\">]><settings x=\"&a;\"/>" },
        Text { "one that goes round", "<!DOCTYPE settings [<!ENTITY a \"<b><?c?>text</b>\">]>" + holding ("&a;") },
        Text { "one that is put in too often",
               "<!DOCTYPE settings [<!ENTITY a \"" + times (100000, "long ") + "\">]>"
                   + holding (times (100000, "&a;")) },
        Text { "one that is put into the type too often",
               "<!DOCTYPE settings [<!ENTITY % a \"" + times (10000, "b ") + "\"> " + times (5000, "%a; ") + "]>"
                   + holding ("&a;") }));

INSTANTIATE_TEST_SUITE_P (RoundAndRound,
                          HarmfulText,
                          testing::Values (Text { "an instruction ahead of text", holding ("<?a?>text") },
                                           Text { "an instruction ahead of blanks and text", holding (" <?a?> text") },
                                           Text { "an instruction ahead of a reference", holding ("<?a?>&amp;") },
                                           Text { "an instruction, a comment, text", holding ("<?a?><!-- b -->text") },
                                           Text { "a comment, an instruction, text", holding ("<!-- a --><?b?>text") },
                                           Text { "deep inside", holding ("<a><b><?c?>text</b></a>") },
                                           Text { "behind a header",
                                                  "<?xml version=\"1.0\"?>" + holding ("<?a?>text") },
                                           Text { "in an entity's name", holding ("&<a><?b?>text</a>;") }));

INSTANTIATE_TEST_SUITE_P (
    PastTheEnd,
    HarmfulText,
    testing::Values (Text { "half a number of a character", "<settings a=\"&#x" },
                     Text { "half a number with a digit", "<settings a=\"&#x4" },
                     Text { "half a number in text", "<settings>&#x" },
                     Text { "half a number in an entity's name", holding ("&<b x='&#x41;") },
                     Text { "half a number in the text of an entity's name", holding ("&<b>&#x;") },
                     Text { "half a character in text", "<settings>\xf0" },
                     Text { "half a character in a value", "<settings a=\"\xe4" },
                     Text { "half characters in a comment", "<!--" + times (1000, "\xf0") + "--><setting/>" }));

TEST (ParserGuard, RefusesHalfANumberWhereOnlyOneZeroFollows)
{
    // The parser makes a text of its own of an entity's name, and what stands behind that text is anybody's.
    for (const auto& content : { "&<b x='&#x41;", "&<b x='&#x;", "&<b>&#x;", "&<b>&#x4;" })
        EXPECT_FALSE (larkspire::canBeParsed (holding (content))) << content;

    for (const auto& content : { "&<b x='&#x4 ;", "&<b>&#x ;", "&b&#x;", "&<b>&#65;" })
        EXPECT_TRUE (larkspire::canBeParsed (holding (content))) << content;
}
} // namespace

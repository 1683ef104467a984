// SPDX-License-Identifier: AGPL-3.0-only
// What a settings document may be: on this side of each limit it is taken in, beyond it nothing is.
#include "settings/RestoredProcessor.h"

#include <gtest/gtest.h>

namespace
{
using namespace state_block;

constexpr std::size_t megabyte = 1048576;

/** So many copies of a text. */
std::string times (std::size_t count, std::string_view text)
{
    std::string copies;

    for (std::size_t i = 0; i < count; ++i)
        copies += text;

    return copies;
}

/** A document that holds something behind the attribute "mode" of a quarter. */
std::string holding (const std::string& content)
{
    return "<settings mode=\"0.2500\">" + content + "</settings>";
}

/** A row of the tests below. */
struct Text
{
    std::string what;
    std::string text;
};

void expectTaken (const std::vector<Text>& texts)
{
    for (const auto& [what, text] : texts)
    {
        const RestoredProcessor processor (around (text));
        EXPECT_EQ (processor.mode(), 0.25f) << what;
        EXPECT_FALSE (processor.hasFormerStore()) << what;
    }
}

void expectRefused (const std::vector<Text>& texts)
{
    for (const auto& [what, text] : texts)
    {
        const RestoredProcessor processor (around (text));
        EXPECT_TRUE (processor.isUntouched()) << what;
        EXPECT_TRUE (processor.hasAskedForAnUpdate()) << what;
    }
}

/** A document of a size. */
std::string ofSize (std::size_t size)
{
    const auto bare = documentWith ("mode=\"0.2500\" a=\"\"");
    return documentWith ("mode=\"0.2500\" a=\"" + std::string (size - bare.size(), 'v') + "\"");
}

TEST (DocumentLimits, AreAMegabyteOfText)
{
    ASSERT_EQ (ofSize (megabyte).size(), megabyte);
    expectTaken (
        { { "a megabyte", ofSize (megabyte) },
          { "a megabyte and what is behind its zero", ofSize (megabyte) + '\0' + std::string (megabyte, 'x') } });
    expectRefused ({ { "a byte more", ofSize (megabyte + 1) },
                     { "a byte more behind the document", ofSize (megabyte) + " " },
                     { "16 megabytes", ofSize (16 * megabyte) } });

    const RestoredProcessor lenient (around (ofSize (megabyte), 2147483647));
    EXPECT_EQ (lenient.mode(), 0.25f) << "the zero behind the text does not count where the frame claims too much";
}

TEST (DocumentLimits, AreAThousandBrackets)
{
    const auto closed = [] (std::size_t depth) { return times (depth, "<a>") + times (depth, "</a>"); };

    expectTaken ({ { "elements", holding (times (998, "<a/>")) },
                   { "elements inside each other", holding (closed (499)) },
                   { "in a value", "<settings mode=\"0.2500\" a=\"" + times (999, "<") + "\"/>" },
                   { "in a comment", "<!--" + times (998, "<") + "--><settings mode=\"0.2500\"/>" } });
    expectRefused (
        { { "elements", holding (times (999, "<a/>")) },
          { "elements inside each other", holding (closed (499) + "<a/>") },
          { "in a value", "<settings mode=\"0.2500\" a=\"" + times (1000, "<") + "\"/>" },
          { "in a comment", "<!--" + times (999, "<") + "--><settings mode=\"0.2500\"/>" },
          { "many elements", holding (times (20000, "<a/>")) },
          { "elements without end", "<settings>" + times (300000, "<a>") },
          { "elements without end, with attributes", "<settings>" + times (100000, "<a b=\"c\">") },
          { "elements without end behind the root", "<settings mode=\"0.2500\"/>" + times (300000, "<a>") } });
}

/** Attributes of different names. */
std::string attributes (std::size_t count, const std::string& quote = "\"")
{
    std::string text;

    for (std::size_t i = 0; i < count; ++i)
        text += " a" + std::to_string (i) + "=" + quote + "v" + quote;

    return text;
}

TEST (DocumentLimits, AreAThousandAttributes)
{
    const std::string mode = "<settings mode=\"0.2500\"";

    expectTaken ({ { "different ones", mode + attributes (999) + "/>" },
                   { "equal ones", mode + times (999, " a=\"v\"") + "/>" },
                   { "in single quotes", mode + attributes (999, "'") + "/>" },
                   { "behind a header", std::string (header) + mode + attributes (999) + "/>" },
                   { "of a child", mode + "><a" + attributes (999) + "/></settings>" },
                   { "of children", holding (times (333, "<a b='c' d = \"e\" f=\n'g'/>")) } });
    expectRefused (
        { { "different ones", mode + attributes (1000) + "/>" },
          { "equal ones", mode + times (1000, " a=\"v\"") + "/>" },
          { "in single quotes", mode + attributes (1000, "'") + "/>" },
          { "behind a header", std::string (header) + mode + attributes (1000) + "/>" },
          { "of a child", mode + "><a" + attributes (1000) + "/></settings>" },
          { "of children", holding (times (333, "<a b='c' d = \"e\" f=\n'g'/>") + "<a b=\"c\"/>") },
          { "blanks around the sign", mode + times (1000, " a\t=\n'v'") + "/>" },
          { "a megabyte of equal ones", "<settings" + times (150000, " a=\"b\"") + "/>" },
          { "behind a quote in a comment", "<!-- =\" --><settings mode='0.2500'" + attributes (1000, "'") + "/>" } });

    const RestoredProcessor processor (around (mode + attributes (999) + "/>"));
    EXPECT_EQ (processor.store().size(), 1000u);
    EXPECT_EQ (processor.store().at ("a998"), "v");
}

/** A document with a text in a value. */
std::string valued (const std::string& text)
{
    return "<settings mode=\"0.2500\" a=\"" + text + "\"/>";
}

/** A document of a size with so many references, each of four bytes. */
std::string referring (std::size_t count, std::size_t size)
{
    const auto bare = valued ("").size() + 4 * count;
    return valued (std::string (size - bare, 'v') + times (count, "&lt;"));
}

TEST (DocumentLimits, Are250ReferencesInAMegabyteAndMoreInLess)
{
    ASSERT_EQ (referring (250, megabyte).size(), megabyte);
    expectTaken ({ { "a megabyte", referring (250, megabyte) },
                   { "half as much", referring (500, megabyte / 2) },
                   { "a tenth", referring (2500, megabyte / 10) },
                   { "nothing else", valued (times (8000, "&lt;")) },
                   { "in text", holding (times (8000, "&lt;")) } });
    expectRefused ({ { "a megabyte", referring (251, megabyte) },
                     { "half as much", referring (501, megabyte / 2) },
                     { "a tenth", referring (2501, megabyte / 10) },
                     { "nothing else", valued (times (8200, "&lt;")) },
                     { "in text", holding (times (8200, "&lt;")) },
                     { "in a comment", holding ("<!--" + times (8200, "&lt;") + "-->") } });
}

TEST (DocumentLimits, LeaveNoAmpersandWithoutAReference)
{
    std::vector<Text> texts;

    for (const char* text : { "&",
                              "& ",
                              "& amp;",
                              "&amp",
                              "&amp ;",
                              "&b&amp;",
                              "&&amp;",
                              "&<",
                              "&<;",
                              "&<a;",
                              "&<a b='c'/>;",
                              "&<b x='&#x41;",
                              "&<b>&#x;",
                              "&#",
                              "&#x",
                              "&#x4",
                              "&#x41 ",
                              "&\n;" })
    {
        texts.push_back ({ text, valued (text) });
        texts.push_back ({ text, holding (text) });
        texts.push_back ({ text, "<settings mode=\"0.2500\"/><!--" + std::string (text) + "-->" });
        texts.push_back ({ text, "<settings mode=\"0.2500\"/>" + std::string (text) });
        texts.push_back ({ text, "<settings mode=\"0.2500\" a=\"" + std::string (text) });
    }

    texts.push_back ({ "a long name", valued ("&" + std::string (32, 'n') + ";") });
    texts.push_back ({ "a zero in a number", std::string ("<settings mode=\"0.2500\" a=\"&#x") + '\0' + "\"/>" });
    expectRefused (texts);
    expectTaken ({ { "a name that is not too long", valued ("&" + std::string (31, 'n') + ";") } });
}

TEST (DocumentLimits, LeaveReferencesToTheParser)
{
    const std::vector<std::pair<std::string, std::string>> rows {
        { "&amp;&lt;&gt;&quot;&apos;", "&<>\"'" },
        { "&amp;amp;", "&amp;" },
        { "&b;", "b" },
        { "&#65;&#x41;&#228;&#38899;&#127897;", "AA\u00e4\u97f3\U0001F399" },
        { "&#9;&#10;&#1;", "\t\n\x01" },
    };

    for (const auto& [text, value] : rows)
    {
        const RestoredProcessor processor (blockWith ("a=\"" + text + "\" mode=\"&#48;.2&#x35;00\""));
        EXPECT_EQ (processor.mode(), 0.25f) << text;
        EXPECT_EQ (processor.store(), (Store { { "a", value }, { "mode", "0.2500" } })) << text;
    }
}

TEST (DocumentLimits, CountNoAttributesInValues)
{
    for (const std::string quoted : { "=", "='", "='x' ", "a = 'b' " })
    {
        const auto value = times (5000, quoted);
        const RestoredProcessor processor (blockWith ("a=\"" + value + "\" mode=\"0.2500\""));
        EXPECT_EQ (processor.mode(), 0.25f) << quoted;
        EXPECT_EQ (processor.store(), (Store { { "a", value }, { "mode", "0.2500" } })) << quoted;
    }
}

TEST (DocumentLimits, LeaveAllThatIsXml)
{
    expectTaken ({
        { "no header", "<settings mode=\"0.2500\"/>" },
        { "blanks ahead of the header", "  <?xml version=\"1.0\"?><settings mode=\"0.2500\"/>" },
        { "a header in single quotes", "<?xml version='1.0' encoding='utf-8'?><settings mode=\"0.2500\"/>" },
        { "a stand-alone header",
          "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\" ?>\n<settings mode=\"0.2500\"/>" },
        { "a header of another encoding", "<?xml encoding=\"latin1\"?><settings mode=\"0.2500\"/>" },
        { "a header of another name", "<?a b?><settings mode=\"0.2500\"/>" },
        { "a blank ahead of the root's name", "< settings mode=\"0.2500\"/>" },
        { "comments",
          "<!-- a --><settings <!-- <b> --> mode=\"0.2500\"><!-- c -->text<!-- d --></settings><!-- e -->" },
        { "comments ahead of text", holding ("<!-- a --> <!-- b -->text<!-- c -->text") },
        { "a long comment", "<!--" + times (100000, "- ") + "--><settings mode=\"0.2500\"/>" },
        { "children and text", holding ("text<a b='c'>text<d/></a>text") },
        { "character data", holding ("<![CDATA[ <a> &a; ]] ]]>text<![CDATA[]]>") },
        { "references", holding ("&lt;&a;&#65;<a b=\"&#x41;\"/>") },
        { "brackets in a value", "<settings a=\" < > <a> </a> <!ENTITY \" mode=\"0.2500\"/>" },
        { "quotes in values", "<settings a='\"' b=\"'\" mode='0.2500'/>" },
        { "blanks around the sign", "<settings mode = \t\n \"0.2500\" />" },
        { "no blank between attributes", "<settings a=\"\"mode=\"0.2500\"b=\"\"/>" },
        { "an end of another name", "<settings mode=\"0.2500\"></a>" },
    });
}

TEST (DocumentLimits, LeaveCutsThatTheParserLetsPass)
{
    expectTaken ({ { "behind a value", "<settings mode=\"0.2500\"" },
                   { "behind a value and a blank", "<settings mode=\"0.2500\" " },
                   { "behind a sign", "<settings mode=\"0.2500\" a=" },
                   { "behind an opening quote", "<settings mode=\"0.2500\" a=\"" } });

    const RestoredProcessor processor (around ("<?xml version=\"1.0\" encoding=\"UTF-8\"?> <settings"));
    EXPECT_EQ (processor.mode(), RestoredProcessor::formerMode);
    EXPECT_TRUE (processor.store().empty()) << "cut off behind the name of its root it has no attributes";
}

TEST (DocumentLimits, LeaveNoDocumentType)
{
    const auto typed = [] (const std::string& type, const std::string& rest)
    { return "<!DOCTYPE settings" + type + ">" + rest; };
    const std::string root = "<settings mode=\"0.2500\"/>";

    expectRefused (
        { { "a name alone", typed ("", root) },
          { "behind a header", std::string (header) + typed ("", root) },
          { "a file", typed (" SYSTEM \"f\"", root) },
          { "a public name", typed (" PUBLIC \"a\" \"b\"", root) },
          { "an entity", typed (" [<!ENTITY v \"0.25\">]", "<settings mode=\"&v;\"/>") },
          { "an entity that is an element", typed (" [<!ENTITY v \"<a>text</a>\">]", holding ("&v;&v;")) },
          { "an entity of itself", typed (" [<!ENTITY a \"x&a;\">]", "<settings x=\"&a;\"/>") },
          { "an entity that grows for ever",
            typed (" [<!entity a \"&z;&y;&y;&y;&y;&y;&y;;;;;;\">]", "<settings x=\"&a;\"/>") },
          { "an entity that goes round", typed (" [<!ENTITY a \"<b><?c?>text</b>\">]", holding ("&a;")) },
          { "elements without end in an entity",
            typed (" [<!ENTITY a \"" + times (900, "<a>") + "\">]", holding ("&a;")) },
          { "a long entity, often",
            typed (" [<!ENTITY a \"" + times (50000, "long ") + "\">]", holding (times (50000, "&a;"))) },
          { "a long entity, often in the type",
            typed (" [<!ENTITY % a \"" + times (10000, "b ") + "\"> " + times (5000, "%a; ") + "]", holding ("&a;")) },
          { "words and references",
            typed (" [" + times (50000, "b ") + "]", "<settings x=\"" + times (50000, "&c;") + "\"/>") } });
}

TEST (DocumentLimits, LeaveNoInstructionBehindTheHeader)
{
    expectRefused ({ { "a second header", "<?xml version=\"1.0\"?><?xml version=\"1.1\"?><settings mode=\"0.2500\"/>" },
                     { "behind a header", "<?xml version=\"1.0\"?> <?a b?> <settings mode=\"0.2500\"/>" },
                     { "behind a comment", "<!-- a --><?a b?><settings mode=\"0.2500\"/>" },
                     { "in a comment", "<!-- <?a --><settings mode=\"0.2500\"/>" },
                     { "in a tag", "<settings <?a b?> mode=\"0.2500\"/>" },
                     { "in a value", "<settings a=\"<?a?>b\" mode=\"0.2500\"/>" },
                     { "ahead of an element", holding ("<?a?><a/>") },
                     { "behind the root", "<settings mode=\"0.2500\"/><?a?>b" } });

    // Here the parser would come back to the same place for ever.
    expectRefused ({ { "ahead of text", holding ("<?a?>text") },
                     { "ahead of blanks and text", holding (" <?a?> text") },
                     { "ahead of a reference", holding ("<?a?>&amp;") },
                     { "ahead of a comment and text", holding ("<?a?><!-- b -->text") },
                     { "behind a comment, ahead of text", holding ("<!-- a --><?b?>text") },
                     { "deep inside", holding ("<a><b><?c?>text</b></a>") },
                     { "behind a header, ahead of text", "<?xml version=\"1.0\"?>" + holding ("<?a?>text") },
                     { "of a byte that is no UTF-8 and counts as a question mark", holding ("<\xff\x61?>text") } });
}

TEST (DocumentLimits, LeaveNothingWithoutEndThatTheParserWouldLookForAgainAndAgain)
{
    expectRefused (
        { { "a comment behind the root", "<settings mode=\"0.2500\"/><!-- a" },
          { "a comment with half an end", "<settings mode=\"0.2500\"/><!-->" },
          { "a second comment", "<!-- a --><settings mode=\"0.2500\"/><!-- b" },
          { "comments in a tag", "<settings mode=\"0.2500\" " + times (300, "<!--a=\"<!--b=\"") },
          { "a closing tag", "<settings mode=\"0.2500\"></settings" },
          { "the closing tag of many elements", "<settings mode=\"0.2500\">" + times (900, "<a>") + "</" } });
}
TEST (DocumentLimits, CountWhatTheParserWouldTakeForAnAsciiCharacter)
{
    // "<", "=" and "&" in three and in four bytes.
    for (const std::string overlong : { "\xe0\x80\xbc", "\xf0\x80\x80\xbc", "\xe0\x80\xbd", "\xf0\x80\x80\xa6" })
    {
        const RestoredProcessor processor (blockWith ("a=\"" + overlong + "\" mode=\"0.2500\""));
        EXPECT_EQ (processor.mode(), 0.25f);
        EXPECT_EQ (processor.store().at ("a"), std::string (overlong.size(), '?'));
    }

    expectRefused ({ { "elements inside each other",
                       "<settings>"
                           + times (300000,
                                    "\xe0\x80\xbc"
                                    "a>") },
                     { "elements",
                       "<settings mode=\"0.2500\">"
                           + times (100000,
                                    "\xf0\x80\x80\xbc"
                                    "a/>") },
                     { "attributes", "<settings mode=\"0.2500\"" + times (100000, " a\xe0\x80\xbd\"\"") + "/>" } });
}
} // namespace

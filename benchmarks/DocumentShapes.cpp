// SPDX-License-Identifier: AGPL-3.0-only
#include "benchmarks/DocumentShapes.h"

#include <string_view>

namespace
{
/** A piece as often as it goes into the size as a whole, and blanks in what is left. */
std::string repeated (std::string_view piece, std::size_t size)
{
    std::string text;
    text.reserve (size);

    while (text.size() + piece.size() <= size)
        text += piece;

    text.resize (size, ' ');
    return text;
}

/** What stands ahead, pieces up to the size of a shape, and what stands behind. */
std::string filled (std::string_view front, std::string_view piece, std::string_view back = "")
{
    return std::string (front) + repeated (piece, shapeSize - front.size() - back.size()) + std::string (back);
}

using Piece = std::string (*) (const std::string& number);

/** The same with so many pieces with a number each, and blanks in what is left. */
std::string numbered (std::string_view front, int count, Piece piece, std::string_view back)
{
    std::string text (front);

    // Downwards: each name sorts ahead of all that were there before it.
    while (--count >= 0)
        text += piece (std::to_string (100000 + count));

    text.resize (shapeSize - back.size(), ' ');
    return text + std::string (back);
}

/** So many elements inside each other, and pieces in the innermost. */
std::string nested (std::size_t depth, std::string_view piece, std::string_view back)
{
    return filled ("<settings mode=\"0.5\">" + repeated ("<a>", 3 * depth), piece, back);
}

/** The start of an element and of a value, with blanks in place of what a save will add. */
std::string opening (char quote = '"', std::size_t blanks = 4096)
{
    return "<settings mode=\"0.5\"" + std::string (blanks, ' ') + " a=" + quote;
}

/** Pieces up to half the size of a shape. */
std::string halfOf (std::string_view piece)
{
    return repeated (piece, shapeSize / 2);
}

constexpr std::string_view content = "<settings mode=\"0.5\">";
constexpr std::string_view closing = "</settings>";
} // namespace

// One row a shape.
// clang-format off
const std::vector<DocumentShape>& documentShapes()
{
    static const std::vector<DocumentShape> shapes {
        { plainShape, [] { return filled (opening(), "value ", "\"/>"); } },
        { "a value without end", [] { return filled (opening(), "value "); } },
        { "a value of letters beyond ASCII", [] { return filled (opening(), "\u00e4\u97f3\U0001F399", "\"/>"); } },
        { "a shorter value of letters beyond ASCII", [] { return filled (opening ('"', shapeSize / 4 * 3), "\u00e4", "\"/>"); } },
        { "a value of control characters", [] { return filled (opening(), "\x01", "\"/>"); } },
        { "a value of signs and apostrophes", [] { return filled (opening(), "='", "\"/>"); } },
        { "a value of quotes", [] { return filled (opening ('\''), "\"", "'/>"); } },
        { "a value of brackets", [] { return filled (opening(), "<", "\"/>"); } },
        { "a number of a million digits", [] { return filled ("<settings mode=\"0.", "1", "\"/>"); } },
        { "references", [] { return filled (opening(), "&lt;", "\"/>"); } },
        { "references of thirteen characters", [] { return filled (opening(), "&#0000000228;", "\"/>"); } },
        { "references to control characters", [] { return filled (opening(), "&#1;", "\"/>"); } },
        { "references to unknown names", [] { return filled (opening(), "&b;", "\"/>"); } },
        { "references between letters", [] { return filled (opening(), "a&amp;", "\"/>"); } },
        { "references behind a long value", [] { return filled (opening() + halfOf ("v"), "&lt;", "\"/>"); } },
        { "250 references behind a long value", [] { return filled (opening(), "value ", repeated ("&#228;", 6UL * 250) + "\"/>"); } },
        { "250 references in a long value", [] { return numbered (opening(), 250, [] (const std::string&) { return "&lt;" + std::string (4000, 'v'); }, "\"/>"); } },
        { "250 references in text", [] { return numbered (content, 250, [] (const std::string&) { return "&amp;" + std::string (4000, 't'); }, closing); } },
        { "250 references to unknown names in text", [] { return numbered (content, 250, [] (const std::string&) { return "&b;" + std::string (4000, 't'); }, closing); } },
        { "a reference behind a long value", [] { return filled (opening(), "value ", "&amp;\"/>"); } },
        { "references in text", [] { return filled (content, "&amp;", closing); } },
        { "ampersands", [] { return filled (opening(), "&", "\"/>"); } },
        { "ampersands in text", [] { return filled (content, "& ", closing); } },
        { "ampersands ahead of elements", [] { return filled (content, "&<a>;", closing); } },
        { "equal attributes", [] { return filled ("<settings ", "a=\"b\" ", "/>"); } },
        { "different attributes", [] { return numbered ("<settings ", 90000, [] (const std::string& n) { return "a" + n + "=\"\" "; }, "/>"); } },
        { "a thousand attributes", [] { return numbered ("<settings ", 990, [] (const std::string& n) { return "a" + n + "=\"" + std::string (1000, 'v') + "\" "; }, "/>"); } },
        { "a thousand long names with one start", [] { return numbered ("<settings ", 990, [] (const std::string& n) { return std::string (1000, 'n') + n + "=\"v\" "; }, "/>"); } },
        { "a long name", [] { return filled ("<settings mode=\"0.5\" ", "n", "=\"v\"/>"); } },
        { "a long name of the root", [] { return filled ("<", "settings", " mode=\"0.5\"/>"); } },
        { "a long name beyond ASCII", [] { return filled ("<settings mode=\"0.5\" ", "\u00e4", "=\"v\"/>"); } },
        { "signs", [] { return filled ("<settings ", "=", "/>"); } },
        { "a document type and references", [] { return filled ("<!DOCTYPE s [" + halfOf ("b ") + "]><settings a=\"", "&c;", "\"/>"); } },
        { "a long entity and references", [] { return filled ("<!DOCTYPE s [<!ENTITY a \"" + halfOf ("b ") + "\">]><settings a=\"", "&a;", "\"/>"); } },
        { "text", [] { return filled (content, "text ", closing); } },
        { "ends of lines", [] { return filled (content, "\r\n", closing); } },
        { "blanks", [] { return filled ("<settings mode=\"0.5\"", " ", "/>"); } },
        { "character data", [] { return filled (std::string (content) + "<![CDATA[", "]]", "]]></settings>"); } },
        { "character data without end", [] { return filled (std::string (content) + "<![CDATA[", "]]"); } },
        { "a thousand elements and text", [] { return numbered (content, 990, [] (const std::string& n) { return "<a" + n + "/>" + std::string (1000, 't'); }, closing); } },
        { "a thousand elements of long names", [] { return numbered (content, 990, [] (const std::string& n) { return "<" + std::string (1000, 'n') + n + "/>"; }, closing); } },
        { "elements", [] { return filled (content, "<a/>", closing); } },
        { "elements without end", [] { return filled (content, "<a>"); } },
        { "elements inside each other", [] { return nested (490, "text", repeated ("</a>", 4UL * 490) + "</settings>"); } },
        { "elements inside each other and half an end", [] { return nested (990, "text", "</a"); } },
        { "elements inside each other and an end without end", [] { return filled (std::string (content) + repeated ("<a>", 3UL * 990) + "</", "text "); } },
        { "closing tags", [] { return filled (content, "</a>", closing); } },
        { "a comment", [] { return filled ("<!--", "- ", "--><settings mode=\"0.5\"/>"); } },
        { "a thousand comments", [] { return numbered (content, 990, [] (const std::string& n) { return "<!--" + n + std::string (1000, 'c') + "-->"; }, "text</settings>"); } },
        { "comments without end", [] { return filled (content, "<!--"); } },
        { "a thousand comments without end", [] { return numbered ("<settings ", 990, [] (const std::string& n) { return "<!--a" + n + "=\"" + std::string (900, ' '); }, "/>"); } },
        { "attributes behind half a comment", [] { return filled ("<settings <!--", "a=\"", "/>"); } },
        { "a header without end", [] { return filled ("<?xml ", "version=\"1.0\" "); } },
        { "instructions", [] { return filled (content, "<?a?>", closing); } },
        { "brackets", [] { return filled ("", "<"); } },
        { "bytes that are no UTF-8", [] { return filled (opening(), "\xff\xc3", "\"/>"); } },
        { "characters that are cut off", [] { return filled (opening(), "\xf0\x9f\x8e", "\"/>"); } },
        { "brackets in three bytes", [] { return filled (content, "\xe0\x80\xbc" "a>"); } },
        { "signs in three bytes", [] { return filled ("<settings ", "a\xe0\x80\xbd\"\" ", "/>"); } },
        { "ampersands in three bytes", [] { return filled (opening(), "\xe0\x80\xa6lt;", "\"/>"); } },
        { "no document", [] { return filled ("", "text "); } },
        { "zeros", [] { return std::string (shapeSize, '\0'); } },
    };

    return shapes;
}
// clang-format on

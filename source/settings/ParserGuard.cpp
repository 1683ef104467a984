// SPDX-License-Identifier: AGPL-3.0-only
// Walks a text ahead of JUCE's parser, step for step as the parser does, its liberties with XML included: only
// so is it known where the parser stands when it meets what it cannot deal with, and nothing else has to be refused.
#include "settings/ParserGuard.h"

#include <cstring>

namespace larkspire
{

namespace
{
using Position = juce::String::CharPointerType;

/** What ends a text, as the parser sees it. */
enum class End
{
    oneZero,
    twoZeros
};

/** What the parser takes for a character of a name. */
bool isNameCharacter (juce::juce_wchar c)
{
    if (c < 128)
        return juce::CharacterFunctions::isLetterOrDigit (static_cast<char> (c)) || c == '_' || c == '-' || c == ':'
               || c == '.';

    return c >= 160 && juce::CharacterFunctions::isLetterOrDigit (c);
}

Position endOfName (Position text)
{
    while (isNameCharacter (*text))
        ++text;

    return text;
}

bool startsWith (Position text, const char* prefix)
{
    return text.compareUpTo (juce::CharPointer_ASCII (prefix), static_cast<int> (std::strlen (prefix))) == 0;
}

/** The parser's way through one text. Every step gives false as soon as the parser would come to harm. */
class Walk
{
public:
    Walk (Position text, End textEnd, int elementsAround) : input (text), end (textEnd), depth (elementsAround) {}

    /** Through a document: header, document type, root element. */
    bool document()
    {
        skipWhiteSpace();
        return documentType() && element();
    }

    /** Through all elements of a text that is parsed apart from the one it stands in. */
    bool elements()
    {
        do
        {
            if (! element())
                return false;
        } while (isElement);

        return true;
    }

private:
    /** The next character, which is stepped over unless it is the end. */
    juce::juce_wchar next()
    {
        const auto c = *input;

        if (c == 0)
            isOutOfData = true;
        else
            ++input;

        return c;
    }

    /** Steps over what begins and ends so, or over the beginning where the end is missing. */
    bool skip (const char* opening, const char* closing)
    {
        if (! startsWith (input, opening))
            return false;

        input += static_cast<int> (std::strlen (opening));
        const auto length = input.indexOf (juce::CharPointer_ASCII (closing));

        if (length < 0)
        {
            isOutOfData = true;
            return false;
        }

        input += length + static_cast<int> (std::strlen (closing));
        return true;
    }

    bool skipComment() { return skip ("<!--", "-->"); }

    /** White space, comments and instructions, the header among them. */
    void skipWhiteSpace()
    {
        do
            input.incrementToEndOfWhitespace();
        while (startsWith (input, "<!--") ? skipComment() : skip ("<?", "?>"));

        if (input.isEmpty())
            isOutOfData = true;
    }

    bool documentType()
    {
        if (! startsWith (input, "<!DOCTYPE"))
            return true;

        input += 9;
        const auto start = input;

        for (int open = 1; open > 0;)
        {
            const auto c = next();

            if (isOutOfData)
                return true;

            open += c == '<' ? 1 : c == '>' ? -1 : 0;
        }

        return entitiesAreHarmless (juce::String (start, input));
    }

    /** Whether what a document type defines may be put in wherever the text refers to it. */
    bool entitiesAreHarmless (const juce::String& type)
    {
        if (! type.containsIgnoreCase ("<!entity"))
            return true;

        // An entity that refers to others may refer to itself, and is then expanded for ever.
        if (type.containsChar ('&'))
            return false;

        // An entity may hold elements, and what harms in the document harms there.
        if (type.contains ("<?"))
            return false;

        depth += occurrences (type, '<');

        // Each reference may put in the whole of it, a "%" into itself at that.
        constexpr juce::int64 largest = 1 << 20;
        const auto references = juce::int64 { 1 } + occurrences (input, '&');
        const auto inside = juce::int64 { 1 } + occurrences (type, '%');
        return references * inside * static_cast<juce::int64> (type.getNumBytesAsUTF8()) <= largest;
    }

    static int occurrences (Position text, juce::juce_wchar wanted)
    {
        int count = 0;

        while (const auto c = text.getAndAdvance())
            count += c == wanted ? 1 : 0;

        return count;
    }

    static int occurrences (const juce::String& text, juce::juce_wchar wanted)
    {
        return occurrences (text.getCharPointer(), wanted);
    }

    /** Through an element with all that is in it, if one stands here; isElement tells. */
    bool element()
    {
        isElement = false;
        skipWhiteSpace();

        if (isOutOfData || *input != '<')
            return true;

        ++input;

        if (! isNameCharacter (*input))
            skipWhiteSpace();

        if (! isNameCharacter (*input))
            return true;

        const bool isHarmless = insideOfElement();
        isElement = true;
        return isHarmless;
    }

    bool insideOfElement()
    {
        input = endOfName (input);

        for (;;)
        {
            skipWhiteSpace();

            if (startsWith (input, "/>"))
            {
                input += 2;
                return true;
            }

            if (*input == '>')
            {
                ++input;
                return children();
            }

            if (! isNameCharacter (*input))
                return true;

            input = endOfName (input);
            skipWhiteSpace();

            if (next() != '=')
                return true;

            skipWhiteSpace();

            if (*input != '"' && *input != '\'')
                return true;

            if (! quotedValue())
                return false;
        }
    }

    bool quotedValue()
    {
        const auto quote = next();

        while (! isOutOfData)
        {
            const auto c = next();

            if (c == quote)
                return true;

            // At the end of the text this goes to the character ahead of it.
            --input;

            if (c == '&')
            {
                if (! reference())
                    return false;

                continue;
            }

            while (*input != quote && *input != '&' && *input != 0)
                ++input;

            if (*input == quote)
            {
                ++input;
                return true;
            }

            isOutOfData = isOutOfData || *input == 0;
        }

        return true;
    }

    /** Through "&" and what it refers to; referredTo is left empty where that is a character. */
    bool reference()
    {
        referredTo.clear();
        ++input;

        for (const char* known : { "amp;", "quot;", "apos;", "lt;", "gt;" })
        {
            const auto length = static_cast<int> (std::strlen (known));

            if (input.compareIgnoreCaseUpTo (juce::CharPointer_ASCII (known), length) == 0)
            {
                input += length;
                return true;
            }
        }

        if (*input == '#')
        {
            ++input;
            return numberOfCharacter();
        }

        const auto length = input.indexOf (juce::juce_wchar { ';' });

        if (length < 0)
        {
            isOutOfData = true;
            return true;
        }

        referredTo = juce::String (input, static_cast<std::size_t> (length));
        input += length + 1;
        return true;
    }

    bool numberOfCharacter()
    {
        if (*input == 'x' || *input == 'X')
        {
            ++input;

            for (int digits = 0; *input != ';'; ++input)
                if (juce::CharacterFunctions::getHexDigitValue (*input) < 0 || ++digits > 8)
                    break;

            // The parser takes whatever stands here for the ";".
            if (*input == 0 && end == End::oneZero)
                return false;

            ++input;
        }
        else if (*input >= '0' && *input <= '9')
        {
            for (int digits = 0; *input != ';'; ++input)
            {
                if (*input == 0)
                    return true;

                if (++digits > 12)
                    break;
            }

            ++input;
        }

        return true;
    }

    /** Through all that an element holds, its closing tag included. */
    bool children()
    {
        if (++depth > deepestElement)
            return false;

        const bool isHarmless = insideOfTags();
        --depth;
        return isHarmless;
    }

    bool insideOfTags()
    {
        for (;;)
        {
            const auto start = input;
            skipWhiteSpace();

            if (isOutOfData)
                return true;

            if (startsWith (input, "</"))
            {
                input += input.indexOf (juce::juce_wchar { '>' }) + 1;
                return true;
            }

            if (startsWith (input, "<![CDATA["))
            {
                skip ("<![CDATA[", "]]>");
            }
            else if (*input == '<')
            {
                if (! element())
                    return false;

                if (! isElement)
                    return true;
            }
            else
            {
                // White space belongs to the text. So does an instruction, but there the text ends at once, and the
                // parser comes back to the same place again and again.
                input = start;

                if (! text() || input == start)
                    return false;
            }
        }
    }

    /** Through text with references and comments, up to a tag or an instruction. */
    bool text()
    {
        for (;;)
        {
            while (*input != '<' && *input != '&' && *input != 0)
                ++input;

            if (*input == '&')
            {
                if (! reference() || ! referredToIsHarmless())
                    return false;
            }
            else if (*input == 0 || ! skipComment())
            {
                isOutOfData = isOutOfData || *input == 0;
                return true;
            }
        }
    }

    /** A name that nothing defines stands for itself. If it begins as an element does, it is parsed as a text of its
        own. */
    bool referredToIsHarmless() const
    {
        return ! referredTo.startsWithChar ('<') || Walk (referredTo.getCharPointer(), End::oneZero, depth).elements();
    }

    Position input;
    const End end;
    int depth;
    bool isOutOfData = false; // as the parser has it: also for a "&" without a ";", wherever that stands
    bool isElement = false;
    juce::String referredTo;
};
} // namespace

bool canBeParsed (const juce::String& text)
{
    return Walk (text.getCharPointer(), End::twoZeros, 0).document();
}

} // namespace larkspire

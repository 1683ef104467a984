// SPDX-License-Identifier: AGPL-3.0-only
// How much a settings document may hold. JUCE's parser calls itself for each element, looks up each name among all
// that it has seen and looks for the end of a comment in all that follows: without limits a document of a megabyte
// takes minutes, or the host's whole stack. A document of ours has one element, seven attributes and 300 bytes.
#pragma once

#include <cstddef>
#include <string_view>

namespace larkspire
{

/** The bytes of a document's text. */
constexpr std::size_t longestDocument = 1 << 20;

/** The attributes of all its elements. */
constexpr std::size_t mostAttributes = 1000;

/** The "<" in it, wherever they stand. As many elements inside each other take some 320 kB of stack. */
constexpr std::size_t mostBrackets = 1000;

/** The references in it times its bytes, as the parser copies a value once for each reference in it: 250 in the longest
    document, any number in one of 22 kB. */
constexpr std::size_t mostCopiedBytes = 250 * longestDocument;

/** The bytes from a "&" to its ";". */
constexpr std::size_t longestReference = 32;

/** Whether a text keeps to these limits and to what the parser reads in time proportional to it: no document type, no
    instruction but one that the text begins with, an end for each comment, each closing tag and each reference. The
    text is judged as it stands, without regard to what is a value or a comment. Takes time in proportion to the text.

    Where there is more than one element, or a comment, each "=" counts for an attribute; where there is not, values may
    hold any number of them.
*/
bool isWithinLimits (std::string_view text);

} // namespace larkspire

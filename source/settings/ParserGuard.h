// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <juce_core/juce_core.h>

namespace larkspire
{

/** How many elements may stand inside each other. JUCE's parser calls itself for each of them; this many take
    some 320 kB of the host's stack, and a document of ours has one. */
constexpr int deepestElement = 1000;

/** Whether JUCE's XML parser comes to the end of a text: not behind it, not round for ever and not to the end
    of the stack first. Says nothing about what the parser makes of the text.

    The text must be well-formed UTF-8 and a second zero must stand behind the one that ends it, because the parser
    steps over the first where the text stops within "&#x".
*/
bool canBeParsed (const juce::String& text);

} // namespace larkspire

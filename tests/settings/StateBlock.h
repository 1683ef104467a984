// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/** State blocks as a host holds them: bytes. They are made and read by hand here, with nothing of the framework's frame
    or XML code, so that no test leans on what it judges. All text is UTF-8. */
namespace state_block
{

using Attributes = std::vector<std::pair<std::string, std::string>>; // in the order of the document
using Store = std::map<std::string, std::string>;

/** A block around a text. */
std::string around (std::string_view text);

/** A block around a text whose length field holds another number than the text's length. */
std::string around (std::string_view text, std::int32_t claimedLength);

/** The one line of a document, its attributes given as they stand in XML. */
std::string documentWith (std::string_view attributes, std::string_view element = "settings");

/** A block around documentWith. */
std::string blockWith (std::string_view attributes);

/** A value as it stands between the quotes of a document. */
std::string escaped (std::string_view value);

/** The UTF-8 of a code point. */
std::string utf8 (std::uint32_t codePoint);

/** What a processor saves. */
std::string save (juce::AudioProcessor& processor);

/** Restores a copy of the block that ends where the block ends, so that memory checkers see a read behind it. */
void restore (juce::AudioProcessor& processor, std::string_view block);

/** The text of a block, or a test failure and an empty text where the frame is not to the byte. */
std::string textOf (const std::string& block);

/** The attributes of a block, or a test failure and none where the document is not in the one form that is saved. */
Attributes attributesOf (const std::string& block);

/** The names of attributes, in order. */
std::vector<std::string> namesOf (const Attributes& attributes);

/** The value of an attribute of a block, or a test failure where there is not exactly one of this name. */
std::string valueOf (const std::string& block, const std::string& name);

/** The attributes of a block but for the time of saving. */
Attributes timelessAttributesOf (const std::string& block);

/** A processor's store in plain texts. */
Store plain (const std::map<juce::String, juce::String>& settings);

} // namespace state_block

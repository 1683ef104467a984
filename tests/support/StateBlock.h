// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/** State blocks as a host holds them: bytes. They are made and read by hand here, without JUCE's frame and XML code, so
    that no test leans on what it judges. All text is UTF-8. What reads a block throws std::runtime_error if the block
   is not, to the byte, in the form in which it is saved. */
namespace state_block
{

using Attributes = std::vector<std::pair<std::string, std::string>>; // in the order of the document
using Store = std::map<std::string, std::string>;

/** What every document has ahead of its element. */
inline constexpr std::string_view header = "<?xml version=\"1.0\" encoding=\"UTF-8\"?> ";

/** The attributes of a save by a fresh instance, in order. */
std::vector<std::string> freshNames();

/** A block around a text. The length field holds the length of the text, unless another one is given. */
std::string around (std::string_view text, std::optional<std::int32_t> claimedLength = {});

/** A document's one line, its attributes given as they stand in XML. */
std::string documentWith (std::string_view attributes);

/** A block around documentWith. */
std::string blockWith (std::string_view attributes);

/** A value as it stands between the quotes of a document. */
std::string escaped (std::string_view value);

/** The UTF-8 of a code point. */
std::string utf8 (std::uint32_t codePoint);

/** The text of a block. */
std::string textOf (std::string_view block);

/** The attributes of a block. */
Attributes attributesOf (std::string_view block);

/** The attributes of a block but for the time of saving. */
Attributes timelessAttributesOf (std::string_view block);

/** The names of the attributes of a block, in order. */
std::vector<std::string> namesOf (std::string_view block);

/** The value of an attribute of a block. Throws also if there is not exactly one of this name. */
std::string valueOf (std::string_view block, std::string_view name);

} // namespace state_block

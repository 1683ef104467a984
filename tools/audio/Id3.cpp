// SPDX-License-Identifier: AGPL-3.0-only
#include "audio/Id3.h"

#include "audio/FileBytes.h"
#include "audio/FlacBlocks.h"
#include "audio/MpegHeader.h"
#include "audio/TagNames.h"
#include "audio/WavChunks.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace larkspire
{

namespace
{
constexpr std::size_t header = 10;      // bytes, of the tag
constexpr std::size_t frameHeader = 10; // of a frame: its name, its size and flags
constexpr char utf8 = 3;

/** Seven bits in each of four bytes. */
std::string synchsafe (std::size_t number)
{
    std::string bytes;

    for (int shift = 21; shift >= 0; shift -= 7)
        bytes += static_cast<char> ((number >> shift) & 0x7f);

    return bytes;
}

std::size_t synchsafeIn (std::string_view bytes, std::size_t place)
{
    std::size_t number = 0;

    for (std::size_t i = 0; i < 4; ++i)
        number = (number << 7) | (static_cast<unsigned char> (bytes[place + i]) & 0x7fU);

    return number;
}

std::string frame (std::string_view name, const std::string& bytes)
{
    return std::string (name) + synchsafe (bytes.size()) + std::string (2, '\0') + bytes;
}

std::string tagWith (char version, const std::string& frames)
{
    return frames.empty() ? std::string()
                          : std::string ("ID3") + version + std::string (2, '\0') + synchsafe (frames.size()) + frames;
}

/** Whether a frame tells how loud the recording is: RVA2 and RGAD do nothing else, and a text of one's own may. */
bool tellsLoudness (std::string_view name, std::string_view bytes)
{
    if (name == "RVA2" || name == "RVAD" || name == "RGAD")
        return true;

    if (name != "TXXX")
        return false;

    // Its name may be in 16-bit characters.
    std::string letters;

    for (const char character : bytes.substr (0, 64))
        if (std::isalnum (static_cast<unsigned char> (character)) != 0)
            letters += static_cast<char> (std::toupper (static_cast<unsigned char> (character)));

    return letters.starts_with ("REPLAYGAIN") || letters.starts_with ("MP3GAIN");
}

std::string textFrame (const Tag& tag)
{
    const auto known = std::ranges::find (tagNames, tag.name, &TagName::name);
    const auto text = utf8 + tag.text;

    if (known == tagNames.end() || known->id3.empty())
        return frame ("TXXX", utf8 + tag.name + '\0' + tag.text);

    // Comments have a language, which nobody has named.
    return known->id3 == "COMM" ? frame ("COMM", utf8 + std::string ("XXX") + '\0' + tag.text)
                                : frame (known->id3, text);
}

std::string pictureFrame (const Picture& picture)
{
    return frame ("APIC",
                  utf8 + picture.mimeType + '\0' + static_cast<char> (picture.type) + picture.description + '\0'
                      + picture.bytes);
}

/** A frame may be there once, with all of its texts behind one another. */
std::vector<Tag> joined (const std::vector<Tag>& tags)
{
    std::vector<Tag> once;

    for (const auto& tag : tags)
        if (const auto same = std::ranges::find (once, tag.name, &Tag::name); same == once.end())
            once.push_back (tag);
        else
            same->text += '\0' + tag.text;

    return once;
}

std::string textOf (const mpg123_string& text)
{
    return text.p == nullptr || text.fill == 0 ? std::string() : std::string (text.p);
}

void add (std::vector<Tag>& tags, const std::string& name, const std::string& text)
{
    if (! name.empty() && ! text.empty() && ! isAboutLoudness (name))
        tags.push_back ({ .name = name, .text = text });
}
} // namespace

std::string withoutLoudness (const std::string& tag)
{
    // Of tags that are stored in other ways, and of the second version, nothing is known: they are left as they are.
    if (tag.size() < header || ! tag.starts_with ("ID3") || (tag[3] != 3 && tag[3] != 4) || tag[5] != 0)
        return tag;

    const auto isNewer = tag[3] == 4;
    const auto end = std::min (tag.size(), header + synchsafeIn (tag, 6));
    std::string frames;
    std::size_t place = header;

    while (place + frameHeader <= end && tag[place] != '\0')
    {
        const std::string_view name (tag.data() + place, 4);
        const auto size = isNewer ? synchsafeIn (tag, place + 4) : numberIn (tag, place + 4, 4, true);

        if (size > end - place - frameHeader)
            return tag;

        if (! tellsLoudness (name, std::string_view (tag).substr (place + frameHeader, size)))
            frames.append (tag, place, frameHeader + size);

        place += frameHeader + size;
    }

    return tagWith (tag[3], frames);
}

std::string id3Of (const Metadata& metadata, std::vector<std::string>& lost)
{
    auto whole = metadata.id3;

    for (const auto& chunk : metadata.chunks)
        if (isId3 (chunk))
            whole = chunk.bytes;
        else if (! isInfo (chunk))
            lost.push_back (nameOf (chunk));

    if (! whole.empty())
        return whole;

    std::string frames;

    for (const auto& tag : joined (metadata.tags))
        frames += textFrame (tag);

    for (const auto& block : metadata.blocks)
        if (const auto picture = pictureIn (block); picture.has_value())
            frames += pictureFrame (*picture);
        else
            lost.push_back (nameOf (block));

    return tagWith (4, frames);
}

Metadata readId3 (int descriptor, const mpg123_id3v2* texts)
{
    const FileBytes file (descriptor);
    const auto size = sizeOfId3 (file.at (0, header));
    Metadata metadata;

    if (size > static_cast<std::int64_t> (largestMetadata) || size > file.size())
        metadata.unreadable.emplace_back ("tags");
    else
        metadata.id3 = withoutLoudness (file.at (0, static_cast<std::size_t> (size)));

    if (texts == nullptr)
        return metadata;

    for (std::size_t i = 0; i < texts->texts; ++i)
    {
        const std::string_view id (&texts->text[i].id[0], 4);
        const auto isIt = [id] (const TagName& known) { return known.id3 == id || known.olderId3 == id; };

        if (const auto known = std::ranges::find_if (tagNames, isIt); known != tagNames.end() && ! id.empty())
            add (metadata.tags, std::string (known->name), textOf (texts->text[i].text));
    }

    for (std::size_t i = 0; i < texts->comments; ++i)
        if (textOf (texts->comment_list[i].description).empty())
            add (metadata.tags, "COMMENT", textOf (texts->comment_list[i].text));

    for (std::size_t i = 0; i < texts->extras; ++i)
        add (metadata.tags, textOf (texts->extra[i].description), textOf (texts->extra[i].text));

    for (std::size_t i = 0; i < texts->pictures; ++i)
        metadata.blocks.push_back (
            blockOf ({ .type = texts->picture[i].type,
                       .mimeType = textOf (texts->picture[i].mime_type),
                       .description = textOf (texts->picture[i].description),
                       .bytes = { reinterpret_cast<const char*> (texts->picture[i].data), texts->picture[i].size } }));

    return metadata;
}

} // namespace larkspire

// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <sndfile.h>

#include <array>
#include <string_view>

namespace larkspire
{

/** What the kinds of file call one tag; empty or 0 where a kind has no name for it. */
struct TagName
{
    std::string_view name;        // a Vorbis comment
    std::string_view info;        // the chunk in "LIST INFO" of a WAV file
    std::string_view id3;         // the frame in an ID3v2.4 tag
    int libsndfile;               // its number there, for all other kinds
    std::string_view olderId3 {}; // in ID3v2.3
};

inline constexpr std::array<TagName, 13> tagNames { {
    { "TITLE", "INAM", "TIT2", SF_STR_TITLE },
    { "ARTIST", "IART", "TPE1", SF_STR_ARTIST },
    { "ALBUM", "IPRD", "TALB", SF_STR_ALBUM },
    { "TRACKNUMBER", "ITRK", "TRCK", SF_STR_TRACKNUMBER },
    { "DATE", "ICRD", "TDRC", SF_STR_DATE, "TYER" },
    { "GENRE", "IGNR", "TCON", SF_STR_GENRE },
    { "COMMENT", "ICMT", "COMM", SF_STR_COMMENT },
    { "COPYRIGHT", "ICOP", "TCOP", SF_STR_COPYRIGHT },
    { "LICENSE", "", "", SF_STR_LICENSE },
    { "ENCODER", "ISFT", "TSSE", 0 },
    { "LANGUAGE", "ILNG", "TLAN", 0 },
    { "PUBLISHER", "", "TPUB", 0 },
    { "KEYWORDS", "IKEY", "", 0 },
} };

} // namespace larkspire

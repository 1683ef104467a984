// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "audio/Metadata.h"

#include <mpg123.h>

#include <string>

namespace larkspire
{

// ID3v2, the tag of MP3 files, which some put into WAV files too (id3.org). libsndfile writes the texts of it in the
// wrong character set where they are long, and knows no pictures.

/** The tag without what it says of the loudness; all else in it is left as it is. Empty if nothing else is in it. */
std::string withoutLoudness (const std::string& tag);

/** The tag of an MP3 file with these metadata; empty if there are none. What has no place in one is named in lost. */
std::string id3Of (const Metadata& metadata, std::vector<std::string>& lost);

/** The tag at the beginning of an MP3 file: whole, and what is known of it as tags. */
Metadata readId3 (int descriptor, const mpg123_id3v2* texts);

} // namespace larkspire

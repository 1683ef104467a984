// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <filesystem>
#include <string_view>

namespace larkspire
{

/** What a file holds, as far as its beginning tells. */
enum class Content
{
    recording,  // of a kind that is rendered; whether the rest is intact shows when it is
    otherSound, // of a kind that is not
    film,
    noSound
};

/** A kind of file and what people call it. */
struct FileKind
{
    Content content;
    std::string_view name;
    std::string_view nameOfSound {}; // of a film's kind, where the file's name says that it is sound alone
    bool isMpegAudio = false;        // MP3 and the like, which another library decodes
};

/** How many bytes of a file tell its kind. */
inline constexpr std::size_t bytesOfKind = 12;

/** The kinds that are rendered, as people call them. */
inline constexpr const char* kindsOfRecording = "WAV, FLAC, AIFF, MP3, Ogg, AU, CAF or W64";

/** The kind of a file by its first bytes, bytesOfKind of them or all that there are. Its name tells sound from film
    where the bytes do not. */
FileKind kindOf (std::string_view bytes, const std::filesystem::path& path);

/** Whether the ending of a name says that the file is a recording of sound, of whatever kind. */
bool isNamedAsSound (const std::filesystem::path& path);

/** The letters behind the last dot of a name, made small. */
std::string extensionIn (const std::filesystem::path& path);

/** What is to be said of a file that is not rendered because of its kind, without a verb. Where another program makes
    a WAV file of it, that is the command. */
std::string adviceFor (const FileKind& kind, const std::filesystem::path& path);

/** The command that makes a WAV file of a file's sound, for a shell. */
std::string conversionOf (const std::filesystem::path& path);

} // namespace larkspire

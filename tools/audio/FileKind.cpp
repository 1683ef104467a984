// SPDX-License-Identifier: AGPL-3.0-only
#include "audio/FileKind.h"

#include "audio/MpegHeader.h"
#include "base/StandardStreams.h"
#include "base/Texts.h"

#include <algorithm>
#include <array>
#include <string>

namespace larkspire
{

namespace
{
/** How a kind of file begins. */
struct Beginning
{
    std::string_view start; // of the file
    std::size_t offset;     // in bytes, of what follows
    std::string_view form;  // what tells kinds of the same start from each other
    FileKind kind;
};

constexpr FileKind recording { Content::recording, "a recording" };
constexpr FileKind film { Content::film, "a film", "a film's sound" };
constexpr FileKind mpeg4 { Content::otherSound, "MPEG-4 audio" };
constexpr FileKind picture { Content::noSound, "a picture" };
constexpr FileKind mpegAudio { .content = Content::recording, .name = "MPEG audio", .isMpegAudio = true };

constexpr std::array<Beginning, 34> beginnings { {
    { "RIFF", 8, "WAVE", recording },
    { "RIFX", 8, "WAVE", recording },
    { "RF64", 8, "WAVE", recording },
    { "FORM", 8, "AIFF", recording },
    { "FORM", 8, "AIFC", recording },
    { "fLaC", 4, "", recording },
    { "OggS", 4, "", recording },
    { "caff", 4, std::string_view ("\0\1", 2), recording },
    { ".snd", 4, "", recording },
    { "dns.", 4, "", recording },
    { "riff\x2e\x91\xcf\x11", 8, "", recording },
    { "", 4, "ftypM4A ", mpeg4 },
    { "", 4, "ftypM4B ", mpeg4 },
    { "", 4, "ftypM4P ", mpeg4 },
    { "", 4, "ftypheic", picture },
    { "", 4, "ftypheix", picture },
    { "", 4, "ftypmif1", picture },
    { "", 4, "ftypmsf1", picture },
    { "", 4, "ftypavif", picture },
    { "", 4, "ftyp", { Content::film, "a film", "MPEG-4 audio" } },
    { "RIFF", 8, "AVI ", film },
    { "\x1a\x45\xdf\xa3", 4, "", film },
    { "ID3\2", 4, "", mpegAudio },
    { "ID3\3", 4, "", mpegAudio },
    { "ID3\4", 4, "", mpegAudio },
    { "\xff\xf1", 2, "", { Content::otherSound, "AAC audio" } },
    { "\xff\xf9", 2, "", { Content::otherSound, "AAC audio" } },
    { "BW64", 8, "WAVE", { Content::otherSound, "BW64 audio" } },
    { "\x30\x26\xb2\x75", 4, "", { Content::film, "a film", "Windows Media audio" } },
    { "wvpk", 4, "", { Content::otherSound, "WavPack audio" } },
    { "TTA1", 4, "", { Content::otherSound, "True Audio" } },
    { "#!AMR", 5, "", { Content::otherSound, "AMR audio" } },
    { "DSD ", 4, "", { Content::otherSound, "DSD audio" } },
    { "FRM8", 4, "", { Content::otherSound, "DSD audio" } },
} };
} // namespace

FileKind kindOf (std::string_view bytes, const std::filesystem::path& path)
{
    for (const auto& [start, offset, form, kind] : beginnings)
        if (bytes.starts_with (start) && bytes.size() >= offset && bytes.substr (offset).starts_with (form))
            return kind.content == Content::film && isNamedAsSound (path)
                       ? FileKind { Content::otherSound, kind.nameOfSound }
                       : kind;

    return isMpegHeader (bytes) ? mpegAudio : FileKind { Content::noSound, "no sound" };
}

std::string extensionIn (const std::filesystem::path& path)
{
    auto extension = path.extension().string();

    for (auto& letter : extension)
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char> (letter - 'A' + 'a');

    return extension.empty() ? extension : extension.substr (1);
}

bool isNamedAsSound (const std::filesystem::path& path)
{
    constexpr std::array<std::string_view, 22> endings { "aac",  "aif",  "aifc", "aiff", "amr", "ape", "au",  "bwf",
                                                         "caf",  "flac", "m4a",  "m4b",  "mp2", "mp3", "oga", "ogg",
                                                         "opus", "snd",  "w64",  "wav",  "wma", "wv" };
    return std::find (endings.begin(), endings.end(), extensionIn (path)) != endings.end();
}

std::string conversionOf (const std::filesystem::path& path)
{
    if (path == nameOfInput ("-"))
        return "ffmpeg -i - -f wav - ahead of it in the pipe";

    auto result = path;
    result.replace_extension (".wav");

    if (result == path)
        result.replace_filename (path.stem().string() + "-converted.wav");

    // A name that begins with a dash would be taken for an option.
    const auto asArgument = [] (const std::string& name)
    { return quotedForShell (name.starts_with ('-') ? "./" + name : name); };
    return "ffmpeg -i " + asArgument (path.string()) + " " + asArgument (result.string());
}

std::string adviceFor (const FileKind& kind, const std::filesystem::path& path)
{
    const std::string name (kind.name);

    switch (kind.content)
    {
    case Content::otherSound:
        return name + "; convert it first: " + conversionOf (path);
    case Content::film:
        return name + "; extract its sound first: " + conversionOf (path);
    case Content::recording:
    case Content::noSound:
        break;
    }

    return std::string ("not a ") + kindsOfRecording + " file";
}

} // namespace larkspire

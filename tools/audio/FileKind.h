// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

namespace larkspire
{

/** How a kind of file that is rendered begins. */
struct FileKind
{
    std::string_view beginning; // the first four bytes
    std::string_view form;      // the bytes 8 to 11, if films or pictures have the same beginning
};

inline constexpr std::array<FileKind, 7> fileKinds { { { "RIFF", "WAVE" },
                                                       { "RIFX", "WAVE" },
                                                       { "RF64", "WAVE" },
                                                       { "FORM", "AIFF" },
                                                       { "FORM", "AIFC" },
                                                       { "fLaC", "" },
                                                       { "OggS", "" } } };

/** Whether a file with these first bytes may be a recording; four of them are enough. */
inline bool mayBeRecording (std::string_view bytes)
{
    return std::any_of (
        fileKinds.begin(), fileKinds.end(), [&] (const FileKind& kind) { return bytes.starts_with (kind.beginning); });
}

/** Whether a file with these first twelve bytes is a recording and nothing else that begins alike. */
inline bool beginsAsRecording (std::string_view bytes)
{
    return std::any_of (fileKinds.begin(),
                        fileKinds.end(),
                        [&] (const FileKind& kind)
                        {
                            return bytes.starts_with (kind.beginning)
                                   && (kind.form.empty() || (bytes.size() >= 12 && bytes.substr (8, 4) == kind.form));
                        });
}

} // namespace larkspire

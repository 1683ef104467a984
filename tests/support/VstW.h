// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <cstdint>
#include <string>

/** The plug-in's VST 2 chunk in the wrappings in which hosts keep it and hand it to the VST 3 plug-in that takes its
    place. Numbers in them are big-endian. */
namespace wrapped
{

inline std::string bigEndian (std::uint32_t number)
{
    std::string bytes;

    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char> (number >> shift & 0xffu);

    return bytes;
}

/** A bank file (.fxb) of one chunk. */
inline std::string bank (const std::string& chunk)
{
    constexpr std::uint32_t fileVersion = 2; // has a current program and room for the future
    constexpr std::uint32_t pluginVersion = 0x10000;
    constexpr std::uint32_t programs = 1;
    constexpr std::uint32_t currentProgram = 0;
    const auto content = "FBCh" + bigEndian (fileVersion) + "Tmwq" + bigEndian (pluginVersion) + bigEndian (programs)
                         + bigEndian (currentProgram) + std::string (124, '\0')
                         + bigEndian (static_cast<std::uint32_t> (chunk.size())) + chunk;
    return "CcnK" + bigEndian (static_cast<std::uint32_t> (content.size())) + content;
}

/** Such a bank behind a header that says whether the host had bypassed the plug-in. */
inline std::string vstW (const std::string& chunk, bool isBypassed)
{
    constexpr std::uint32_t headerVersion = 1;
    const auto header = bigEndian (headerVersion) + bigEndian (isBypassed ? 1 : 0);
    return "VstW" + bigEndian (static_cast<std::uint32_t> (header.size())) + header + bank (chunk);
}

} // namespace wrapped

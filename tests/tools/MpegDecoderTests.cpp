// SPDX-License-Identifier: AGPL-3.0-only
#include "audio/AudioInput.h"

#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace
{
/** How many frames an MP3 file states, and how many come out of it. */
std::pair<std::int64_t, std::int64_t> lengthsOf (const std::string& bytes)
{
    const TemporaryFolder folder;
    writeBytes (folder / "voice.mp3", bytes);
    larkspire::AudioInput input (folder / "voice.mp3");
    std::vector<float> block (1000);
    std::int64_t read = 0;

    while (const auto count = input.read (block))
        read += static_cast<std::int64_t> (count);

    return { input.length().value_or (-1), read };
}

TEST (MpegDecoder, StatesTheLengthThatItGivesWhateverTheFileSaysOfIt)
{
    const TemporaryFolder folder;
    write (folder / "voice.mp3", mp3, makeNoise (1, 30001, 16));
    const auto bytes = bytesOf (folder / "voice.mp3");
    EXPECT_EQ (lengthsOf (bytes), (std::pair<std::int64_t, std::int64_t> { 30001, 30001 }));

    // Without the first frame, in which the encoder notes its length; and two files in one, of which the first note
    // speaks of the first alone.
    for (const auto& other : { bytes.substr (bytes.find ("\xff\xfb", 4)), bytes + bytes })
    {
        const auto [stated, read] = lengthsOf (other);
        EXPECT_EQ (stated, read);
        EXPECT_EQ (read % 1152, 0) << "frames of MPEG audio";
        EXPECT_GT (read, 30001);
    }
}
} // namespace

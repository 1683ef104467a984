// SPDX-License-Identifier: AGPL-3.0-only
// Inputs that cannot be rendered: exit status 1, one line that says why, and no file left. And names that only look
// bad.
#include "render/RendererTest.h"

#include <filesystem>
#include <sys/stat.h>
#include <utility>

namespace
{
using testing::HasSubstr;
using BadInput = RendererTest;
using StrangeNames = RendererTest;

TEST_F (BadInput, IsReportedWithItsReason)
{
    std::filesystem::create_directory (folder / "folder.wav");
    writeBytes (folder / "empty.wav", "");
    ASSERT_EQ (mkfifo ((folder / "pipe.wav").c_str(), 0600), 0);
    writeBytes (folder / "text.wav", "This is no sound.\n");
    writeBytes (folder / "short.flac", "fL");
    writeBytes (folder / "film.riff", "RIFFand then something else entirely, at some length");
    writeBytes (folder / "picture.iff", "FORMand then something else entirely, at some length");
    writeBytes (folder / "picture.png", "\x89PNG\r\n\x1a\n");

    // Two beginnings that a decoder of MPEG audio takes for its own.
    writeBytes (folder / "sixteen-bit-text.txt", "\xff\xfeh\1i\1");
    writeBytes (folder / "layer-3.mp3", "\xff\xfb\x90" + std::string (2000, 'x'));

    writeNoise ("three.wav", 3);
    writeNoise ("six.flac", 6);
    writeNoise ("overstated.flac", 1, 30000);
    stateLength (folder / "overstated.flac", 30001);

    // The first page of an Ogg file with one packet, cut short.
    const auto oggOf = [] (const std::string& packet)
    {
        const auto header = std::string ("OggS\0\2", 6) + std::string (20, '\0') + "\1";
        return header + static_cast<char> (packet.size()) + packet;
    };

    writeBytes (folder / "voice.m4a", std::string ("\0\0\0\x20", 4) + "ftypM4A isomiso2");
    writeBytes (folder / "film.mp4", std::string ("\0\0\0\x20", 4) + "ftypisomisomiso2");
    writeBytes (folder / "flac.ogg",
                oggOf (std::string ("\x7f"
                                    "FLAC\1\0\0\1fLaC",
                                    13)
                       + std::string (38, '\0')));
    writeBytes (folder / "speex.ogg", oggOf ("Speex   1.2" + std::string (69, '\0')));
    writeBytes (folder / "it's $HOME.m4a", std::string ("\0\0\0\x20", 4) + "ftypM4A isomiso2");
    writeBytes (folder / "new\nline.m4a", std::string ("\0\0\0\x20", 4) + "ftypM4A isomiso2");
    writeBytes (folder / "voice.wv", "wvpk and more");
    writeBytes (folder / "large.wav", "BW64....WAVE and more");
    const std::string convert = "; convert it first: ffmpeg -i ";
    const std::string noAudio = "is not a WAV, FLAC, AIFF, MP3, Ogg, AU, CAF or W64 file";

    for (const auto& [name, reason] :
         { std::pair<std::string, std::string> { "missing.wav", "cannot be read: No such file or directory" },
           { "empty.wav", "is empty" },
           { "pipe.wav", "is not a regular file" },
           { "text.wav", noAudio },
           { "short.flac", noAudio },
           { "film.riff", noAudio },
           { "picture.iff", noAudio },
           { "picture.png", noAudio },
           { "sixteen-bit-text.txt", noAudio },
           { "layer-3.mp3", "cannot be read as audio: no MPEG audio is found in it" },
           { "voice.m4a", "is MPEG-4 audio" + convert + "'voice.m4a' 'voice.wav'" },
           { "it's $HOME.m4a", "is MPEG-4 audio" + convert + R"('it'\''s $HOME.m4a' 'it'\''s $HOME.wav')" },
           { "voice.wv", "is WavPack audio" + convert + "'voice.wv' 'voice.wav'" },
           { "large.wav", "is BW64 audio" + convert + "'large.wav' 'large-converted.wav'" },
           { "film.mp4", "is a film; extract its sound first: ffmpeg -i 'film.mp4' 'film.wav'" },
           { "flac.ogg", "holds FLAC in an Ogg file, which cannot be read here" + convert + "'flac.ogg' 'flac.wav'" },
           { "speex.ogg",
             "holds Speex in an Ogg file, which cannot be read here" + convert + "'speex.ogg' 'speex.wav'" },
           { "three.wav", "has 3 channels; only mono and stereo are rendered" },
           { "six.flac", "has 6 channels; only mono and stereo are rendered" },
           { "overstated.flac", "is damaged: 30000 of 30001 samples can be read" } })
        for (const std::string result : { "result.wav", "result.flac" })
            EXPECT_EQ (expectFailure (1, { name, "-o", result }), name + ": " + reason + "\n");

    EXPECT_EQ (expectFailure (1, { "new\nline.m4a", "-o", "result.wav" }),
               R"(new\x0aline.m4a: is MPEG-4 audio)" + convert + R"($'new\x0aline.m4a' $'new\x0aline.wav')" + "\n");
    EXPECT_EQ (expectFailure (1, { "folder.wav", "-o", "results" }),
               "folder.wav: holds no WAV, FLAC, AIFF, MP3, Ogg, AU, CAF or W64 file\n");
    writeBytes (folder / "folder.wav/text.txt", "no sound");
    EXPECT_EQ (runHere ({ "folder.wav", "-o", "results" }).errors,
               "larkspire-render: folder.wav: holds no WAV, FLAC, AIFF, MP3, Ogg, AU, CAF or W64 file\n"
               "larkspire-render: 1 file without sound left out\n");
}

TEST_F (BadInput, ThatBeginsLikeAudioAndIsNoneIsReported)
{
    for (const auto& beginning : { std::string ("RIFF....WAVE"),
                                   std::string ("RIFX....WAVE"),
                                   std::string ("RF64....WAVE"),
                                   std::string ("FORM....AIFF"),
                                   std::string ("FORM....AIFC"),
                                   std::string ("fLaC"),
                                   std::string ("OggS"),
                                   std::string ("ID3\4\0\0\0\0\0\1", 10),
                                   std::string ("\xff\xfb\x90"),
                                   std::string (".snd"),
                                   std::string ("caff\0\1", 6),
                                   std::string ("riff\x2e\x91\xcf\x11") })
    {
        writeBytes (folder / "strange.wav", beginning + "and then something else entirely, at some length");
        EXPECT_THAT (expectFailure (1, { "strange.wav", "-o", "result.wav" }),
                     HasSubstr ("strange.wav: cannot be read as audio: "))
            << beginning;
    }
}

TEST_F (BadInput, ThatIsCutOffIsReported)
{
    for (const auto& [name, format] : { std::pair { "voice.flac", flac16 },
                                        std::pair { "voice.ogg", oggVorbis },
                                        std::pair { "voice.opus", opus },
                                        std::pair { "voice.caf", caf16 } })
    {
        write (folder / name, format, makeNoise (1, 30000, 16));
        const auto bytes = bytesOf (folder / name);
        writeBytes (folder / name, bytes.substr (0, bytes.size() / 2));
        expectFailure (1, { name, "-o", "result.wav" });
    }
}

TEST_F (BadInput, ThatIsDamagedInTheMiddleIsReportedAlsoIfItStatesNoLength)
{
    writeNoise ("voice.flac", 1, 30000);
    stateLength (folder / "voice.flac", 0);
    auto bytes = bytesOf (folder / "voice.flac");
    bytes.replace (bytes.size() / 2, 5, 5, '\x55');
    writeBytes (folder / "voice.flac", bytes);
    EXPECT_THAT (expectFailure (1, { "voice.flac", "-o", "result.wav" }),
                 HasSubstr ("voice.flac: cannot be read to its end: "));
}

TEST_F (BadInput, OfMpegAudioIsReportedInOneLineAndWithoutAWordOfTheDecoder)
{
    write (folder / "voice.mp3", mp3, makeNoise (1, 48000, 16));
    const auto whole = bytesOf (folder / "voice.mp3");

    // Whatever is inside a frame is sound to the decoder; the gap is what shows. With and without the first frame, in
    // which the encoder notes the length.
    const auto withoutNote = whole.substr (whole.find ("\xff\xfb", 4));

    for (const auto& bytes : { whole, withoutNote })
        for (const auto& damage : { std::string (2000, '\x55'), std::string (2000, '\xff'), std::string (2000, '\0') })
        {
            auto damaged = bytes;
            damaged.replace (bytes.size() / 2, damage.size(), damage);
            writeBytes (folder / "voice.mp3", damaged);
            EXPECT_THAT (expectFailure (1, { "voice.mp3", "-o", "result.wav" }),
                         testing::StartsWith ("voice.mp3: is damaged: "));
        }
}

TEST_F (BadInput, WithALineEndInItsNameIsReportedInOneLine)
{
    EXPECT_THAT (expectFailure (1, { "two\nlines.wav", "-o", "result.wav" }), HasSubstr ("two\\x0alines.wav: "));
}

TEST_F (StrangeNames, AreRenderedLikeAnyOther)
{
    // A path is bytes: no UTF-8, spaces, what the argument parser takes for a list, what a terminal obeys.
    for (const std::string name : { "\xff\xfe\x80 voice.wav", " voice.wav", "[a,b]", "new\nline.wav", "\xc3\xa4.wav" })
    {
        SCOPED_TRACE (name);
        const auto recording = writeNoise (name);
        expectSuccess ({ "--mode", "bypass", name, "-o", "results/" });
        const auto stem = std::filesystem::path (name).stem().string();
        EXPECT_EQ (read (folder / ("results/" + stem + ".wav")), recording);
    }
}

TEST_F (StrangeNames, MayBeAsLongAsTheSystemAllowsAndBeginWithADashBehindADoubleDash)
{
    const auto recording = writeNoise ("-mode.wav");
    const auto name = std::string (251, 'x') + ".wav";
    expectSuccess ({ "--mode", "bypass", "-o", name, "--", "-mode.wav" });
    EXPECT_EQ (read (folder / name), recording);
}
} // namespace

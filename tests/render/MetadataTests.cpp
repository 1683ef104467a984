// SPDX-License-Identifier: AGPL-3.0-only
// What a file says of its recording beside the sound: tags, pictures, cue points, time codes.
#include "audio/FileBytes.h"
#include "render/RendererTest.h"

#include <nlohmann/json.hpp>

#include <map>

namespace
{
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

std::string number (std::uint64_t value, int bytes)
{
    std::string text;

    for (int i = 0; i < bytes; ++i)
        text += static_cast<char> (value >> (8 * i));

    return text;
}

std::string chunk (const std::string& name, const std::string& bytes)
{
    return name + number (bytes.size(), 4) + bytes + std::string (bytes.size() % 2, '\0');
}

/** A broadcast extension of an hour after midnight, with loudness, and history that ends with zeros. */
std::string broadcastExtension()
{
    std::string bytes (602, '\0');
    bytes.replace (0, 9, "Interview");
    bytes.replace (338, 8, number (172800000, 8));
    bytes.replace (346, 2, number (2, 2));
    bytes.replace (412, 10, std::string (10, '\x11'));
    return bytes + "A=PCM,F=48000,W=16,M=mono,T=recorder\r\n" + std::string (3, '\0');
}

/** The same as a result has it. */
std::string broadcastExtensionOfResult()
{
    auto bytes = broadcastExtension();
    bytes.replace (412, 10, "\xff\x7f\xff\x7f\xff\x7f\xff\x7f\xff\x7f");
    bytes.resize (bytes.size() - 3);
    return bytes + "A=PCM,F=48000,W=16,M=mono,T=larkspire-render\r\n";
}

const std::string cuePoints =
    number (1, 4) + number (1, 4) + number (100, 4) + "data" + number (0, 8) + number (100, 4);
const std::string labels = "adtl" + chunk ("labl", number (1, 4) + std::string ("Intro\0", 6));

// A title in UTF-8, an artist in Latin 1, and a name that WAV alone has.
const std::string info = "INFO"
                         + chunk ("INAM",
                                  std::string ("Gr\xc3\xbc\xc3\x9f"
                                               "e\0",
                                               8))
                         + chunk ("IART", std::string ("J\xfcrgen\0", 7))
                         + chunk ("ITCH", std::string ("Technik\0", 8));

/** The chunks of a WAV file with a size in its header that is right, by name; of those with one name the last. */
std::map<std::string, std::string> chunksIn (const std::string& wav)
{
    const auto bytes = bytesOf (wav);
    EXPECT_EQ (larkspire::numberIn (bytes, 4, 4, false) + 8, bytes.size());
    std::map<std::string, std::string> chunks;

    for (std::size_t place = 12; place < bytes.size();)
    {
        const auto size = larkspire::numberIn (bytes, place + 4, 4, false);
        const auto content = bytes.substr (place + 8, size);
        const auto isList = bytes.substr (place, 4) == "LIST";
        chunks[isList ? content.substr (0, 4) : bytes.substr (place, 4)] = content;
        place += 8 + size + size % 2;
    }

    return chunks;
}

class Metadata : public RendererTest
{
protected:
    /** Writes a WAV file of 16 bits with chunks in front of its sound and behind it. */
    Recording writeWav (const std::string& name, const std::string& before, const std::string& behind) const
    {
        auto recording = writeNoise (name, 1, 1001);
        auto bytes = bytesOf (folder / name);
        bytes.insert (36, before);
        bytes += behind;
        bytes.replace (4, 4, number (bytes.size() - 8, 4));
        writeBytes (folder / name, bytes);
        return recording;
    }

    Recording writeWavWithAll (const std::string& name) const
    {
        return writeWav (name,
                         chunk ("bext", broadcastExtension()) + chunk ("JUNK", "nothing"),
                         chunk ("cue ", cuePoints) + chunk ("LIST", labels) + chunk ("LIST", info)
                             + chunk ("iXML", "<BWFXML/>") + chunk ("levl", "peaks of the sound as it was"));
    }

    /** Writes FLAC with comments and blocks that libsndfile does not write. */
    Recording
    writeFlac (const std::string& name, const std::vector<std::string>& comments, const std::string& blocks) const
    {
        auto recording = writeNoise (name, 1, 1001);
        auto bytes = bytesOf (folder / name);
        std::string body = number (4, 4) + "test" + number (comments.size(), 4);

        for (const auto& comment : comments)
            body += number (comment.size(), 4) + comment;

        const auto oldSize = 4 + larkspire::numberIn (bytes, 43, 3, true);
        bytes.replace (42, oldSize, blocks + flacBlock (0x84, body));
        writeBytes (folder / name, bytes);
        return recording;
    }

    static std::string bigEndian (std::uint64_t value, int bytes)
    {
        const auto text = number (value, bytes);
        return { text.rbegin(), text.rend() };
    }

    static std::string flacBlock (int type, const std::string& bytes)
    {
        return static_cast<char> (type) + bigEndian (bytes.size(), 3) + bytes;
    }

    static std::string pictureBlock()
    {
        return flacBlock (6,
                          bigEndian (3, 4) + bigEndian (9, 4) + "image/png" + bigEndian (5, 4) + "Cover"
                              + std::string (16, '\0') + bigEndian (12, 4) + "\x89PNG picture");
    }

    void bypass (const std::string& input, const std::string& output) const
    {
        expectSuccess ({ "--mode", "bypass", "--bits", "16", input, "-o", output });
    }

    /** The comments of a FLAC file, and its blocks by their types and first bytes. */
    std::string describeBlocks (const std::string& name) const
    {
        const auto bytes = bytesOf (folder / name);
        std::string text;

        for (std::size_t place = 4;;)
        {
            const auto flags = static_cast<unsigned char> (bytes[place]);
            const auto size = larkspire::numberIn (bytes, place + 1, 3, true);
            text += "[" + std::to_string (flags & 0x7f) + "]" + bytes.substr (place + 4, size);
            place += 4 + size;

            if ((flags & 0x80) != 0)
                return text;
        }
    }
};

TEST_F (Metadata, OfWavSurvivesInWavToTheByte)
{
    const auto recording = writeWavWithAll ("voice.wav");
    bypass ("voice.wav", "result.wav");
    EXPECT_EQ (read (folder / "result.wav"), recording);
    const auto chunks = chunksIn (folder / "result.wav");
    EXPECT_EQ (chunks.at ("bext"), broadcastExtensionOfResult());
    EXPECT_EQ (chunks.at ("cue "), cuePoints);
    EXPECT_EQ (chunks.at ("adtl"), labels);
    EXPECT_EQ (chunks.at ("INFO"), info);
    EXPECT_EQ (chunks.at ("iXML"), "<BWFXML/>");
    EXPECT_EQ (chunks.size(), 7U) << "and the format, and the sound";
}

TEST_F (Metadata, StandsAheadOfTheSoundWhereProgramsThatReadAPipeFindIt)
{
    writeWavWithAll ("voice.wav");
    bypass ("voice.wav", "result.wav");
    const auto bytes = bytesOf (folder / "result.wav");
    EXPECT_LT (bytes.find ("bext"), bytes.find ("data" + number (2002, 4)));
    EXPECT_LT (bytes.find ("iXML"), bytes.find ("data" + number (2002, 4)));
}

TEST_F (Metadata, OfWavSurvivesInFlacAndComesBack)
{
    const auto recording = writeWavWithAll ("voice.wav");
    bypass ("voice.wav", "voice.flac");
    EXPECT_EQ (read (folder / "voice.flac"), recording);
    EXPECT_THAT (describeBlocks ("voice.flac"),
                 AllOf (HasSubstr ("TITLE=Gr\xc3\xbc\xc3\x9f"
                                   "e"),
                        HasSubstr ("ARTIST=J\xc3\xbcrgen"),
                        HasSubstr ("ITCH=Technik")));

    // As the program flac keeps what is in a WAV file.
    EXPECT_THAT (describeBlocks ("voice.flac"),
                 AllOf (HasSubstr ("riffRIFF"), HasSubstr ("riffbext"), HasSubstr ("riffdata" + number (2002, 4))));

    bypass ("voice.flac", "again.flac");
    bypass ("again.flac", "result.wav");
    EXPECT_EQ (read (folder / "result.wav"), recording);
    const auto chunks = chunksIn (folder / "result.wav");
    const auto line = std::string ("A=PCM,F=48000,W=16,M=mono,T=larkspire-render\r\n");
    EXPECT_EQ (chunks.at ("bext"), broadcastExtensionOfResult() + line + line);
    EXPECT_EQ (chunks.at ("cue "), cuePoints);
    EXPECT_EQ (chunks.at ("adtl"), labels);
    EXPECT_EQ (chunks.at ("iXML"), "<BWFXML/>");
    EXPECT_THAT (chunks.at ("INFO"),
                 AllOf (HasSubstr ("J\xc3\xbcrgen"), HasSubstr (chunk ("ITCH", std::string ("Technik\0", 8)))));
}

TEST_F (Metadata, OfFlacSurvivesInFlac)
{
    const auto foreign =
        flacBlock (2, "aiffFORM and what followed") + flacBlock (2, "testown data") + flacBlock (1, "padding");
    const auto recording = writeFlac ("voice.flac",
                                      { "title=One",
                                        "ARTIST=Two",
                                        "ARTIST=Three",
                                        "MOOD=calm",
                                        "REPLAYGAIN_TRACK_GAIN=-3 dB",
                                        "replaygain_track_peak=0.5",
                                        "R128_TRACK_GAIN=12" },
                                      foreign + pictureBlock());
    bypass ("voice.flac", "result.flac");
    EXPECT_EQ (read (folder / "result.flac"), recording);
    const auto blocks = describeBlocks ("result.flac");
    EXPECT_THAT (
        blocks,
        AllOf (HasSubstr ("TITLE=One"), HasSubstr ("ARTIST=Two"), HasSubstr ("ARTIST=Three"), HasSubstr ("MOOD=calm")));
    EXPECT_THAT (blocks, AllOf (HasSubstr ("[2]testown data"), HasSubstr ("[6]" + pictureBlock().substr (4))));

    // False of another sound, and of another kind of file.
    EXPECT_THAT (blocks, AllOf (Not (HasSubstr ("gain")), Not (HasSubstr ("GAIN")), Not (HasSubstr ("aiff"))));
}

TEST_F (Metadata, ThatHasNoPlaceInAResultIsSaidOnce)
{
    writeWavWithAll ("voice.wav");
    const std::string of = "larkspire-render: voice.wav: left behind, as ";
    const std::string what = "the broadcast extension with its time code, cue points, labels, iXML\n";
    EXPECT_EQ (runHere ({ "--compare", "voice.wav", "-o", "result.mp3" }).errors,
               of + "MP3 files have no place for it: " + what);
    const auto outcome = runHere ({ "--json", "voice.wav", "-o", "result.opus" });
    EXPECT_EQ (outcome.errors, of + "Opus files have no place for it: the tag ITCH, " + what);
    EXPECT_EQ (outcome.exitStatus, 0);
    EXPECT_EQ (nlohmann::json::parse (outcome.output).at ("results").at (0).at ("warnings").size(), 1U);

    writeFlac ("voice.flac", { "TITLE=One", "MOOD=calm" }, pictureBlock());
    EXPECT_EQ (
        runHere ({ "voice.flac", "-o", "result.wav" }).errors,
        "larkspire-render: voice.flac: left behind, as WAV files have no place for it: a picture, the tag MOOD\n");
    EXPECT_THAT (chunksIn (folder / "result.wav").at ("INFO"), HasSubstr ("One"));
}

TEST_F (Metadata, ComesIntoMp3AndOpusAndOutOfThem)
{
    const std::string title = "A title of more than thirty letters, with Gr\xc3\xbc\xc3\x9f"
                              "en and \xe6\x97\xa5\xe6\x9c\xac";
    writeFlac (
        "voice.flac", { "TITLE=" + title, "ARTIST=One", "ARTIST=Two", "COMMENT=said", "MOOD=calm" }, pictureBlock());
    expectSuccess ({ "voice.flac", "-o", "voice.mp3" });
    const auto tag = bytesOf (folder / "voice.mp3").substr (0, 400);
    EXPECT_THAT (tag,
                 AllOf (testing::StartsWith ("ID3\4"),
                        HasSubstr (std::string ("One\0Two", 7)),
                        HasSubstr ("APIC"),
                        HasSubstr ("\x89PNG picture"),
                        HasSubstr (std::string ("MOOD\0calm", 9))));
    EXPECT_EQ (describe (folder / "voice.mp3").frames, 1001);

    // Whole into the next, and in the ways of others into those.
    expectSuccess ({ "voice.mp3", "-o", "again.mp3" });
    EXPECT_THAT (bytesOf (folder / "again.mp3"), testing::StartsWith (tag.substr (0, 350)));
    expectSuccess ({ "voice.mp3", "-o", "result.flac" });
    EXPECT_THAT (describeBlocks ("result.flac"),
                 AllOf (HasSubstr ("TITLE=" + title),
                        HasSubstr ("COMMENT=said"),
                        HasSubstr ("MOOD=calm"),
                        HasSubstr ("\x89PNG picture")));
    expectSuccess ({ "voice.mp3", "-o", "result.wav" });
    const auto chunks = chunksIn (folder / "result.wav");
    EXPECT_THAT (chunks.at ("INFO"), HasSubstr (title));
    EXPECT_THAT (chunks.at ("id3 "), HasSubstr ("\x89PNG picture"));
    expectSuccess ({ "result.wav", "-o", "back.mp3" });
    EXPECT_THAT (bytesOf (folder / "back.mp3"), testing::StartsWith (tag.substr (0, 350)));

    runHere ({ "voice.flac", "-o", "voice.opus" });
    expectSuccess ({ "voice.opus", "-o", "result.flac" });
    EXPECT_THAT (describeBlocks ("result.flac"), AllOf (HasSubstr ("TITLE=" + title), HasSubstr ("COMMENT=said")));
}

TEST_F (Metadata, AboutTheLoudnessIsTakenOutOfTheTagsOfMp3)
{
    const auto frame = [] (const std::string& name, const std::string& bytes)
    { return name + bigEndian (bytes.size(), 4) + std::string (2, '\0') + bytes; };
    const auto frames = frame ("TIT2", std::string ("\0Title", 6))
                        + frame ("TXXX", std::string ("\0replaygain_track_gain\0-3 dB", 28))
                        + frame ("TXXX", std::string ("\1\xff\xfeR\0E\0P\0L\0A\0Y\0G\0A\0I\0N\0_\0", 25))
                        + frame ("RVA2", std::string ("track\0\1", 7))
                        + frame ("TXXX", std::string ("\0mood\0calm", 10)) + std::string (50, '\0');
    const auto tag = std::string ("ID3\3\0\0\0\0", 8)
                     + bigEndian (((frames.size() & 0x80) << 1) | (frames.size() & 0x7f), 2) + frames;
    write (folder / "voice.mp3", mp3, makeNoise (1, 3000, 16));
    writeBytes (folder / "voice.mp3", tag + bytesOf (folder / "voice.mp3"));
    expectSuccess ({ "voice.mp3", "-o", "result.mp3" });
    const auto left = frame ("TIT2", std::string ("\0Title", 6)) + frame ("TXXX", std::string ("\0mood\0calm", 10));
    EXPECT_THAT (
        bytesOf (folder / "result.mp3"),
        testing::StartsWith (std::string ("ID3\3\0\0\0\0\0", 9) + static_cast<char> (left.size()) + left + "\xff\xfb"));
}

std::string hugeText()
{
    std::string text;
    text.resize (17000000, 'x');
    return text;
}

TEST_F (Metadata, ThatIsDamagedOrTooLargeIsSaidAndTakesNoMemory)
{
    // A chunk of four gigabytes in a small file, one of 17 MB that is there, and one behind it that is whole.
    const auto recording = writeWav (
        "large.wav", chunk ("iXML", hugeText()), chunk ("cue ", cuePoints) + "LIST" + number (0xfffffff0, 4) + labels);
    const auto outcome =
        run (Call { .arguments = { "--mode", "bypass", "--bits", "16", "large.wav", "-o", "result.wav" },
                    .folder = folder.path() });
    EXPECT_EQ (outcome.exitStatus, 0);
    EXPECT_EQ (outcome.errors,
               "larkspire-render: large.wav: left behind, as it is damaged or larger than 16 MB: iXML, labels\n");
    EXPECT_EQ (read (folder / "result.wav"), recording);
    const auto chunks = chunksIn (folder / "result.wav");
    EXPECT_EQ (chunks.at ("cue "), cuePoints);
    EXPECT_EQ (chunks.size(), 3U);
}

TEST_F (Metadata, ThatIsDamagedInAnyByteHarmsNothing)
{
    writeWavWithAll ("voice.wav");
    writeFlac ("voice.flac", { "TITLE=One" }, pictureBlock() + flacBlock (2, "riffbext" + number (602, 4) + "short"));
    write (folder / "voice.mp3", mp3, makeNoise (1, 1000, 16));

    for (const std::string name : { "voice.wav", "voice.flac" })
    {
        const auto whole = bytesOf (folder / name);

        // Sizes above all, in steps that meet each kind of field.
        for (std::size_t place = 12; place < std::min<std::size_t> (whole.size(), 900); place += 37)
        {
            auto damaged = whole;
            damaged[place] = static_cast<char> (damaged[place] ^ 0xff);
            writeBytes (folder / ("damaged" + name), damaged);
            const auto outcome = runHere ({ "damaged" + name, "-o", "result.flac" });
            EXPECT_EQ (outcome.signal, 0) << place;
            EXPECT_LE (outcome.exitStatus, 1) << place;
            EXPECT_LE (linesOf (outcome.errors).size(), 3U) << outcome.errors;
        }
    }
}

TEST_F (Metadata, StandsInAFileOfALengthThatWasNotKnown)
{
    // The header is made for any size then and becomes an ordinary one at the end.
    const auto recording = writeFlac ("voice.flac", { "TITLE=One" }, flacBlock (2, "riff" + chunk ("cue ", cuePoints)));
    stateLength (folder / "voice.flac", 0);
    bypass ("voice.flac", "result.wav");
    EXPECT_EQ (read (folder / "result.wav"), recording);
    EXPECT_EQ (chunksIn (folder / "result.wav").at ("cue "), cuePoints);
    EXPECT_THAT (bytesOf (folder / "result.wav"), testing::StartsWith ("RIFF"));
}

TEST_F (Metadata, LeavesFilesWithoutAnyAsTheyAre)
{
    const auto recording = writeNoise ("voice.wav", 2, 1000);
    bypass ("voice.wav", "result.wav");
    EXPECT_EQ (bytesOf (folder / "result.wav"), bytesOf (folder / "voice.wav"));
    bypass ("voice.wav", "result.flac");
    write (folder / "voice.flac", flac16, recording);
    EXPECT_EQ (bytesOf (folder / "result.flac"), bytesOf (folder / "voice.flac"));
}
} // namespace

// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

namespace larkspire::render
{

// What --help says around the list of options. The manual page is made of it by help2man, so the usage line, the
// headings with a colon and the two columns are in the shape that help2man looks for.

inline constexpr const char* usage = "larkspire-render [OPTION]... IN... -o OUT";

inline constexpr const char* helpHead =
    R"(Usage: larkspire-render [OPTION]... IN... -o OUT
Take recordings of a voice through the plug-in Quendal Larkspire, as a host would.

IN is WAV, FLAC, AIFF, MP3, Ogg Vorbis, Opus, AU, CAF or W64, mono or stereo, or a folder of such files. A result has
its input's length, sample rate and channels, sample for sample; in mode bypass nothing changes, down to the last bit,
unless a level, a loudness or another rate is asked for.
)";

inline constexpr const char* helpFoot =
    R"(Results:
  With one recording OUT is the result. With several, with a folder, or where OUT is a folder or ends with a slash, the
  results are <name of IN>.wav (or .flac, .mp3, .opus) in the folder OUT, which is made if it is missing. A folder as IN
  is taken with all below it, and its tree is kept in OUT. Files that are sound by name or content but cannot be
  rendered are reported, films and links to folders are named, other files are counted, all on standard error; hidden
  files and the folder of the results are passed over.

  As IN, - is standard input, and as OUT standard output, a WAV file unless --format says otherwise. A result is written
  to it when it is complete. Both are kept in the folder TMPDIR or in /var/tmp meanwhile.

  A result appears when it is complete; a file that has its name is replaced in one step. Results and inputs must all
  be different files; of recordings that would have one result none is rendered. Whole numbers are limited to full scale
  and rounded to the nearest, at 16 bits behind noise of the same kind each time (TPDF dither; in bypass there is none).
  How many samples were clipped is said, and in bypass how many were rounded. WAV files that would be larger than 4 GB
  are written as RF64. MP3 has a variable bit rate of high quality, Opus 64 kbit/s a channel; each has a few sample
  rates only. Reports are of the sound as it goes into them.

  Tags, cue points, labels, broadcast extension (its time code kept, its history longer by a line), iXML and all other
  chunks go from WAV to WAV and, as the program flac keeps them, to FLAC and back; comments and pictures from FLAC to
  FLAC and MP3; what is left behind is said. Measurements such as ReplayGain are dropped, as they would be false.

  A recording that was cut off, as all kinds but FLAC tell, is rendered as far as it goes; that is said, and the exit
  status is 1 unless --allow-truncated is given. MP3 files tell it where their encoder noted the length, or where they
  end inside a frame. What cannot be read is named with the command that converts it.

  With --skip-existing recordings are left out whose results, and pictures, are there and newer. With which options
  they were made is not known. Of several recordings a line at the end counts what has become of them.

  Every file gets a plug-in of its own. Without --plugin, "Quendal Larkspire.so" is looked for beside this program, in
  ~/.vst, in the folders of VST_PATH, where it was installed with this program, and in /usr/lib/vst. The results and
  what is printed do not depend on --jobs, but for the speeds. One file at a time is the default, since somebody may be
  at work on the machine with sound running.

Level and loudness:
  A sound goes through --gain or --input-peak, --process-rate, the plug-in, back to the file's own rate, and --loudness.

  With --loudness a gain and a limiter stand behind the plug-in. The limiter looks ahead and sees the peaks between
  the samples. Loudness is within 0.2 LU and true peak within 0.1 dB of what is asked for, as EBU R 128 and ffmpeg's
  ebur128 have them. A mono file counts as one channel: what plays on two loudspeakers is 3 LU louder, so many ask for
  -16 in stereo and for -19 in mono. A lossy copy may peak higher; --true-peak -2 leaves it room. What gets no louder
  below the ceiling is brought as far as it goes, and what has no loudness, silence or less than 0.4 s, is left as it
  is; both are said, and so is any other loudness than the wanted one. Until it is finished the sound takes 4 bytes a
  sample on the disk of the result, or 0.7 GB an hour of mono at 48 kHz.

  --input-peak best tries peaks of -36 to -6 dBFS in steps of 3 dB and takes the one at which the mode keeps voice and
  room furthest apart: of the levels, RMS, of all 50 ms windows behind it the one that 95 of 100 do not exceed, and the
  one that 10 of 100 do not exceed. In bypass it takes the recording as it is.

  --settle keeps the first word from being loud while the leveller comes down. --split is for a host on the left and a
  guest on the right; a mono file is rendered as it is. The gains count samples, so that every mode is slower at 8 kHz
  and faster at 96 kHz than at 48 kHz, unless --process-rate 48000 is given.

Report:
  Integrated loudness, loudness range and true peak are those of EBU R 128; a mono file counts as one channel. The
  quietest tenth is the level, RMS, that a tenth of all 50 ms windows do not exceed. Of speech in a room that is the
  noise between words; without noise it is the tails of the words. Windows in which the recording is digital silence
  do not count. Levels are in dBFS: 0 dBFS is a sine of full scale (AES17), and as a peak full scale itself.

  The gains of expander and leveller are means over time, the leveller's without its make-up; what the other stages did
  is the RMS behind the stage to the RMS in front of it. They are read in the chain that this program has inside, which
  runs beside the library, and are left out where the two do not agree to the bit.

  Without -o nothing is written; the report then says how far apart voice and room lie, as above, whether the expander
  closes where only the room is heard, and which level would keep them further apart.

  A dash, or null in JSON, is a figure that there is not: of silence, or of less than 0.4 s (loudness) or 4 s (range).

  The JSON document is an object with version, 2; results, an object for each in the order of the inputs; left_out,
  what the folders hold and is not rendered and what was done before, each with path, reason and is_error; and
  files_without_sound, a count. A result has input, output, mode, picture (if there is one), sample_rate_hz, channels,
  length_s, truncated, stated_length_s (if the recording was cut off and says so), clipped_samples and warnings, as on
  standard error; input_gain_db, if a level was asked for; before and after, each with integrated_lufs,
  loudness_range_lu, true_peak_dbtp and quietest_tenth_dbfs; gains, with high_pass_db, expander_mean_db,
  stereo_fold_db, air_and_body_db, leveller_mean_db, make_up_db and soft_clip_db, or null with the reason in
  gains_missing; with --loudness finish, with target_lufs, ceiling_dbtp, reached_lufs, gain_db, limiter_share_of_time
  (with more than 0.1 dB off), limiter_times and limiter_deepest_db; and with --stats stats, with peak_dbfs, rms_dbfs
  and times_real_time. Where a file failed, error follows mode and is the last. Without -o, advice, a list of
  sentences, and trials, what they rest on, follow before: a list of objects with mode, gain_db, voice_before_dbfs,
  room_before_dbfs, voice_after_dbfs, room_after_dbfs and expander_closes. A path that is no UTF-8 is there a second
  time, as input_bytes and the like, with \xNN for all but printable ASCII and for the backslash.

Pictures:
  A picture shows waveforms and loudness before and after, and the gains of expander and leveller. Of more than two
  minutes it shows envelopes: the RMS within the peaks, and of loudness and gains the median, over a window that the
  legend names, on the range that all but the lowest and the highest tenth lie in. Characters of a file's name that no
  installed font has are shown as question marks.

  With one recording PNG is the picture; with several, with a folder, or where PNG is a folder or ends with a slash,
  the pictures are in the folder PNG and have the names of the results. The name of one picture for several recordings
  is refused. A picture that cannot be drawn or written leaves the result alone.

Exit status:
  0      done
  1      at least one file could not be rendered, was cut off (but for --allow-truncated) or lacks its picture, or a
         folder could not be read or holds sound that cannot be rendered
  2      the call makes no sense and nothing was done
  128+n  ended by signal n, as by Ctrl-C; nothing half-written stays

Examples:
  larkspire-render voice.wav -o clear.wav
         one recording in mode Medium, the result a 24-bit WAV file
  larkspire-render --input-peak best --loudness -16 --settle 10 interview.wav -o episode.wav
         a file that can be published: at -16 LUFS with no true peak above -1 dBTP
  larkspire-render --report interview.wav
         advice on the recording's level, and no result
  larkspire-render --mode Gentle --format flac takes -o finished
         a folder of recordings with all below it, every result a FLAC file in another folder
  larkspire-render --compare --report --plot voice.png voice.wav -o clear.wav
         clear-bypass.wav to clear-Powerful.wav, a table of their figures and a picture of each
  ffmpeg -i film.mkv -f wav - | larkspire-render - -o - | ffmpeg -i - voice.m4a
         between other programs
  larkspire-render --json --jobs 0 takes -o finished
         on all cores, with the figures for another program
)";

} // namespace larkspire::render

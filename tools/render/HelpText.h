// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

namespace larkspire::render
{

// What --help says around the list of options: examples come first, since most people look no further.

inline constexpr const char* helpExamples = R"(Examples:
  larkspire-render voice.wav -o clear.wav
      one recording in mode Medium, the result a 24-bit WAV file
  larkspire-render --mode Gentle --format flac takes/*.wav -o finished/
      a folder of recordings, every result a FLAC file in another folder
  larkspire-render --mode Powerful --bits 32f --stats shout.flac -o shout.wav
      floats as the plug-in gives them, and a line with levels, length and speed
)";

inline constexpr const char* helpUsage = R"(Usage:
  larkspire-render [--mode bypass|Gentle|Medium|Powerful] [--block N] [--plugin PATH]
                   [--format wav|flac] [--bits 16|24|32f] [--stats] IN... -o OUT
)";

inline constexpr const char* helpNotes =
    R"(IN is WAV, FLAC, AIFF or Ogg Vorbis, mono or stereo. A result has its input's length, sample rate and channels,
sample for sample; in mode bypass nothing changes, down to the last bit. With several INs, or an OUT that is a folder
or ends with a slash, the results are <name of IN>.wav or .flac in the folder OUT, which is made if it is missing; every
file gets a plug-in of its own.

Whole numbers are rounded to the nearest and limited to full scale, also at 16 bits: there is no dither. WAV files that
would be larger than 4 GB are written as RF64.

A result appears when it is complete; a file that has its name is replaced in one step. Input and output must not be the
same file.

Without --plugin, "Quendal Larkspire.so" is looked for beside this program, in ~/.vst, in the folders of VST_PATH and in
/usr/lib/vst.

Exit status: 0 done, 1 at least one file could not be rendered, 2 the call makes no sense and nothing was done.
)";

} // namespace larkspire::render

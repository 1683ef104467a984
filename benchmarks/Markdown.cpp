// SPDX-License-Identifier: AGPL-3.0-only
#include "benchmarks/Markdown.h"

#include "benchmarks/Bounds.h"
#include "benchmarks/DocumentShapes.h"

#include <algorithm>
#include <ctime>
#include <fstream>
#include <iomanip>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

namespace
{
/** The processor, as the system names it. */
std::string processorName()
{
    std::ifstream file ("/proc/cpuinfo");
    std::string line;

    while (std::getline (file, line))
        if (line.starts_with ("model name"))
            return line.substr (line.find (':') + 2);

    return "unknown processor";
}

std::string today()
{
    const auto now = std::time (nullptr);
    std::tm parts {};
    gmtime_r (&now, &parts);
    char text[16] = {};
    std::strftime (text, sizeof (text), "%Y-%m-%d", &parts);
    return text;
}

// Clang's version text begins with its name.
#if defined(__clang__)
constexpr auto compilerName = "compiled by";
#else
constexpr auto compilerName = "compiled by GCC";
#endif

/** A row of costs, each of them or a dash. */
void writeRow (std::ostream& out,
               const Costs& costs,
               const std::string& title,
               const std::vector<std::string>& names,
               double unit = 1.0)
{
    out << "| " << title << " |";

    for (const auto& name : names)
    {
        const auto found = costs.find (name);

        if (found == costs.end())
            out << " - |";
        else
            out << " " << found->second.least / unit << " |";
    }

    out << "\n";
}

void writeBounds (std::ostream& out, const Costs& costs)
{
    out << "## What is promised\n\nRatios of costs of one run; `make bench` fails when one is broken.\n\n"
           "| Ratio | Measured | At most |\n|---|---|---|\n";

    for (const auto& bound : promisedBounds())
        out << "| " << bound.what << " | " << ratioOf (costs, bound) << " | " << bound.bound << " |\n";

    out << "\n| Time | Measured | At most |\n|---|---|---|\n";

    for (const auto& bound : promisedTimes())
        out << "| " << bound.what << " | " << millisecondsOf (costs, bound.name) << " ms | " << bound.milliseconds
            << " ms |\n";

    out << "\n| Memory | Measured | At most |\n|---|---|---|\n";

    for (const auto& bound : promisedMemory())
        out << "| " << bound.what << " | " << megabytesOf (costs, bound.name) << " MB | " << bound.megabytes
            << " MB |\n";
}

void writeFrames (std::ostream& out, const Costs& costs)
{
    out << R"(
## A frame

Nanoseconds a frame, through the library's own entry, by block size, on speech at 48 kHz; the oracle is the plain
scalar transcription that the tests compare the sound with.

| Mode | 16 | 64 | 256 | 512 | 1024 | 4096 | oracle |
|---|---|---|---|---|---|---|---|
)";

    for (const std::string layout : { "stereo", "mono" })
        for (const std::string mode : { "bypass", "Gentle", "Medium", "Powerful", "no name" })
        {
            std::vector<std::string> names;

            for (const std::string size : { "16", "64", "256", "512", "1024", "4096" })
                names.push_back ("frame/" + mode + "/" + layout + "/" + size);

            names.push_back ("oracle/" + mode + "/" + layout);
            writeRow (out, costs, mode + ", " + layout, names);
        }

    out << R"(
The same through the LV2 library's entry:

| Mode | 64 | 512 |
|---|---|---|
)";

    for (const std::string layout : { "stereo", "mono" })
        writeRow (out, costs, "Medium, " + layout, { "lv2/Medium/" + layout + "/64", "lv2/Medium/" + layout + "/512" });

    out << R"(
White noise in Medium, stereo, blocks of 512, by its peak level; the gains branch, so what comes in counts:

| Level | ns a frame |
|---|---|
)";

    for (const std::string level : { "0 dB", "-20 dB", "-40 dB", "-60 dB", "-74 dB", "-90 dB" })
        writeRow (out, costs, level, { "noise/" + level });
}

void writeRecursions (std::ostream& out, const Costs& costs)
{
    out << R"(
## The stages that remember

What a frame has to wait for of the frame before: each stage with a memory, alone. On its record it reads and
writes that at every frame, as a walk sample by sample has to; in a run it does so once in 64 frames, as the block
loop does.

| Stage | on its record | in a run |
|---|---|---|
)";

    for (const std::string stage : { "high-pass", "expander", "filters", "leveller" })
        writeRow (out, costs, stage, { "recursion/" + stage, "run/" + stage });
}

void writeRestores (std::ostream& out, const Costs& costs)
{
    out << R"(
## A large state

Milliseconds for a state of a megabyte, taken in or refused, and for the save that follows. A state of the plug-in's own
has some 300 bytes.

| What is in it | restored | saved |
|---|---|---|
)";

    for (const auto& shape : documentShapes())
        writeRow (
            out, costs, shape.name, { std::string ("restore/") + shape.name, std::string ("save/") + shape.name }, 1e6);
}

/** A table of one benchmark a row. */
struct List
{
    const char* title;
    const char* text;
    const char* prefix;
    std::vector<std::string> names;
    const char* unitName;
    double unit;
};

const List lists[] = {
    { "Settings",
      "One `updateSettings`: every 65536 samples and at a change of mode.",
      "settings/",
      { "bypass", "Gentle", "Medium", "Powerful" },
      "ns",
      1.0 },
    { "Instances",
      "Making and closing one, with another one there.",
      "instance/",
      { "construction", "destruction" },
      "µs",
      1000.0 },
    { "Many instances",
      "A frame's cost in Medium, stereo, as instances take turns at blocks of 256.",
      "instances/",
      { "1", "8", "64", "256", "512" },
      "ns a frame",
      1.0 },
    { "The window",
      "Opening and closing it on an X server without a screen, and drawing all of it, three times a second.",
      "editor/",
      { "open and close", "repaint" },
      "µs",
      1000.0 },
    { "Silence",
      "Medium, stereo, blocks of 512: a voice, and a second of silence from the middle of a word on.",
      "silence/",
      { "sound", "after sound" },
      "ns a frame",
      1.0 },
};
} // namespace

void writeMarkdown (std::ostream& out, const Costs& costs)
{
    out << std::fixed << std::setprecision (2);
    out << "# What it costs\n\nMeasured by `make performance` on " << today() << " on one core of " << processorName()
        << " (" << std::thread::hardware_concurrency() << " cores, x86-64 baseline code,\n"
        << compilerName << " " << __VERSION__
        << "). Processor time: the least of nine repetitions that take turns, for what\ndisturbs a machine only "
           "adds.\n\n";
    writeBounds (out, costs);
    writeFrames (out, costs);
    writeRecursions (out, costs);
    writeRestores (out, costs);

    for (const auto& list : lists)
    {
        out << "\n## " << list.title << "\n\n" << list.text << "\n\n| | " << list.unitName << " |\n|---|---|\n";

        for (const auto& name : list.names)
            writeRow (out, costs, name, { list.prefix + name }, list.unit);
    }
}

// SPDX-License-Identifier: AGPL-3.0-only
// The renderer on an hour of voice: as it is, and with a loudness and a report. What counts is the processor's time and
// the most memory that the process had at once.
#include "benchmarks/Cost.h"
#include "support/Paths.h"
#include "support/Signals.h"
#include "support/TemporaryFolder.h"

#include <fcntl.h>
#include <sndfile.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{
/** An hour of mono at 48 kHz, made for the first of those who need it. */
class Hour
{
public:
    Hour()
    {
        constexpr std::size_t minute = 2880000;
        const auto spoken = voice (minute).left;
        SF_INFO info {};
        info.samplerate = 48000;
        info.channels = 1;
        info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_24;
        auto* const file = sf_open (path().c_str(), SFM_WRITE, &info);
        sf_count_t written = 0;

        for (int i = 0; i < 60 && file != nullptr; ++i)
            written += sf_write_float (file, spoken.data(), minute);

        if (file == nullptr || sf_close (file) != 0 || written != sf_count_t { 60 } * minute)
            throw std::runtime_error ("cannot write an hour of voice");
    }

    std::string path() const { return folder / "hour.wav"; }
    std::string result() const { return folder / "result.wav"; }

private:
    TemporaryFolder folder;
};

/** What a program took: its own time of the processor in seconds, and its memory in bytes. */
struct Usage
{
    double seconds;
    double bytes;
};

/** The most memory that a running process has had, in bytes; 0 if it has ended. What the system says of it afterwards
    is no less than what the process had that started it. */
double mostMemoryOf (pid_t process)
{
    std::ifstream status ("/proc/" + std::to_string (process) + "/status");

    for (std::string word; status >> word;)
        if (double kilobytes = 0.0; word == "VmHWM:" && status >> kilobytes)
            return 1024.0 * kilobytes;

    return 0.0;
}

Usage usageOf (std::vector<std::string> words)
{
    std::vector<char*> arguments;
    arguments.reserve (words.size() + 1);

    for (auto& word : words)
        arguments.push_back (word.data());

    arguments.push_back (nullptr);
    posix_spawn_file_actions_t silently;
    posix_spawn_file_actions_init (&silently);
    posix_spawn_file_actions_addopen (&silently, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    int status = 0;
    rusage usage {};
    const auto spawned = posix_spawn (&process, arguments[0], &silently, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy (&silently);

    pid_t ended = 0;
    double bytes = 0.0;

    while (spawned == 0 && ended == 0)
    {
        usleep (10000);
        bytes = std::max (bytes, mostMemoryOf (process));
        ended = wait4 (process, &status, WNOHANG, &usage);
    }

    if (spawned != 0 || ended != process || status != 0)
        throw std::runtime_error ("the renderer failed");

    const auto seconds = [] (const timeval& time) { return double (time.tv_sec) + double (time.tv_usec) * 1e-6; };
    return { .seconds = seconds (usage.ru_utime) + seconds (usage.ru_stime), .bytes = bytes };
}

void renderAnHour (benchmark::State& state, const std::vector<std::string>& options)
{
    static const Hour hour;
    Usage usage {};

    for (auto _ : state)
    {
        std::vector<std::string> words { paths::renderer() };
        words.insert (words.end(), options.begin(), options.end());
        words.insert (words.end(), { hour.path(), "-o", hour.result() });
        usage = usageOf (words);
        state.SetIterationTime (usage.seconds);
    }

    state.counters[costCounter] = usage.seconds;
    state.counters[memoryCounter] = usage.bytes;
}

BENCHMARK_CAPTURE (renderAnHour, plain, {})->Name ("renderer/plain")->UseManualTime()->Iterations (1)->Repetitions (2);
BENCHMARK_CAPTURE (renderAnHour, finished, { "--loudness", "-16", "--report" })
    ->Name ("renderer/finished")
    ->UseManualTime()
    ->Iterations (1)
    ->Repetitions (2);
} // namespace

// SPDX-License-Identifier: AGPL-3.0-only
#include "support/Child.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <pty.h>
#include <sstream>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ; // NOLINT(readability-redundant-declaration)

namespace
{
std::vector<std::string> environmentFor (const Call& call)
{
    std::vector<std::string> variables;

    for (char** variable = environ; call.inheritsEnvironment && *variable != nullptr; ++variable)
    {
        const std::string text (*variable);

        if (! call.environment.contains (text.substr (0, text.find ('='))))
            variables.push_back (text);
    }

    for (const auto& [name, value] : call.environment)
        variables.push_back (std::string (name).append ("=").append (value));

    return variables;
}

std::vector<char*> pointersTo (std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    pointers.reserve (texts.size() + 1);

    for (auto& text : texts)
        pointers.push_back (text.data());

    pointers.push_back (nullptr);
    return pointers;
}

int newMemoryFile (const char* name)
{
    const int file = memfd_create (name, MFD_CLOEXEC);

    if (file < 0)
        throw std::runtime_error ("no memory file");

    return file;
}

/** Everything in a memory file, or from a terminal until its other side is closed, which it reports as an error. */
std::string contentOf (int file)
{
    std::string content;
    std::array<char, 4096> part {};
    lseek (file, 0, SEEK_SET); // which a terminal ignores

    while (true)
    {
        const auto count = read (file, part.data(), part.size());

        if (count <= 0)
            return content;

        content.append (part.data(), static_cast<std::size_t> (count));
    }
}
} // namespace

Child::Child (const Call& call) : outputFile (newMemoryFile ("stdout")), onTerminal (call.onTerminal)
{
    std::vector<std::string> arguments { call.program.string() };
    arguments.insert (arguments.end(), call.arguments.begin(), call.arguments.end());
    auto environment = environmentFor (call);
    const auto argumentPointers = pointersTo (arguments);
    const auto environmentPointers = pointersTo (environment);
    int errorsOfChild = -1;

    if (onTerminal && openpty (&errorsFile, &errorsOfChild, nullptr, nullptr, nullptr) != 0)
        throw std::runtime_error ("no terminal");

    if (! onTerminal)
    {
        errorsFile = newMemoryFile ("stderr");
        errorsOfChild = errorsFile;
    }

    process = fork();

    if (process == 0)
    {
        dup2 (open ("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
        dup2 (outputFile, STDOUT_FILENO);
        dup2 (errorsOfChild, STDERR_FILENO);

        if (onTerminal)
        {
            close (errorsFile);
            close (errorsOfChild);
        }

        if (! call.folder.empty() && chdir (call.folder.c_str()) != 0)
            _exit (126);

        if (call.largestFile.has_value())
        {
            const rlimit limit { *call.largestFile, *call.largestFile };
            setrlimit (RLIMIT_FSIZE, &limit);
        }

        // However the test itself was started, the program finds the signals as they usually are.
        for (const int signal : { SIGINT, SIGTERM, SIGHUP, SIGXFSZ })
            ::signal (signal, SIG_DFL);

        alarm (call.longestRun);
        execvpe (arguments[0].c_str(), argumentPointers.data(), environmentPointers.data());
        _exit (127);
    }

    if (onTerminal)
        close (errorsOfChild);

    if (process < 0)
        throw std::runtime_error ("no process");
}

Child::~Child()
{
    if (process > 0)
    {
        kill (process, SIGKILL);
        waitpid (process, nullptr, 0);
    }

    close (outputFile);
    close (errorsFile);
}

void Child::sendSignal (int signal) const
{
    kill (process, signal);
}

Outcome Child::wait()
{
    Outcome outcome;

    // Ahead of the wait: a terminal that nobody reads holds its writer up.
    if (onTerminal)
        outcome.errors = contentOf (errorsFile);

    int status = 0;
    waitpid (process, &status, 0);
    process = -1;

    if (WIFEXITED (status))
        outcome.exitStatus = WEXITSTATUS (status);

    if (WIFSIGNALED (status))
        outcome.signal = WTERMSIG (status);

    outcome.output = contentOf (outputFile);

    if (! onTerminal)
        outcome.errors = contentOf (errorsFile);

    return outcome;
}

Outcome run (const Call& call)
{
    return Child (call).wait();
}

Outcome run (const std::vector<std::string>& arguments)
{
    return run (Call { .arguments = arguments });
}

std::string outputOf (const Call& call)
{
    const auto outcome = run (call);

    if (outcome.exitStatus != 0)
        throw std::runtime_error (call.program.string() + " failed: " + outcome.output + outcome.errors);

    return outcome.output;
}

std::vector<std::string> linesOf (const std::string& text)
{
    std::istringstream stream (text);
    std::vector<std::string> lines;

    for (std::string line; std::getline (stream, line);)
        lines.push_back (line);

    return lines;
}

// SPDX-License-Identifier: AGPL-3.0-only
// larkspire-render: takes recordings through the plug-in, as any host would, without one.
#include "base/Failure.h"
#include "base/StopSignal.h"
#include "host/NoDisplay.h"
#include "host/PluginSearch.h"
#include "render/Batch.h"
#include "render/CommandLine.h"

#include <cstdio>
#include <cstdlib>

namespace
{
using namespace larkspire;
using namespace larkspire::render;

enum ExitStatus
{
    done = 0,
    workFailed = 1,
    wrongCall = 2
};

/** Whether all that was printed has left the program. */
bool standardOutputIsFine()
{
    return std::fflush (stdout) == 0 && std::ferror (stdout) == 0;
}

ExitStatus run (const CommandLine& call)
{
    const auto plan = planBatch (call);
    endBySignal(); // a large folder is a long look
    const PluginLibrary library (call.plugin ? std::filesystem::path (*call.plugin) : findPlugin());
    library.check(); // ahead of the batch, so that nothing is written

    switch (runBatch (library, plan))
    {
    case BatchEnd::allDone:
        return done;
    case BatchEnd::someFailed:
        return workFailed;
    case BatchEnd::interrupted:
        break;
    }

    std::fflush (stdout);
    endBySignal();
    return workFailed;
}

ExitStatus runOrExplain (int argumentCount, const char* const* arguments)
{
    const auto call = parseCommandLine (argumentCount, arguments);

    if (const auto* text = std::get_if<std::string> (&call))
    {
        std::fputs (text->c_str(), stdout);
        return done;
    }

    return run (std::get<CommandLine> (call));
}
} // namespace

int main (int argumentCount, char** arguments)
{
    try
    {
        useNoDisplay();
        installSignalHandlers();
        const auto status = runOrExplain (argumentCount, arguments);

        if (standardOutputIsFine())
            return status;

        throw Failure ("standard output", "cannot be written");
    }
    catch (const WrongCall& fault)
    {
        printError (fault);
        return wrongCall;
    }
    catch (const std::exception& fault)
    {
        printError (fault);
        return workFailed;
    }
}

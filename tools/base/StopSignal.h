// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

namespace larkspire
{

/** From here on SIGINT, SIGTERM and SIGHUP only set a flag, so that the program can tidy up before it ends (SIGHUP
    stays ignored where nohup had it ignored), and writing past a limit of the file size is an error and no signal. */
void installSignalHandlers();

/** Whether one of those signals has come. */
bool stopRequested() noexcept;

/** Ends the program by the signal that has come, as it would have ended without the handlers: so a shell sees the
   status 128 + signal, and a loop in a script ends with Ctrl-C too. Does nothing where none has come. */
void endBySignal();

} // namespace larkspire

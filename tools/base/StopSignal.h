// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

namespace larkspire
{

/** From here on SIGINT, SIGTERM and SIGHUP only set a flag, so that the program can tidy up before it ends (SIGHUP
    stays ignored where nohup had it ignored), and writing past a file size limit is an error instead of a signal. */
void installSignalHandlers();

/** Whether one of those signals has come. */
bool stopRequested() noexcept;

/** Ends the program by the signal that has come, as it would have ended without the handlers: a shell sees the
    status 128 + signal, and Ctrl-C ends a loop in a script too. Does nothing if no signal has come. */
void endBySignal();

} // namespace larkspire

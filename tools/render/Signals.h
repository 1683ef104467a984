// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

namespace larkspire::render
{

/** From here on SIGINT, SIGTERM and SIGHUP only set a flag, so that the program can tidy up before it ends (SIGHUP
   stays ignored where nohup had it ignored), and writing past a limit of the file size is an error and no signal. */
void installSignalHandlers();

/** Whether one of those signals has come. */
bool stopRequested() noexcept;

} // namespace larkspire::render

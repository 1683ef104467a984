// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

namespace larkspire
{

/** Names "Microsoft Sans Serif" as the process's default sans-serif typeface where the machine has it.

    Where it has not, naming it would leave JUCE without a typeface and the window without a word; there
    JUCE's own default stays. The name goes to JUCE's global look and feel, because fonts are resolved
    through that one.
*/
void nameDefaultSansSerif();

} // namespace larkspire

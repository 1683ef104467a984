// SPDX-License-Identifier: AGPL-3.0-only
// A library that loads and is no plug-in.

extern "C" __attribute__ ((visibility ("default"))) int answerOfAnotherLibrary();

int answerOfAnotherLibrary()
{
    return 1;
}

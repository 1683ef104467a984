// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <sstream>
#include <stdexcept>

/** What the plug-in did and what it should have done. */
class Mismatch : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/** Throws a Mismatch unless both are equal. */
template <typename Actual, typename Expected>
void require (const char* what, const Actual& actual, const Expected& expected)
{
    if (actual == expected)
        return;

    std::ostringstream text;
    text.precision (9);
    text << what << " is " << actual << ", expected " << expected;
    throw Mismatch (text.str());
}

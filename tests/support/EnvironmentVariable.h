// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

/** Sets a variable of the environment for a scope. */
class EnvironmentVariable
{
public:
    EnvironmentVariable (const char* variable, const std::string& value) : name (variable)
    {
        if (const char* present = std::getenv (name))
            former = present;

        setenv (name, value.c_str(), 1);
    }

    ~EnvironmentVariable()
    {
        if (former)
            setenv (name, former->c_str(), 1);
        else
            unsetenv (name);
    }

    EnvironmentVariable (const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator= (const EnvironmentVariable&) = delete;

private:
    const char* name;
    std::optional<std::string> former;
};

// SPDX-License-Identifier: AGPL-3.0-only
#include "windows/WineHost.h"

#include <array>
#include <cstdio>
#include <memory>
#include <stdexcept>

std::string WineHost::libraryPath()
{
    return LARKSPIRE_WINDOWS_LIBRARY;
}

std::string WineHost::programPath()
{
    return LARKSPIRE_WINDOWS_HOST;
}

std::string WineHost::Report::operator[] (const std::string& name) const
{
    const auto values = all (name);
    return values.empty() ? std::string() : values.front();
}

std::vector<std::string> WineHost::Report::all (const std::string& name) const
{
    std::vector<std::string> values;

    for (const auto& [key, value] : lines)
        if (key == name)
            values.push_back (value);

    return values;
}

WineHost::Report WineHost::run (const std::string& command, const std::vector<std::string>& arguments)
{
    std::string line = "WINEPREFIX='" LARKSPIRE_WINE_PREFIX
                       "' WINEARCH=win64 WINEDLLOVERRIDES=mscoree,mshtml= WINEDEBUG=-all timeout 120 wine '"
                       + programPath() + "' " + command + " '" + libraryPath() + "'";

    for (const auto& argument : arguments)
        line += " '" + argument + "'";

    const auto close = [] (FILE* pipe) { pclose (pipe); };
    std::unique_ptr<FILE, decltype (close)> pipe (popen ((line + " 2>&1").c_str(), "r"));
    std::string output;

    for (std::array<char, 512> part {};
         std::fgets (part.data(), static_cast<int> (part.size()), pipe.get()) != nullptr;)
        output += part.data();

    if (pclose (pipe.release()) != 0)
        throw std::runtime_error (command + " failed: " + output);

    Report report;

    for (std::size_t start = 0; start < output.size();)
    {
        const auto end = std::min (output.find_first_of ("\r\n", start), output.size());
        const auto text = output.substr (start, end - start);

        if (const auto colon = text.find (": "); colon != std::string::npos)
            report.lines.emplace_back (text.substr (0, colon), text.substr (colon + 2));
        else if (text.ends_with (':'))
            report.lines.emplace_back (text.substr (0, text.size() - 1), "");

        start = end + 1;
    }

    return report;
}

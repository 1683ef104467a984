// SPDX-License-Identifier: AGPL-3.0-only
// The one place of the settings that knows the platform.
#include "settings/HostIdentity.h"

#if JUCE_WINDOWS
    #include <windows.h>
#else
    #include <pwd.h>
    #include <unistd.h>

    #include <cerrno>
    #include <vector>
#endif

namespace larkspire
{

#if JUCE_WINDOWS

juce::String loginName()
{
    wchar_t buffer[256] = {};
    DWORD count = 255;
    GetUserNameW (buffer, &count);
    return juce::String (buffer, static_cast<std::size_t> (count));
}

#else

juce::String loginName()
{
    std::vector<char> buffer (1024);
    passwd record {};
    passwd* found = nullptr;

    while (getpwuid_r (geteuid(), &record, buffer.data(), buffer.size(), &found) == ERANGE)
        buffer.resize (buffer.size() * 2);

    return found != nullptr ? juce::String::fromUTF8 (found->pw_name) : juce::String();
}

#endif

juce::String hostExecutablePath()
{
    return juce::File::getSpecialLocation (juce::File::hostApplicationPath).getFullPathName();
}

} // namespace larkspire

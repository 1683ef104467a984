// SPDX-License-Identifier: AGPL-3.0-only
// Who runs what, as the document has it: the user's login name and the tail of the host's path. This program's own
// getpwuid_r stands before the system's and can answer in its place.
#include "settings/HostIdentity.h"

#include "settings/ProcessorState.h"
#include "support/EnvironmentVariable.h"
#include "support/OpenProcessor.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <functional>
#include <pwd.h>
#include <unistd.h>

namespace
{
using UserLookup = std::function<int (uid_t, passwd*, char*, std::size_t, passwd**)>;

UserLookup standIn;
} // namespace

extern "C" int getpwuid_r (uid_t user, passwd* record, char* buffer, std::size_t size, passwd** result)
{
    if (standIn)
        return standIn (user, record, buffer, size, result);

    using Function = int (*) (uid_t, passwd*, char*, std::size_t, passwd**);
    static const auto systems = reinterpret_cast<Function> (dlsym (RTLD_NEXT, "getpwuid_r"));
    return systems (user, record, buffer, size, result);
}

namespace
{
using namespace state_block;
using juce::AudioProcessorQuendal;

/** A processor whose saves name whoever the system's answer says. */
class LoginName : public testing::Test
{
protected:
    void TearDown() override { standIn = nullptr; }

    std::string saved() { return valueOf (save (processor), "username"); }

    /** Puts a name in the place of the system's answer. */
    static void call (const std::string& name)
    {
        standIn = [name] (uid_t, passwd* record, char* buffer, std::size_t size, passwd** result)
        {
            *result = nullptr;

            if (size < name.size() + 1)
                return ERANGE;

            std::memcpy (buffer, name.c_str(), name.size() + 1);
            record->pw_name = buffer;
            *result = record;
            return 0;
        };
    }

    OpenProcessor processor;
};

TEST_F (LoginName, IsTheSystemsAndNotTheEnvironments)
{
    const EnvironmentVariable user ("USER", "somebody-else");
    const EnvironmentVariable login ("LOGNAME", "somebody-else");
    const EnvironmentVariable other ("USERNAME", "somebody-else");

    const passwd* entry = getpwuid (geteuid());
    ASSERT_NE (entry, nullptr) << "the tests need a user that the system knows";
    const std::string name = entry->pw_name;
    EXPECT_NE (name, "somebody-else");
    EXPECT_EQ (saved(), name);
}

TEST_F (LoginName, IsThatOfTheEffectiveUserAndEmptyIfTheSystemKnowsNone)
{
    for (const int error : { 0, ENOENT, EIO, EMFILE })
    {
        std::vector<uid_t> asked;
        standIn = [&asked, error] (uid_t user, passwd*, char*, std::size_t, passwd** result)
        {
            asked.push_back (user);
            *result = nullptr;
            return error;
        };
        EXPECT_EQ (saved(), "") << error;
        EXPECT_EQ (asked, (std::vector { geteuid() }));
    }
}

TEST_F (LoginName, IsAskedForAtEverySaveAndMayBeOfAnyLength)
{
    for (const std::size_t length : { 1u, 255u, 1023u, 1024u, 100000u })
    {
        const std::string name (length, 'n');
        call (name);
        EXPECT_EQ (saved(), name) << length;
    }
}

TEST_F (LoginName, IsReadAsUtf8)
{
    call ("J\u00f6rg <&> \"\u58f0\"");
    EXPECT_EQ (saved(), "J\u00f6rg <&> \"\u58f0\"");
}

TEST (HostTail, IsTheSecondHalfWithoutTheFirstElement)
{
    const std::vector<std::pair<const char*, const char*>> rows {
        // by the count of elements
        { "", "" },
        { "host.exe", "" },
        { "C:/host.exe", "host.exe" },
        { "C:/b/host.exe", "b/host.exe" },
        { "C:/a/b/host.exe", "b/host.exe" },
        { "C:/a/b/c/host.exe", "b/c/host.exe" },
        { "C:/a/b/c/d/host.exe", "c/d/host.exe" },
        { "C:/a/b/c/d/e/host.exe", "c/d/e/host.exe" },
        { "C:/a/b/c/d/e/f/host.exe", "d/e/f/host.exe" },

        // with backslashes
        { "C:\\b\\host.exe", "b/host.exe" },
        { "C:\\a/b\\c/host.exe", "b/c/host.exe" },
        { "\\\\server\\share\\host.exe", "server/share/host.exe" },

        // from the root
        { "/", "" },
        { "/host", "host" },
        { "/bin/host", "bin/host" },
        { "/usr/bin/host", "bin/host" },
        { "/usr/local/bin/host", "local/bin/host" },

        // with empty elements
        { "//", "" },
        { "//host", "/host" },
        { "a/b//c", "/c" },
        { "a/b/c/", "b/c" },
        { "C:/host.exe/", "host.exe" },

        // with unusual characters
        { "C:\\Program Files\\Voice Studio 7\\bin\\ host .exe ", "Voice Studio 7/bin/ host .exe " },
        { "C:\\a\\R&D <\"beta\">\\host.exe", "R&D <\"beta\">/host.exe" },
        { "/opt/B\u00fccher/\u97f3\u58f0/\U0001F399 h\u00f6st", "B\u00fccher/\u97f3\u58f0/\U0001F399 h\u00f6st" },
    };

    for (const auto& [path, tail] : rows)
        EXPECT_EQ (AudioProcessorQuendal::hostTail (juce::String::fromUTF8 (path)).toStdString(), tail) << path;
}

TEST (SplitPath, CutsAtEverySlash)
{
    const std::vector<std::pair<const char*, std::vector<std::string>>> rows {
        { "", {} },
        { "a", { "a" } },
        { "/", { "" } },
        { "//", { "", "" } },
        { "/a", { "", "a" } },
        { "a/", { "a" } },
        { "a//", { "a", "" } },
        { "a//b", { "a", "", "b" } },
        { "a b/ c", { "a b", " c" } },
        { "a\\b/c", { "a\\b", "c" } },
        { "a\nb/\u00e4", { "a\nb", "\u00e4" } },
    };

    for (const auto& [text, elements] : rows)
        EXPECT_EQ (AudioProcessorQuendal::splitPath (text), elements) << text;
}
} // namespace

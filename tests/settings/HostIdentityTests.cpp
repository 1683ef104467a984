// SPDX-License-Identifier: AGPL-3.0-only
// The login name in the document. This program's own getpwuid_r stands before the system's and can answer in its place.
#include "settings/HostIdentity.h"
#include "settings/StateBlock.h"
#include "support/OpenProcessor.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <functional>
#include <optional>
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

/** Puts an answer in the place of the system's for a test. */
class LoginName : public testing::Test
{
protected:
    void TearDown() override { standIn = nullptr; }

    static void answer (UserLookup lookup) { standIn = std::move (lookup); }

    /** Answers every question with a name. */
    static void call (const std::string& name)
    {
        answer (
            [name] (uid_t, passwd* record, char* buffer, std::size_t size, passwd** result)
            {
                *result = nullptr;

                if (size < name.size() + 1)
                    return ERANGE;

                std::memcpy (buffer, name.c_str(), name.size() + 1);
                record->pw_name = buffer;
                *result = record;
                return 0;
            });
    }

    static std::string saved()
    {
        OpenProcessor processor;
        return valueOf (save (processor), "username");
    }
};

/** Sets a variable of the environment for a scope. */
class EnvironmentVariable
{
public:
    EnvironmentVariable (const char* variable, const char* value) : name (variable)
    {
        if (const char* present = std::getenv (name))
            former = present;

        setenv (name, value, 1);
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

TEST_F (LoginName, IsThatOfTheEffectiveUser)
{
    std::vector<uid_t> asked;
    answer (
        [&asked] (uid_t user, passwd*, char*, std::size_t, passwd** result)
        {
            asked.push_back (user);
            *result = nullptr;
            return 0;
        });
    saved();
    EXPECT_EQ (asked, (std::vector { geteuid() }));
}

TEST_F (LoginName, IsEmptyForAUserThatTheSystemDoesNotKnow)
{
    for (const int error : { 0, ENOENT, EIO, EMFILE })
    {
        answer (
            [error] (uid_t, passwd*, char*, std::size_t, passwd** result)
            {
                *result = nullptr;
                return error;
            });
        EXPECT_EQ (saved(), "") << error;

        OpenProcessor processor;
        EXPECT_NE (textOf (save (processor)).find (" username=\"\"/>"), std::string::npos);
    }
}

TEST_F (LoginName, MayBeOfAnyLength)
{
    for (const std::size_t length : { 1u, 255u, 1023u, 1024u, 100000u })
    {
        const std::string name (length, 'n');
        call (name);
        EXPECT_EQ (saved(), name) << length;
    }
}

TEST_F (LoginName, IsReadAsUtf8AndEscaped)
{
    call ("J\u00f6rg <&> \"\u58f0\"");
    EXPECT_EQ (saved(), "J\u00f6rg <&> \"\u58f0\"");

    OpenProcessor processor;
    EXPECT_NE (textOf (save (processor)).find (" username=\"J&#246;rg &lt;&amp;&gt; &quot;&#22768;&quot;\"/>"),
               std::string::npos);
}

TEST_F (LoginName, IsAskedForAtEverySave)
{
    OpenProcessor processor;
    call ("first");
    EXPECT_EQ (valueOf (save (processor), "username"), "first");
    call ("second");
    EXPECT_EQ (valueOf (save (processor), "username"), "second");
}
} // namespace

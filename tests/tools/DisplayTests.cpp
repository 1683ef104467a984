// SPDX-License-Identifier: AGPL-3.0-only
// The programs that need no window keep off X servers: one that ends takes all its clients with it.
#include "render/RendererTest.h"
#include "support/Paths.h"
#include "window/VirtualDisplay.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <optional>
#include <poll.h>

namespace
{
/** Where an X server of some number would listen: notices who connects, and says nothing. */
class Doorbell
{
public:
    explicit Doorbell (int number) : listener (socket (AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        // The abstract address, which clients try first.
        sockaddr_un address {};
        address.sun_family = AF_UNIX;
        const auto path = "/tmp/.X11-unix/X" + std::to_string (number);
        path.copy (address.sun_path + 1, sizeof (address.sun_path) - 1);
        const auto length = static_cast<socklen_t> (offsetof (sockaddr_un, sun_path) + 1 + path.size());
        isThere =
            bind (listener, reinterpret_cast<const sockaddr*> (&address), length) == 0 && listen (listener, 8) == 0;
    }

    ~Doorbell() { close (listener); }

    Doorbell (const Doorbell&) = delete;
    Doorbell& operator= (const Doorbell&) = delete;

    bool isListening() const { return isThere; }

    bool hasRung() const
    {
        pollfd waiting { .fd = listener, .events = POLLIN, .revents = 0 };
        return poll (&waiting, 1, 0) > 0;
    }

private:
    int listener;
    bool isThere = false;
};

class Display : public RendererTest
{
protected:
    /** Calls of every program that loads the library and opens no window. */
    std::vector<Call> calls() const
    {
        return { { .arguments = { "voice.wav", "-o", "result.wav", "--plot", "look.png" }, .folder = folder.path() },
                 { .arguments = { paths::plugin(), "missing.wav", "data", "document.md" },
                   .program = paths::measure(),
                   .folder = folder.path() },
                 { .arguments = { "--without-windows", "--operations", "20", "--seed", "1" },
                   .program = paths::torture(),
                   .folder = folder.path() } };
    }

    Recording voice = writeNoise ("voice.wav");
};

TEST_F (Display, OfTheEnvironmentIsLeftAlone)
{
    int number = 5000;
    std::optional<Doorbell> doorbell (std::in_place, number);

    while (! doorbell->isListening() && number < 5100) // where other servers are
        doorbell.emplace (++number);

    ASSERT_TRUE (doorbell->isListening());

    for (auto call : calls())
    {
        call.environment["DISPLAY"] = ":" + std::to_string (number);
        call.longestRun = 20;
        run (call);
        EXPECT_FALSE (doorbell->hasRung()) << call.program;
    }
}

TEST_F (Display, OfTheMachineIsLeftAloneIfTheEnvironmentNamesNone)
{
    const Doorbell doorbell (0);

    if (! doorbell.isListening())
        GTEST_SKIP() << "an X server runs here";

    for (auto call : calls())
    {
        call.inheritsEnvironment = false;
        call.environment["PATH"] = "/usr/bin:/bin";
        call.longestRun = 20;
        run (call);
        EXPECT_FALSE (doorbell.hasRung()) << call.program;
    }
}

TEST_F (Display, MayEndInTheMiddleOfARendering)
{
    // Twenty seconds of stereo in small blocks take longer than the server's end.
    write (folder / "long.wav", wav16, makeNoise (2, 960000, 16));
    expectSuccess ({ "long.wav", "-o", "expected.wav" });
    std::optional<larkspire::window::VirtualDisplay> server (std::in_place);
    Child child (Call { .arguments = { "--quiet", "--block", "1", "long.wav", "voice.wav", "-o", "results" },
                        .environment = { { "DISPLAY", std::getenv ("DISPLAY") } },
                        .folder = folder.path() });
    ASSERT_TRUE (folder.showsSoon (".long.wav.partial-"));
    child.sendSignal (SIGSTOP);
    server.reset();
    EXPECT_FALSE (std::filesystem::exists (folder / "results/long.wav")) << "rendered before the server had ended";
    child.sendSignal (SIGCONT);
    const auto outcome = child.wait();
    EXPECT_EQ (outcome.exitStatus, 0);
    EXPECT_EQ (outcome.errors, "");
    EXPECT_EQ (bytesOf (folder / "results/long.wav"), bytesOf (folder / "expected.wav"));
}
} // namespace

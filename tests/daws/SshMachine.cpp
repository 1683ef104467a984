// SPDX-License-Identifier: AGPL-3.0-only
#include "daws/SshMachine.h"

#include "support/Paths.h"
#include "support/Recording.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <thread>
#include <vector>

namespace
{
namespace fs = std::filesystem;
using namespace std::chrono_literals;

/** A port of the loopback that is free now. */
int freePort()
{
    const int probe = socket (AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl (INADDR_LOOPBACK);
    socklen_t length = sizeof (address);
    const auto isFound = bind (probe, reinterpret_cast<const sockaddr*> (&address), length) == 0
                         && getsockname (probe, reinterpret_cast<sockaddr*> (&address), &length) == 0;
    close (probe);

    if (! isFound)
        throw std::runtime_error ("no free port");

    return ntohs (address.sin_port);
}

/** The processes that a process has started, and all that those have. */
std::vector<pid_t> processesBelow (pid_t process)
{
    const auto number = std::to_string (process);
    std::ifstream list ("/proc/" + number + "/task/" + number + "/children");
    std::vector<pid_t> all;

    for (pid_t child = 0; list >> child;)
    {
        all.push_back (child);
        const auto further = processesBelow (child);
        all.insert (all.end(), further.begin(), further.end());
    }

    return all;
}

/** The number that a server has written down; 0 while it has not. */
pid_t processIn (const std::string& file)
{
    pid_t process = 0;
    std::ifstream (file) >> process;
    return process;
}

void waitUntil (const std::string& what, const std::function<bool()>& isSo)
{
    for (const auto deadline = std::chrono::steady_clock::now() + 120s; ! isSo();)
    {
        if (std::chrono::steady_clock::now() > deadline)
            throw std::runtime_error (what + ": not within two minutes");

        std::this_thread::sleep_for (2ms);
    }
}
} // namespace

SshMachine::SshMachine (const std::string& machineName, const std::string& folderOfAll)
    : machine (machineName),
      folder (folderOfAll),
      homeFolder (folder + "/" + machine + "-home"),
      port (freePort())
{
    const auto key = folder + "/key";
    const auto hostKey = folder + "/" + machine + "-key";
    fs::create_directory (homeFolder);

    for (const auto& file : { key, hostKey })
        if (! fs::exists (file))
            outputOf ({ .arguments = { "-q", "-t", "ed25519", "-N", "", "-f", file }, .program = "ssh-keygen" });

    // The login has the home of whoever runs the test, with all that shells find there; each machine shall have
    // another.
    writeBytes (folder + "/" + machine + ".conf",
                "ListenAddress 127.0.0.1:" + std::to_string (port) + "\nHostKey " + hostKey + "\nPidFile " + folder
                    + "/" + machine + ".pid\nAuthorizedKeysFile " + key
                    + ".pub\nStrictModes no\nUsePAM no\nPasswordAuthentication no\nKbdInteractiveAuthentication no\n"
                      "PermitRootLogin prohibit-password\nSetEnv \"PATH="
                    + fs::path (paths::renderer()).parent_path().string() + ":/usr/bin:/bin\" \"HOME=" + homeFolder
                    + "\"\nForceCommand cd && eval \"$SSH_ORIGINAL_COMMAND\"\n");
}

SshMachine::~SshMachine()
{
    if (server != nullptr)
        end();
}

void SshMachine::start()
{
    // Its place for unprivileged processes, which the system's own sshd makes when it is started.
    if (geteuid() == 0)
        fs::create_directories ("/run/sshd");

    server = std::make_unique<Child> (Call { .arguments = { "-D", "-e", "-f", folder + "/" + machine + ".conf" },
                                             .program = "/usr/sbin/sshd",
                                             .longestRun = 600 });
    waitUntil (machine + " listens", [this] { return processIn (folder + "/" + machine + ".pid") != 0; });
}

void SshMachine::end()
{
    const auto pidFile = folder + "/" + machine + ".pid";
    const auto listener = processIn (pidFile);

    // Held first, so that nothing new begins meanwhile.
    server->sendSignal (SIGSTOP);

    for (const auto process : processesBelow (listener))
        kill (process, SIGKILL);

    server->sendSignal (SIGKILL);
    server->wait();
    server.reset();
    fs::remove (pidFile);
}

void SshMachine::waitFor (const std::string& program) const
{
    const auto runsProgram = [&program] (pid_t process)
    {
        constexpr std::size_t longestName = 15; // of those that the kernel keeps
        std::string name;
        std::ifstream ("/proc/" + std::to_string (process) + "/comm") >> name;
        return name == program.substr (0, longestName);
    };

    waitUntil (program + " runs on " + machine,
               [&]
               {
                   const auto processes = processesBelow (processIn (folder + "/" + machine + ".pid"));
                   return std::any_of (processes.begin(), processes.end(), runsProgram);
               });
}

std::string SshMachine::sshConfiguration() const
{
    return "Host " + machine + "\n  HostName 127.0.0.1\n  Port " + std::to_string (port) + "\n  IdentityFile " + folder
           + "/key\n  IdentitiesOnly yes\n  UserKnownHostsFile " + folder
           + "/known-hosts\n  StrictHostKeyChecking accept-new\n  LogLevel ERROR\n";
}

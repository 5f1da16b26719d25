// switchsim: the simulated switch as a process of its own.
#include "backend/device_files.h"
#include "switchsim/simulator.h"
#include "switchsim/socket_server.h"

#include <CLI/CLI.hpp>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <stdexcept>

#include <pthread.h>

namespace {

constexpr int kKilledByFault = 70;

// From now on these signals wait for sigwait(), in this thread and in those that it starts.
sigset_t blockEndSignals()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGTERM);
    sigaddset(&set, SIGINT);
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    return set;
}

void run(const std::string &socketPath, const std::string &stateDir, int platformType)
{
    const sigset_t endSignals = blockEndSignals();
    if (!stateDir.empty())
        backend_set_file_root((std::filesystem::absolute(stateDir) / "device").c_str());
    switchsim::Simulator simulator([] { std::_Exit(kKilledByFault); });
    simulator.setValue("platform-type", platformType);
    const switchsim::SocketServer server(simulator, socketPath, switchsim::Serves::controlAndMessages);
    std::optional<switchsim::SocketServer> control;
    const std::string controlPath = stateDir + "/switch.sock";
    if (!stateDir.empty() && controlPath != socketPath)
        control.emplace(simulator, controlPath, switchsim::Serves::controlOnly);
    std::printf("ready socket=%s\n", socketPath.c_str());
    std::fflush(stdout);
    int received = 0;
    sigwait(&endSignals, &received);
}

} // namespace

int main(int argc, char **argv)
try {
    std::string socketPath, stateDir;
    int platformType = 1;
    CLI::App app("The simulated switch. Serves agentd --device unix:PATH and switchctl --socket PATH.",
                 "switchsim");
    app.add_option("--socket", socketPath, "path of the Unix-domain socket")->required();
    app.add_option("--state", stateDir,
                   "existing folder: switchctl --state finds the switch there too, and the switch's "
                   "files are the ones of an agentd of the same folder; without it the switch has none");
    app.add_option("--platform", platformType, "hardware family, 4 and 5 have forwarding profiles")
        ->check(CLI::Range(0, 255));
    CLI11_PARSE(app, argc, argv);
    run(socketPath, stateDir, platformType);
    return 0;
} catch (const std::exception &error) {
    std::fprintf(stderr, "switchsim: %s\n", error.what());
    return 1;
}

#include "backend/program.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

namespace backend {
namespace {

using Clock = std::chrono::steady_clock;

// What the child is started with; a group of its own, so that it can be ended with its children.
class SpawnSettings {
public:
    SpawnSettings(int output, bool withErrors)
    {
        posix_spawn_file_actions_init(&files_);
        posix_spawn_file_actions_addopen(&files_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&files_, output, STDOUT_FILENO);
        if (withErrors)
            posix_spawn_file_actions_adddup2(&files_, output, STDERR_FILENO);
        else
            posix_spawn_file_actions_addopen(&files_, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawnattr_init(&attributes_);
        sigset_t set;
        sigemptyset(&set);
        posix_spawnattr_setsigmask(&attributes_, &set);
        sigaddset(&set, SIGPIPE);
        posix_spawnattr_setsigdefault(&attributes_, &set);
        posix_spawnattr_setpgroup(&attributes_, 0);
        posix_spawnattr_setflags(&attributes_,
                                 POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
    }
    ~SpawnSettings()
    {
        posix_spawnattr_destroy(&attributes_);
        posix_spawn_file_actions_destroy(&files_);
    }
    SpawnSettings(const SpawnSettings &) = delete;
    SpawnSettings &operator=(const SpawnSettings &) = delete;

    // 0, or the number of the error.
    int spawn(const std::vector<std::string> &arguments, pid_t &child) const
    {
        std::vector<char *> texts;
        for (const std::string &argument : arguments)
            texts.push_back(const_cast<char *>(argument.c_str()));
        texts.push_back(nullptr);
        return posix_spawnp(&child, texts.front(), &files_, &attributes_, texts.data(), environ);
    }

private:
    posix_spawn_file_actions_t files_{};
    posix_spawnattr_t attributes_{};
};

int millisecondsTo(Clock::time_point deadline)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 1'000'000));
}

// Reads up to the end of the output. False: the time was over before.
bool readOutput(int output, std::size_t limit, Clock::time_point deadline, std::string &text)
{
    std::array<char, 4096> buffer;
    for (;;) {
        pollfd waiting{output, POLLIN, 0};
        const int left = millisecondsTo(deadline);
        const int ready = poll(&waiting, 1, left);
        if (ready == 0 || left == 0)
            return false;
        const ssize_t got = ready < 0 ? -1 : read(output, buffer.data(), buffer.size());
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return true;
        text.append(buffer.data(), std::min<std::size_t>(static_cast<std::size_t>(got), limit - text.size()));
    }
}

// A program that closed its output ends soon, or is ended at the deadline.
bool hasEnded(pid_t child, Clock::time_point deadline, int &status)
{
    for (auto pause = std::chrono::milliseconds(1);;
         pause = std::min(2 * pause, std::chrono::milliseconds(50))) {
        const pid_t ended = waitpid(child, &status, WNOHANG);
        if (ended == child || (ended < 0 && errno != EINTR))
            return true;
        if (Clock::now() >= deadline)
            return false;
        std::this_thread::sleep_for(pause);
    }
}

void collect(pid_t child, int output, const ProgramLimits &limits, ProgramResult &result)
{
    const auto deadline = Clock::now() + limits.time;
    int status = -1;
    const bool isRead = readOutput(output, limits.output, deadline, result.output);
    result.timedOut = !isRead || !hasEnded(child, deadline, status);
    if (result.timedOut) {
        kill(-child, SIGKILL);
        while (waitpid(child, &status, 0) < 0 && errno == EINTR) { }
    } else if (WIFEXITED(status)) {
        result.exitStatus = WEXITSTATUS(status);
    }
}

} // namespace

ProgramResult runProgram(const std::vector<std::string> &arguments, const ProgramLimits &limits)
{
    ProgramResult result;
    std::array<int, 2> ends{};
    if (arguments.empty() || pipe2(ends.data(), O_CLOEXEC) != 0)
        return result;
    pid_t child = -1;
    const int error = SpawnSettings(ends[1], limits.withErrors).spawn(arguments, child);
    close(ends[1]);
    if (error == 0) {
        result.start = ProgramResult::Start::done;
        collect(child, ends[0], limits, result);
    } else if (error == ENOENT) {
        result.start = ProgramResult::Start::missing;
    }
    close(ends[0]);
    return result;
}

} // namespace backend

// Programs of the platform that do a piece of work, such as md5sum: run without a shell and never waited for
// without end.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace backend {

struct ProgramLimits {
    std::chrono::milliseconds time{10'000};
    std::size_t output = 64 * 1024; // bytes kept; the rest is read and dropped
    bool withErrors = false;        // standard error goes into the output too, else nowhere
};

struct ProgramResult {
    enum class Start { failed, missing, done };

    Start start = Start::failed; // missing: there is no such program
    bool timedOut = false;       // it was killed, with all that it had started
    int exitStatus = -1;         // 0 to 255; -1: not started, or ended by a signal
    std::string output;
};

// Runs a program and returns when it has ended or its time is over. The first argument is its name, looked
// for in PATH; its standard input is empty. May be called from several threads.
ProgramResult runProgram(const std::vector<std::string> &arguments, const ProgramLimits &limits = {});

} // namespace backend

#include "backend/program.h"

#include <gtest/gtest.h>

namespace {

using backend::ProgramResult;
using backend::runProgram;
using Start = backend::ProgramResult::Start;

TEST(Program, ItsOutputAndExitStatusAreTold)
{
    const ProgramResult result = runProgram({"sh", "-c", "echo out; echo err >&2; exit 3"});
    EXPECT_EQ(result.start, Start::done);
    EXPECT_EQ(result.output, "out\n");
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_FALSE(result.timedOut);
    EXPECT_EQ(runProgram({"sh", "-c", "echo err >&2"}, {.withErrors = true}).output, "err\n");
}

TEST(Program, GetsItsArgumentsAsTheyAreAndNoInput)
{
    EXPECT_EQ(runProgram({"echo", "a b; echo $HOME", "`id`"}).output, "a b; echo $HOME `id`\n");
    EXPECT_EQ(runProgram({"cat"}).exitStatus, 0);
    EXPECT_EQ(runProgram({"no-such-program-here"}).start, Start::missing);
    EXPECT_EQ(runProgram({}).start, Start::failed);
    EXPECT_EQ(runProgram({"head", "-c", "100000", "/dev/zero"}, {.output = 10}).output.size(), 10U);
}

TEST(Program, OneThatDoesNotEndIsKilledWithItsChildren)
{
    using namespace std::chrono_literals;
    for (const char *script : {"sleep 60 & sleep 60", "exec >/dev/null; sleep 60", "yes"}) {
        const auto begin = std::chrono::steady_clock::now();
        const ProgramResult result = runProgram({"sh", "-c", script}, {.time = 100ms});
        EXPECT_TRUE(result.timedOut) << script;
        EXPECT_EQ(result.exitStatus, -1) << script;
        EXPECT_LT(std::chrono::steady_clock::now() - begin, 20s) << script;
    }
}

} // namespace

// One callback called by hand: in this phase and operation, with this before and after, it makes exactly
// these requests. All cells of a program share a switch, so a request must not depend on what an earlier one
// left behind.
#pragma once

#include "tests/unit/support/switch_bench.h"

#include <gmock/gmock.h>

#include <memory>

namespace test {

struct Cell {
    std::string name;
    tk::EditPhase phase;
    tk::EditOp op;
    std::optional<std::string> before, after;
    std::vector<std::string> requests = {};
    Status status = kOk;
    std::string text = {}; // of the one record, if there is one
};
inline const std::optional<std::string> kAbsent = std::nullopt;

inline void PrintTo(const Cell &cell, std::ostream *out)
{
    *out << cell.name;
}

class Cells : public testing::TestWithParam<Cell> {
public:
    static void SetUpTestSuite() { bench_ = std::make_unique<SwitchBench>(); }
    static void TearDownTestSuite() { bench_.reset(); }

protected:
    void check(const std::string &path)
    {
        const Cell &c = GetParam();
        bench_->sent();
        const Callback done = bench_->call(c.phase, c.op, path, c.before, c.after);
        EXPECT_EQ(done.status, c.status);
        EXPECT_THAT(bench_->sent(), testing::ElementsAreArray(c.requests));
        std::vector<std::string> texts;
        for (const auto &record : done.records)
            texts.push_back(record.text);
        // A failure without a text of its own still has its one record.
        const auto expected = c.status ? std::vector<std::string>{c.text} : std::vector<std::string>{};
        EXPECT_EQ(texts, expected);
    }

    static inline std::unique_ptr<SwitchBench> bench_;
};

// A fault that strikes `call` until it is cleared.
inline switchsim::Fault faultOf(const std::string &call, switchsim::FaultKind kind,
                                const std::string &text = {})
{
    switchsim::Fault fault;
    fault.call = call;
    fault.kind = kind;
    if (!text.empty())
        fault.text = text;
    return fault;
}

} // namespace test

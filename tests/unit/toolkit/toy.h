// A host with the toy module, every node of which writes down what it is told.
#pragma once

#include "tests/unit/support/host_bench.h"
#include "toolkit/toolkit.h"

#include <map>

namespace test {

// One line a call: "apply merge /toy:top/config enabled:create=true limit:delete".
class ToyBench : public HostBench {
public:
    explicit ToyBench(const std::string &startup = {}, const std::map<std::string, unsigned> &options = {},
                      const std::vector<std::string> &moreModules = {});
    ~ToyBench() override;

    // The calls since the last time, of all phases or of one.
    std::vector<std::string> told();
    std::vector<std::string> told(const std::string &phase);

    // The callback of that path returns the status in that phase, and records a text if there is one.
    void failAt(const std::string &phase, const std::string &path, Status status,
                const std::string &text = {});
    void failNowhere();
    // Called inside each callback with its line and arguments.
    std::function<void(const std::string &line, tk::Value *newval, tk::Value *curval)> watch;
};

// A value as JSON-like text: {"enabled":"true"}; "-" for null.
std::string textOf(tk::Value *value);

} // namespace test

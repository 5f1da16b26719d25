// A host with the toy module, every node of which writes down what it is told.
#pragma once

#include "tests/unit/support/host_bench.h"
#include "toolkit/toolkit.h"

#include <future>
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

// Holds the first call of apply up until it is told to go on.
class SlowDevice {
public:
    explicit SlowDevice(ToyBench &bench);
    void awaitCall() { reached_.get_future().wait(); }
    void answer() { go_.set_value(); }

private:
    std::promise<void> reached_, go_;
};

// The toy's operation add: without b nothing comes back, and no a below zero is taken.
Status addUp(tk::Session *, tk::Request *msg, tk::Value *);

// Lines of calls as one text.
std::string joined(const std::vector<std::string> &lines);

// A value as JSON-like text: {"enabled":"true"}; "-" for null.
std::string textOf(tk::Value *value);

} // namespace test

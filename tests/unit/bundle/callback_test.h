// Callbacks of the bundle's units, called one by one over the simulated switch: a table of steps, each with
// everything that it does.
#pragma once

#include "tests/unit/support/switch_bench.h"

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace test {

inline const std::string kPort = "openconfig-interfaces:interfaces/interface=ethernet%201%2F1%2F1";
inline const std::string kEthernet = kPort + "/openconfig-if-ethernet:ethernet";

// Everything that a callback does.
struct Deed {
    std::vector<std::string> sent = {}; // requests, in order
    Status status = kOk;
    std::vector<std::string> records = {}; // for the client: status and text
    std::string errors = {};               // in the log

    bool operator==(const Deed &) const = default;
};
std::ostream &operator<<(std::ostream &out, const Deed &deed);

// What a callback does that fails without a text of its own.
Deed failure(Status status, std::vector<std::string> sent = {}, std::string errors = {});

// What the log has of a place that cannot be reached, by the file's name.
std::string internalError(const std::string &file, Status status = kInternal);

struct Step {
    std::string name;
    tk::EditPhase phase;
    tk::EditOp op;
    std::optional<std::string> before, after; // the node's own values; nothing: there is no such node
    Deed deed = {};
    std::optional<switchsim::Fault> fault = {};
};

void PrintTo(const Step &step, std::ostream *out);

// The commonest step: a merge in apply.
Step merged(std::string name, std::optional<std::string> before, std::optional<std::string> after,
            Deed deed = {}, std::optional<switchsim::Fault> fault = {});

switchsim::Fault noAnswer(const std::string &call, unsigned after = 0);
switchsim::Fault refusal(const std::string &call, std::optional<std::string> text, std::int32_t uiErr = 1,
                         std::int32_t appErr = 0);

// The steps, and one that does nothing for each phase and operation that none of them has, over the values of
// the node given here.
std::vector<Step> andNothingElse(std::vector<Step> steps, const std::string &before,
                                 const std::string &after);

// One bench for a table: a callback called by hand leaves nothing in running.
class CallbackTest : public testing::TestWithParam<Step> {
protected:
    static void SetUpTestSuite() { bench_ = std::make_unique<SwitchBench>("", 4); }
    static void TearDownTestSuite() { bench_.reset(); }

    static SwitchBench &bench() { return *bench_; }
    // Calls the callback of that path as the step says.
    static Deed perform(const std::string &path, const Step &step);

private:
    static std::unique_ptr<SwitchBench> bench_;
};

// A retrieval in mode 2 of the container at that schema path, for the instance with that key.
Status getNextInstance(SwitchBench &bench, const std::string &registeredPath, const std::string &path,
                       const std::string &key);

// A startup datastore with two ports; `more` are further members of the first one.
std::string portsWith(const std::string &more = {});

} // namespace test

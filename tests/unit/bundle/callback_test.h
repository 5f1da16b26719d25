// Callbacks of the bundle's units, called one by one over the simulated switch: a table of cells, each with
// everything that the callback does.
#pragma once

#include "tests/unit/bundle/log_capture.h"
#include "tests/unit/support/switch_bench.h"
#include "toolkit/toolkit.h"

#include <gmock/gmock.h>

#include <functional>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace test {

// The words of the tests of units.
using namespace tk;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

using Texts = std::vector<std::string>;
using MaybeText = std::optional<std::string>;

// Makes texts: each "$" stands for one of what it is called with.
struct Pattern {
    std::string text;

    template <class... Parts>
    std::string operator()(const Parts &...parts) const
    {
        std::istringstream rest(text);
        std::ostringstream out;
        std::string piece;
        ((std::getline(rest, piece, '$'), out << piece << parts), ...);
        std::getline(rest, piece, '\0');
        return out.str() + piece;
    }
};

// In this phase and operation, with this before and after, a callback makes exactly these requests.
struct Cell {
    std::string name;
    EditPhase phase;
    EditOp op;
    MaybeText before, after; // the node's own values; nothing: there is no such node
    Texts requests;
    Status status;
    std::string text; // of the one record that a failure leaves
    MaybeText log;    // errors; what a failure logs is looked at where it is given
    std::optional<switchsim::Fault> fault = {};
};
inline const MaybeText kAbsent = std::nullopt;

// Makers of cells of apply, for nodes that change, come and go.
struct Changes {
    EditOp op;
    Cell operator()(const std::string &name, const std::string &before, const std::string &after,
                    const Texts &requests = {}, Status status = kOk, const std::string &text = {},
                    const std::string &log = {}) const
    {
        return {name, apply, op, before, after, requests, status, text, log};
    }
};
struct Comes {
    EditOp op;
    Cell operator()(const std::string &name, const std::string &after, const Texts &requests = {},
                    Status status = kOk, const std::string &text = {}, const std::string &log = {}) const
    {
        return {name, apply, op, kAbsent, after, requests, status, text, log};
    }
};
struct Goes {
    Cell operator()(const std::string &name, const std::string &before, const Texts &requests = {},
                    Status status = kOk, const std::string &text = {}, const std::string &log = {}) const
    {
        return {name, apply, del, before, kAbsent, requests, status, text, log};
    }
};
inline constexpr Changes merged{merge}, replaced{replace};
inline constexpr Comes created{create}, loaded{load};
inline constexpr Goes deleted{};
// The same in another phase, or while something is wrong with the switch.
Cell in(EditPhase phase, Cell cell);
Cell under(switchsim::Fault fault, Cell cell);
// The same, and nobody looks at what it logs.
Cell loud(Cell cell);

switchsim::Fault noAnswer(const std::string &call, unsigned after = 0);
switchsim::Fault refusal(const std::string &call, MaybeText text = {}, std::int32_t uiErr = 1,
                         std::int32_t appErr = 0);
// The switch has this fault and no other.
void strike(SwitchBench &bench, switchsim::Fault fault);

// What the log has of a place that cannot be reached, by the file's name.
std::string internalError(const std::string &file, Status status = kInternal);

// Values of a node over which nothing happens in the phases and operations that no cell has.
struct Quiet {
    std::string before, after;
};

// Calls the callback of that path as each cell says. A callback called by hand leaves nothing in running, but
// the switch keeps what it was told: `prepare` is done before each cell.
void check(SwitchBench &bench, const std::string &path, std::vector<Cell> cells,
           const std::optional<Quiet> &elsewhere = {}, const std::function<void()> &prepare = {});
// The same over a switch of its own.
void check(const std::string &path, const std::vector<Cell> &cells,
           const std::optional<Quiet> &elsewhere = {});

// Status and texts of a callback called by hand, for comparing at once.
using Ended = std::pair<Status, Texts>;
Ended ended(const Callback &done);

// What a get callback answers: the status, and the keys that it gave.
struct Got {
    Status status = kOk;
    Texts keys = {};
    bool more = false;

    bool operator==(const Got &) const = default;
};
void PrintTo(const Got &got, std::ostream *out);

// Calls the get callback of a registered path for the instance at `path`, whose last list may have a key or
// not.
Got getByHand(SwitchBench &bench, const std::string &registeredPath, const std::string &path, GetMode mode);

// The status with which the reading of state fails; 0 if it does not.
Status readFailure(SwitchBench &bench, const std::string &path);

} // namespace test

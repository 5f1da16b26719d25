// Faults that a user injects into calls.
#pragma once

#include "switchsim/json_text.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace switchsim {

enum class FaultKind {
    null,   // no answer: a delivery failure
    refuse, // an answer with codes and a text, and nothing is done
    delay,  // done, but answered late
    exit,   // the process dies
};

struct Fault {
    std::string call;
    FaultKind kind = FaultKind::null;
    std::string message; // only for requests with this record, or for this plug-in; empty: all
    std::optional<std::int32_t> uiErr, appErr; // refuse; none given: ui_err 1
    std::optional<std::string> text;           // refuse: the reply's text
    std::uint32_t ms = 0;                      // delay
    std::uint32_t count = 0;                   // strikes so many times and is gone then; 0: until cleared
    std::uint32_t after = 0;                   // so many calls pass first
};

// Null for a word that is no kind.
std::optional<FaultKind> asFaultKind(std::string_view word);
Json asJson(const Fault &fault);

class Faults {
public:
    void add(Fault fault) { faults_.push_back(std::move(fault)); }
    void clear() { faults_.clear(); }
    const std::vector<Fault> &list() const { return faults_; } // as they stand, counts run down

    // The fault that strikes this call: the first one that fits and has let enough calls pass. `messages`
    // are the names that the request goes by.
    std::optional<Fault> strike(std::string_view call, const std::vector<std::string> &messages);
    bool isEmpty() const { return faults_.empty(); }

private:
    std::vector<Fault> faults_;
};

} // namespace switchsim

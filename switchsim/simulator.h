// The switch behind the messages: takes requests as bytes and gives answers as bytes.
#pragma once

#include "backend/bytes.h"
#include "switchsim/family.h"
#include "switchsim/faults.h"
#include "switchsim/journal.h"

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace switchsim {

// Who waits for an answer.
class Caller {
public:
    virtual ~Caller() = default;

    // Lets the time pass. False at once when the caller has given up.
    virtual bool wait(std::chrono::milliseconds time) = 0;
};

// All members may be called from any thread.
class Simulator {
public:
    // `die` ends the process, for the fault that asks for it; empty: that fault can't be added.
    explicit Simulator(std::function<void()> die = {});
    ~Simulator();

    // Carries out one request (backend/envelope.h). Nothing: the bytes are no request that the switch
    // knows, or the caller has given up.
    std::optional<backend::Bytes> serve(backend::BytesView request, Caller &caller);

    const Journal &journal() const { return journal_; }

    // The state of one family, or of all under their words. Throws std::invalid_argument for an
    // unknown word, with a line for the user.
    Json show(std::string_view word = {}) const;

    Json values() const;
    void setValue(std::string_view name, std::int64_t value); // throws as Values::set

    // Throws std::invalid_argument with a line for the user: the call is not known, or cannot fail so.
    void addFault(Fault fault);
    std::vector<Fault> faults() const;
    void clearFaults();

private:
    struct Outcome {
        std::optional<backend::Bytes> message; // the packed answer
        std::chrono::milliseconds delay{0};
    };
    Outcome carryOut(const Call &call, const backend::Request &request, const ProtobufCMessage &message,
                     const std::optional<Fault> &fault);

    std::string runningConfig() const;

    mutable std::mutex mutex_; // guards all but the journal, which has its own
    Device device_;
    std::vector<std::unique_ptr<Family>> families_;
    CallTable calls_; // not changed after construction
    Faults faults_;
    Journal journal_;
    std::function<void()> die_;
};

} // namespace switchsim

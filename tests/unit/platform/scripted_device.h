// A switch that gives every request the same answer, and a get callback asked by hand.
#pragma once

#include "tests/unit/backend/scripted_transport.h"
#include "tests/unit/support/switch_bench.h"

namespace test {

// While it lives, the bench's switch says this and nothing else.
class Says {
public:
    template <class Record>
    Says(SwitchBench &bench, const Record &record)
        : bench_(bench)
    {
        const auto script = std::make_shared<backend::ScriptedTransport>();
        script->answer = backend::envelopeAround(backend::packed(record.base));
        backend::setTransport(script);
    }
    ~Says() { bench_.plugIn(); }
    Says(const Says &) = delete;
    Says &operator=(const Says &) = delete;

private:
    SwitchBench &bench_;
};

// What a get callback answers: the status, and the keys that it gave.
struct Got {
    Status status = kOk;
    std::vector<std::string> keys = {};
    bool more = false;

    bool operator==(const Got &) const = default;
};
void PrintTo(const Got &got, std::ostream *out);

// Calls the get callback of a registered path for the instance at `path`, whose last list may have a key or
// not.
Got getByHand(SwitchBench &bench, const std::string &registeredPath, const std::string &path,
              tk::GetMode mode);

} // namespace test

// A switch that gives every request the same answer.
#pragma once

#include "tests/unit/backend/scripted_transport.h"
#include "tests/unit/bundle/callback_test.h"

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

} // namespace test

// One callback of an RPC, called by hand: what it returns, records, and hands back.
#pragma once

#include "tests/unit/support/switch_bench.h"

#include "toolkit/src/request.h"

#include <gmock/gmock.h>

namespace test {

struct RpcAnswer {
    Status status = kOk;
    std::vector<std::string> texts = {};  // of the error records
    std::vector<std::string> output = {}; // the texts of the leaves handed back

    bool operator==(const RpcAnswer &) const = default;
};

inline void PrintTo(const RpcAnswer &answer, std::ostream *out)
{
    *out << answer.status << " " << testing::PrintToString(answer.texts) << " "
         << testing::PrintToString(answer.output);
}

// `input` is what stands in the RPC's input ("{...}"); nothing for a request without input. An RPC that hands
// back "target": {} in its input is not the same as one with an empty input ("{}").
RpcAnswer callRpc(HostBench &bench, tk::RpcCallback callback, const std::string &module,
                  const std::string &rpc, const std::optional<std::string> &input);

} // namespace test

// What ping and traceroute have in common: a destination, an address or a name that the switch resolves, and
// a command that answers with the text that it printed.
#pragma once

#include "backend/proto/common.pb-c.h"
#include "frame/operation.h"

#include <array>
#include <cstdint>
#include <functional>

namespace ping {

inline constexpr Status kUnservedInput = 263; // of an RPC whose input lacks what it cannot do without

struct Destination {
    std::uint32_t family = 0; // 1 IPv4, 2 IPv6, 0 not said
    std::uint32_t ipv4 = 0;
    bool hasIpv6 = false;
    std::array<std::uint8_t, 16> ipv6{};
    const char *name = nullptr; // that it was resolved from; the input's
};

// What is particular to a command.
struct Command {
    const char *module;
    const char *noDestination;                 // to the client
    const char *nameUnanswered;                // to the log: nobody resolved the name
    void (*logNameRefused)(const char *words); // to the log: what the resolver said
    const char *unanswered;                    // to the log: it was carried out, and there is no answer
    void (*logNoLeaf)(Status status);          // to the log: its text could not be returned
};

// Reads family and destination of an RPC's `target`. A refusal has its text recorded; a name that cannot be
// resolved is kInternal.
Status readDestination(tk::Session *scb, tk::Request *msg, const tk::Value *target, const Command &command,
                       Destination &destination);

// The low 32 bits of a number below `target`. False when it is not there.
bool readNumber(const tk::Value *target, const Command &command, const char *leaf, std::uint32_t &number);

// Has the switch carry a command out and returns what it printed. kInternal when the switch cannot do it.
// execute(answer) sends it, fills the slot of the answer and returns 0 for a success.
Status carryOut(tk::Request *msg, const Command &command, const std::function<int(CommonResp **)> &execute);

// The whole RPC: fill(target, message) reads the input's `target`, where there is one, and
// execute(message, answer) sends the message.
template <class Message, class Fill, class Execute>
Status invoke(tk::Request *msg, const Command &command, Message &message, Fill fill, Execute execute)
{
    const tk::Value *input = agt_get_rpc_input(msg);
    if (!input)
        return kFailed;
    if (const tk::Value *target = val_find_child(input, command.module, "target"))
        if (const Status status = fill(target, message))
            return status;
    return carryOut(msg, command, [&](CommonResp **answer) { return execute(&message.record, answer); });
}

} // namespace ping

extern "C" {

// 1 if a text may be a host's name: it holds neither a colon nor a tab nor a blank. Else 0.
int validate_string(const char *text);

} // extern "C"

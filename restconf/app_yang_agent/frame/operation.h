// RPCs: refusing with a text, and answering with one.
#pragma once

#include "frame/call.h"

// The arguments of an RPC's callbacks.
#define RPC_ARGS                                                                                             \
    [[maybe_unused]] tk::Session *scb, [[maybe_unused]] tk::Request *msg,                                    \
        [[maybe_unused]] tk::Value *methodnode

namespace frame {

// Records a text for the client and returns the status.
Status refuseRequest(Session *scb, Request *msg, Status status, const char *text);

// The schema of the operation's output, or null.
const Object *outputOf(const Request *msg, const char *module);

// Puts a text into the leaf `result` of the output's container `response`. kNotFound without such a leaf;
// kInvalidValue if it does not take the text.
Status returnResult(Request *msg, const Object *output, const char *module, const char *text);

} // namespace frame

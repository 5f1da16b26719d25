// The records behind the request that a callback is given.
#pragma once

#include "plan.h"
#include "toolkit/host.h"

namespace tk {

struct ErrorRecord {
    Status status;
    std::string text; // empty: the status's own
    std::string path;
};

struct RequestFrame;

struct MessageHeader {
    RequestFrame *frame = nullptr;
    std::vector<ErrorRecord> records;
    std::string (*pathOf)(const void *) = nullptr; // path of the node that the callback was told of
    const void *subject = nullptr;

    std::string path() const { return pathOf ? pathOf(subject) : std::string(); }
    // The records from `first` on as the client gets them; one of the status itself where there are none.
    std::vector<Error> errors(std::size_t first, Status status) const;
};

struct TransactionRecord {
    const Told *told = nullptr;
};

// A request with everything that its pointers point to.
struct RequestFrame {
    MessageHeader header;
    TransactionRecord transaction;
    Session session;
    Request request;
    Value *input = nullptr; // of an RPC or action
    std::vector<std::unique_ptr<Value>> output;

    RequestFrame()
    {
        request.rpc_txcb = &transaction;
        request.mhdr = &header;
        header.frame = this;
    }
    RequestFrame(const RequestFrame &) = delete;
    RequestFrame &operator=(const RequestFrame &) = delete;

    static RequestFrame &of(Request *request) { return *request->mhdr->frame; }
};

} // namespace tk

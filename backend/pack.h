// Packing of a request as the client functions find it: a record on the caller's stack.
#pragma once

#include "backend/bytes.h"

#include <protobuf-c/protobuf-c.h>

#include <vector>

namespace backend {

// While it lives, a record is as it goes out: a number that is not zero counts as present even if its
// presence word is 0, and a text that is protobuf_c_empty_string counts as absent (an empty text of the
// caller's own is sent). The record is as before afterwards.
class PackScope {
public:
    explicit PackScope(ProtobufCMessage &message) { visit(message, 1); }
    ~PackScope();
    PackScope(const PackScope &) = delete;
    PackScope &operator=(const PackScope &) = delete;

    // False: the record cannot be packed, because it nests too deep or has no descriptor.
    bool isGood() const { return good_; }

private:
    void visit(ProtobufCMessage &message, unsigned depth);
    void visitField(ProtobufCMessage &message, const ProtobufCFieldDescriptor &field, unsigned depth);

    std::vector<protobuf_c_boolean *> raised_;
    std::vector<char **> hidden_;
    bool good_ = true;
};

} // namespace backend

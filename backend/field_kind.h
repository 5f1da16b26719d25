// What the bytes, texts and numbers of a record mean to a reader: the one place that knows secrets,
// addresses and masks. Logs and the journal both ask here.
#pragma once

#include <protobuf-c/protobuf-c.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace backend {

enum class FieldKind {
    plain,    // shown as it is
    secret,   // never shown: logs print "*****", the journal its length
    ipv4,     // fixed32 in host order
    ipv6,     // 16 bytes
    mac,      // 6 bytes
    vlanMask, // 512 bytes
};

// Judges by type and name, see backend/proto/common.proto. A field whose bytes turn out to have another
// length than its kind says is to be shown as plain bytes.
FieldKind kindOf(const ProtobufCFieldDescriptor &field);

// Bytes of a member of that type in an unpacked record: a string or message is a pointer.
std::size_t memberSize(ProtobufCType type);

// True if the value of this sub-entry of a plug-in request is a secret ("password", "key", ...).
bool isSecretKey(std::string_view key);

// The record's name as the code has it: "ip__interface__config", "bum_rate_limit_msg".
std::string recordName(const ProtobufCMessageDescriptor &descriptor);

} // namespace backend

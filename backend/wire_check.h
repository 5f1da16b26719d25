// Looks a packed message over before it is unpacked: protobuf-c trusts the lengths that it reads.
#pragma once

#include "backend/bytes.h"

#include <protobuf-c/protobuf-c.h>

namespace backend {

inline constexpr unsigned kMaxDepth = 16;              // nested records
inline constexpr std::size_t kMaxUnpacked = 32U << 20; // bytes of memory that unpacking may take

// True if every length lies inside of the bytes, no single field stands twice, records nest at most
// kMaxDepth deep, and the unpacked message stays below kMaxUnpacked.
bool isSafeToUnpack(const ProtobufCMessageDescriptor &descriptor, BytesView bytes);

// Checks and unpacks. The caller frees with protobuf_c_message_free_unpacked. Null: not such a message.
ProtobufCMessage *unpackChecked(const ProtobufCMessageDescriptor &descriptor, BytesView bytes);

} // namespace backend

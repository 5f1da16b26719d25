// Records as JSON, from their descriptors.
#pragma once

#include <nlohmann/json.hpp>
#include <protobuf-c/protobuf-c.h>

namespace switchsim {

using Json = nlohmann::ordered_json;

// The fields that are set, under their names and in message order: nested records nest, addresses, masks
// and bytes are text, secrets are "<N bytes>".
Json asJson(const ProtobufCMessage &message);

// One line of text; what is no UTF-8 is replaced.
std::string asLine(const Json &json);

} // namespace switchsim

// A message in the log.
#pragma once

#include <protobuf-c/protobuf-c.h>

extern "C" {

// Writes a message field by field by log_debug, nested records in their place; fields that are not set are
// left out and secrets show as "*****". The caller tests the level.
void restconf_print_unpacked_protobuf(const ProtobufCMessage *message);

} // extern "C"

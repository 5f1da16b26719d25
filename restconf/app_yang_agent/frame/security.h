// Messages to the security handler.
#pragma once

#include "backend/security.h"
#include "frame/owned.h"

#include <cstdint>

namespace frame {

using SecurityAnswer = Owned<ProtobufCMessage, protobuf_c_message_free_unpacked>;

// Sends a message, waits, and prints the message at debug level. `answer`, which is empty before, gets the
// record that belongs to the message code. Returns the handler's result: 0 when it was delivered; any other
// is logged.
int sendSecurityMessage(ProtobufCMessage &message, std::uint32_t subType, std::uint32_t messageCode,
                        SecurityAnswer &answer, std::int32_t flag = 0);
// The same for callers with words of their own: a failure is not logged.
int exchangeSecurityMessage(ProtobufCMessage &message, std::uint32_t subType, std::uint32_t messageCode,
                            SecurityAnswer &answer, std::int32_t flag = 0);

} // namespace frame

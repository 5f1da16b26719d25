#include "frame/security.h"

#include "frame/call.h"
#include "frame/print_message.h"

namespace frame {

int exchangeSecurityMessage(ProtobufCMessage &message, std::uint32_t subType, std::uint32_t messageCode,
                            SecurityAnswer &answer, std::int32_t flag)
{
    const int result = sec_protobuf_fe_config_handler(&message, answer.slot(), subType, messageCode, flag);
    if (logsDebug())
        restconf_print_unpacked_protobuf(&message);
    return result;
}

int sendSecurityMessage(ProtobufCMessage &message, std::uint32_t subType, std::uint32_t messageCode,
                        SecurityAnswer &answer, std::int32_t flag)
{
    const int result = exchangeSecurityMessage(message, subType, messageCode, answer, flag);
    if (result && logsErrors())
        log_error("ITC failed : %d \n", result);
    return result;
}

} // namespace frame

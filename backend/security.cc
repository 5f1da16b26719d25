#include "backend/security.h"

#include "backend/call.h"

namespace {

struct AnswerRow {
    std::uint32_t messageCode;
    const ProtobufCMessageDescriptor *answer;
};
constexpr AnswerRow kAnswers[] = {
    {SEC_MSG_BUM_RATE_LIMIT, &bum_rate_limit_resp__descriptor},
    {SEC_MSG_ACL_DEFINITION, &common_resp__descriptor},
    {SEC_MSG_ACL_IPV4_FILTER, &common_resp__descriptor},
    {SEC_MSG_ACL_MAC_FILTER, &common_resp__descriptor},
    {SEC_MSG_ACL_IPV6_FILTER, &common_resp__descriptor},
    {SEC_MSG_ACL_BINDING, &common_resp__descriptor},
};

const ProtobufCMessageDescriptor *answerFor(std::uint32_t messageCode)
{
    for (const AnswerRow &row : kAnswers) {
        if (row.messageCode == messageCode)
            return row.answer;
    }
    return nullptr;
}

} // namespace

int sec_protobuf_fe_config_handler(ProtobufCMessage *message, ProtobufCMessage **answer, uint32_t sub_type,
                                   uint32_t message_code, int32_t flag)
{
    const auto *descriptor = answerFor(message_code);
    *answer = nullptr;
    if (message == nullptr || descriptor == nullptr)
        return 1;
    *answer = backend::exchange({"sec_protobuf_fe_config_handler", flag, message_code, sub_type}, *message,
                                *descriptor);
    return *answer == nullptr ? 1 : 0;
}

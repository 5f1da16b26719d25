#include "backend/task.h"

#include "backend/call.h"
#include "backend/proto/platform.pb-c.h"

namespace {

constexpr int kBadArgument = 22;
constexpr int kUnreachable = 113;

} // namespace

void itc_get_current_context(itc_context *context)
{
    if (context != nullptr)
        context->task = ITC_TASK_MANAGEMENT;
}

int itc_send_request(const itc_context *context, uint32_t destination, uint32_t message_code,
                     const void *payload, size_t length, int32_t flag, uint32_t, uint32_t)
{
    if (context == nullptr || (payload == nullptr && length > 0) || length > backend::kMaxMessage)
        return kBadArgument;
    const auto *bytes = static_cast<const std::uint8_t *>(payload);
    backend::Bytes copy(bytes, bytes + length);
    TaskMessage request = TASK_MESSAGE__INIT;
    request.destination = static_cast<std::int32_t>(destination);
    request.code = message_code;
    request.flag = flag;
    request.has_payload = 1;
    request.payload = {copy.size(), copy.data()};
    return backend::askValue("itc_send_request", request.base, kUnreachable);
}

#include "dhcp/pool_request.h"

#include "frame/answer.h"

#include <algorithm>
#include <cstring>

using namespace frame;

namespace dhcp {

namespace {

// The formats are constants of the callers.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

void logRefusal(const EditCall &call, const char *format, const char *text)
{
    if (logsErrors())
        log_error(format, call.function, text);
}

void logRefusal(const EditCall &call, const char *format)
{
    if (logsErrors())
        log_error(format, call.function);
}

#pragma GCC diagnostic pop

} // namespace

void copyField(char *field, std::size_t size, const char *text)
{
    const std::size_t length = std::min(std::strlen(text), size - 1);
    std::memcpy(field, text, length);
    field[length] = '\0';
}

dhcp4_subnet_config poolRequest(const char *pool)
{
    dhcp4_subnet_config request{};
    copyField(request.pool_name, pool);
    return request;
}

Status readAnswer(const EditCall &call, const DhcpsResponse *answer, const char *format, int line)
{
    if (answer && !isRefused(answer->reply))
        return kOk;
    if (answer && answer->reply->reply_buf) {
        logRefusal(call, format, answer->reply->reply_buf);
        recordText(call, kInternal, answer->reply->reply_buf);
    }
    locationLines(call, line);
    return kInternal;
}

Status refuse(const EditCall &call, const char *format, const char *text, int line)
{
    logRefusal(call, format);
    locationLines(call, line);
    return recordText(call, kInternal, text);
}

} // namespace dhcp

#include "stack/src/answer.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

namespace stack {

using namespace frame;

namespace {

void logRefusal(const EditCall &call, const CommonResp &reply)
{
    if (!logsErrors())
        return;
    log_error("\nstack editop ui_err:%d, app err:%d", reply.ui_err, reply.app_err);
    for (const auto &[name, value] : {std::pair{"\nnew", call.newval}, {"\ncur", call.curval}})
        if (value) {
            log_error("%s", name);
            val_dump_value(value, 0, kErrorDump);
        }
    if (!reply.reply_buf)
        log_error("\nstack editop result->response->reply_buf is NULL");
}

} // namespace

Status refuse(const EditCall &call, Status status, const ErrorText &error)
{
    return recordText(call, status, error.data());
}

Status readAnswer(const EditCall &call, const ConfigAnswer &answer, ErrorText &error)
{
    if (!answer) {
        locationLines(call);
        return kInternal;
    }
    const CommonResp *reply = answer->reply;
    if (!reply || (reply->ui_err == 0 && reply->app_err == 0))
        return kOk;
    logRefusal(call, *reply);
    if (!reply->reply_buf)
        return kInternal;
    const std::size_t used = std::strlen(error.data());
    std::snprintf(error.data() + used, error.size() - used, "%s", reply->reply_buf);
    return refuse(call, kInternal, error);
}

Status readUnitId(const char *key, int &id)
{
    if (!key)
        return kMissingKey;
    const long long number = std::strtoll(key, nullptr, 10);
    if (number <= 0 || number > std::numeric_limits<int>::max())
        return kInternal;
    id = static_cast<int>(number);
    return kOk;
}

} // namespace stack

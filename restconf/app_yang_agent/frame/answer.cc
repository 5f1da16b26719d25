#include "frame/answer.h"

namespace frame {

Status readStrictly(const EditCall &call, int result, const CommonResp *answer, int line)
{
    const bool failed = answer ? result != 0 || answer->ui_err != 0 || answer->app_err != 0 : result != 0;
    if (!failed)
        return kOk;
    locationLines(call, line);
    if (!answer || !answer->reply_buf)
        return kInternal;
    return recordText(call, kDeviceText, answer->reply_buf);
}

Status readVlanAnswer(const EditCall &call, int result, const CommonResp *answer, const char *vlans)
{
    if (result && logsErrors())
        log_error("\n Error: Send to remote failed with error %d for VLAN %s\n", result, vlans);
    if (!isRefused(answer))
        return result ? kInternal : kOk;
    if (logsErrors())
        log_error("\n Error: Backend processing failed with error  %d for VLAN %s", answer->ui_err, vlans);
    if (answer->reply_buf && *answer->reply_buf)
        recordText(call, kInternal, answer->reply_buf);
    return kInternal;
}

} // namespace frame

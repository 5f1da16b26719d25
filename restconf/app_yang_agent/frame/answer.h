// What the device's answer to a request means for an edit. The answer stays the caller's.
#pragma once

#include "backend/proto/common.pb-c.h"
#include "frame/call.h"

namespace frame {

// An answer without a reply turns nothing down.
inline bool isRefused(const CommonResp *reply)
{
    return reply && reply->ui_err != 0;
}

// The strict reading: the device's own words reach the client. `result` is that of the call, `answer` may be
// null. 0 for a success; kDeviceText with the answer's text recorded, if it has one, even an empty one;
// else kInternal. Failures write the location lines, with the caller's line.
Status readStrictly(const EditCall &call, int result, const CommonResp *answer, int line = __builtin_LINE());

// The reading of the VLAN family, which has no status of its own for the device's words. 0 or kInternal; a
// text that is not empty is recorded. `vlans` are those of the request, for the log.
Status readVlanAnswer(const EditCall &call, int result, const CommonResp *answer, const char *vlans);

// The lenient reading, for setters that keep the device's text to themselves: 0, the answer's ui_err, or 1
// without an answer. The two failures each have a debug line.
template <class Answer>
int readLeniently(const Answer *answer, const char *lineIfNone, const char *lineIfRefused)
{
    const bool refused = answer && isRefused(answer->reply);
    if ((!answer || refused) && logsDebug())
        log_debug("%s", answer ? lineIfRefused : lineIfNone);
    return !answer ? 1 : refused ? answer->reply->ui_err : 0;
}

} // namespace frame

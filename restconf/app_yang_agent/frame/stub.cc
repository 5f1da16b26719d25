#include "frame/stub.h"

#include "frame/rules.h"

namespace frame {

Status stubEdit(const char *function, EditPhase phase, EditOp op)
{
    if (logsDebug())
        log_debug("\nEnter %s callback for %s phase", function, agt_cbtype_name(phase));
    return isKnown(phase) && isKnown(op) ? kOk : INTERNAL_ERROR();
}

Status stubGet(const char *function, const GetBlock *get2cb)
{
    if (logsDebug())
        log_debug("\nEnter %s", function);
    switch (getcb_get_mode(get2cb)) {
    case getValue:
        return kOk;
    case getNext:
        return kNoInstance;
    }
    return INTERNAL_ERROR();
}

Status stubGetList(const char *function, const GetBlock *get2cb)
{
    if (logsDebug())
        log_debug("\nEnter %s", function);
    const GetMode mode = getcb_get_mode(get2cb);
    return mode == getValue || mode == getNext ? kNoInstance : INTERNAL_ERROR();
}

} // namespace frame

#include "acl/src/limited_edit.h"

namespace acl {

using namespace frame;

Status refuse(const EditCall &call)
{
    return refuseOperation(call, "\nEnter acl_edit callback for %s phase, editop(%d) not supported");
}

Status passExcept(EditOps refused, const EditCall &call)
{
    if (!isKnown(call.phase) || !isKnown(call.op))
        return INTERNAL_ERROR();
    return inApply.has(call.phase) && refused.has(call.op) ? refuse(call) : kOk;
}

} // namespace acl

// Callbacks of nodes whose own edits reach nobody: some operations are refused, the others pass.
#pragma once

#include "frame/rules.h"

namespace acl {

// kNotSupported for a refused operation in apply; 0 for anything else.
Status passExcept(frame::EditOps refused, const frame::EditCall &call);

Status refuse(const frame::EditCall &call);

} // namespace acl

// Behind the operations stand the types of the function's keys.
#define LIMITED_EDIT(function, refused, ...)                                                                 \
    extern "C" Status function(EDIT_ARGS __VA_OPT__(, ) __VA_ARGS__)                                         \
    {                                                                                                        \
        return acl::passExcept(refused, EDIT_CALL);                                                          \
    }                                                                                                        \
    static_assert(true)

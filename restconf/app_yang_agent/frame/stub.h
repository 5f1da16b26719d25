// Callbacks of served paths in which nothing is filled in: one line each.
#pragma once

#include "frame/unit.h"

namespace frame {

// Logs the entry, checks phase and operation, and passes.
Status stubEdit(const char *function, EditPhase phase, EditOp op);
// A container without leaves of its own.
Status stubGet(const char *function, const GetBlock *get2cb);
// A list that returns no entry.
Status stubGetList(const char *function, const GetBlock *get2cb);

} // namespace frame

// Behind the function's name stand the types of its keys.
#define STUB_EDIT(function, ...)                                                                             \
    extern "C" Status function(tk::Session *, tk::Request *, tk::EditPhase cbtyp, tk::EditOp editop,         \
                               tk::Value *, tk::Value *__VA_OPT__(, ) __VA_ARGS__)                           \
    {                                                                                                        \
        return frame::stubEdit(#function, cbtyp, editop);                                                    \
    }                                                                                                        \
    static_assert(true)
#define STUB_GET(function, ...)                                                                              \
    extern "C" Status function(tk::GetBlock *get2cb __VA_OPT__(, ) __VA_ARGS__)                              \
    {                                                                                                        \
        return frame::stubGet(#function, get2cb);                                                            \
    }                                                                                                        \
    static_assert(true)
// The last key is the list's own, an OwnKey.
#define STUB_GET_LIST(function, ...)                                                                         \
    extern "C" Status function(tk::GetBlock *get2cb __VA_OPT__(, ) __VA_ARGS__)                              \
    {                                                                                                        \
        return frame::stubGetList(#function, get2cb);                                                        \
    }                                                                                                        \
    static_assert(true)

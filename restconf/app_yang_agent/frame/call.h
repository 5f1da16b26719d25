// An edit as a user function is told of it, and what every user function may do with it.
#pragma once

#include "toolkit/toolkit.h"

#include <initializer_list>
#include <utility>

// The arguments of an edit callback; list keys follow behind them.
#define EDIT_ARGS                                                                                            \
    [[maybe_unused]] tk::Session *scb, [[maybe_unused]] tk::Request *msg,                                    \
        [[maybe_unused]] tk::EditPhase cbtyp, [[maybe_unused]] tk::EditOp editop,                            \
        [[maybe_unused]] tk::Value *newval, [[maybe_unused]] tk::Value *curval
#define EDIT_CALL                                                                                            \
    frame::EditCall                                                                                          \
    {                                                                                                        \
        scb, msg, cbtyp, editop, newval, curval, __func__                                                    \
    }

namespace frame {

using namespace tk;

struct EditCall {
    Session *scb;
    Request *msg;
    EditPhase phase;
    EditOp op;
    Value *newval;
    Value *curval;
    const char *function = ""; // the user function's name, for the log
};

// Levels are tested before a call, so that nothing is formatted below them.
inline bool logsErrors()
{
    return log_get_system_log_level() >= 1;
}
inline bool logsInfo()
{
    return log_get_system_log_level() >= 3;
}
inline bool logsDebug()
{
    return log_get_system_log_level() > 7;
}
inline bool logsDebug2()
{
    return log_get_system_log_level() > 8;
}

// One edited leaf below the node that the callback was told of.
struct EditedLeaf {
    EditOp op;
    const char *name;
    Value *newval; // null when the leaf is gone
    Value *curval; // null when it was not there

    bool is(const char *leaf) const { return xml_strcmp(name, leaf) == 0; }
};

// The next edited leaf; a null edit begins. Logs it above level 8. False at the end.
bool nextEditedLeaf(const EditCall &call, ChildEdit *&edit, EditedLeaf &leaf);

// Calls act(leaf) for each edited leaf until one returns a status other than 0, which is the result.
template <class Act>
Status walkChildEdits(const EditCall &call, Act act)
{
    ChildEdit *edit = nullptr;
    EditedLeaf leaf{};
    while (nextEditedLeaf(call, edit, leaf))
        if (const Status status = act(std::as_const(leaf)))
            return status;
    return kOk;
}
// The walk of a function that acts on no leaf: it only logs them.
void walkChildEdits(const EditCall &call);

// Where a failure happened and what the edit was, by log_error. The line is the caller's own.
void locationLines(const EditCall &call, int line = __builtin_LINE());

// Records a text for the client and returns the status.
Status recordText(const EditCall &call, Status status, const char *text);

// Refuses an operation that the node does not have: logs `format`, which takes the phase's name and the
// operation's number, and returns kNotSupported.
Status refuseOperation(const EditCall &call, const char *format);

// The branch for what cannot occur.
#define INTERNAL_ERROR() set_error(__FILE__, __LINE__, kInternal, 0)

} // namespace frame

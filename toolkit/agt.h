// Module loading, registration of callbacks, caches of top-level nodes.
#pragma once

#include "toolkit/types.h"

extern "C" {

// The server's queue of deviations; both loaders take it. Owned by the toolkit.
tk::DeviationQueue *agt_get_savedevQ();

// Registers the deviations of a module for modules loaded later. 0, or kFailed when the module cannot be
// found or parsed (the reason is in the log).
Status ncxmod_load_deviation(const char *deviation, tk::DeviationQueue *deviations);

// Parses a module of the given revision (null: any) and applies deviations to it. *module is filled on
// success. kFailed when it cannot be found in that revision or parsed.
Status ncxmod_load_module(const char *name, const char *revision, tk::DeviationQueue *deviations,
                          tk::ModuleHandle **module);

// A module loaded before, or null. revision may be null.
tk::ModuleHandle *ncx_find_module(const char *name, const char *revision);

// A top-level data node or RPC of a module, or null. Owned by the toolkit.
tk::Object *ncx_find_object(tk::ModuleHandle *module, const char *name);

// Paths are absolute; a step is qualified by its module's prefix or name, and steps of choices and cases
// may stand in it or be left out. A path that the schema does not know stops the start of the server (or,
// once that is over, gives kNotFound).
Status agt_cb_register_edit2_callback(const char *module, const char *path, const char *revision,
                                      tk::EditCallback callback);
Status agt_cb_register_get_callback(const char *module, const char *path, const char *revision,
                                    tk::GetCallback callback);
// Removes both kinds; harmless on a path that has none.
void agt_cb_unregister_callbacks(const char *module, const char *path);

// What the server tells the edit callback of a path beyond the general rules.
// options is a set of EditOption; the path's edit callback must be registered already (else kNotFound).
Status agt_cb_set_edit_options(const char *module, const char *path, unsigned options);

Status agt_rpc_register_method(const char *module, const char *rpc, tk::OperationPhase phase,
                               tk::RpcCallback callback);
void agt_rpc_unregister_method(const char *module, const char *rpc);
Status agt_action_register_action(const char *path, tk::OperationPhase phase, tk::ActionCallback callback);
void agt_action_unregister_action(const char *path);

// The value node of a top-level node in running, or null when it holds nothing. The node belongs to the
// toolkit and is good until the next agt_check_cache of the same pointer. *res: 0, or kNotFound when the
// module has no such node.
tk::Value *agt_init_cache(const char *module, const char *name, Status *res);
// Keeps the cache pointer in step with an edit that is being committed.
Status agt_check_cache(tk::Value **cache, tk::Value *newval, tk::Value *curval, tk::EditOp editop);

} // extern "C"

namespace tk {

// Options of an edit row, to be combined with |.
enum EditOption : unsigned {
    optNone = 0,
    emptiedIsDelete = 1u << 0,   // losing its last leaf is told `delete`
    refusesDelete = 1u << 1,     // its `delete` is told before all other calls of `apply`
    refusesReplace = 1u << 2,    // the same for its `replace`
    firstFillIsCreate = 1u << 3, // going from empty to filled by PUT or PATCH is told `create`
    replacedWithEntry = 1u << 4, // told `replace` when the entry around it was replaced
    wholeEntry = 1u << 5,        // nodes inside are not told of the replacement of this entry
    spared = 1u << 6,            // not told when an enclosing entry is deleted
    noRollback = 1u << 7,        // not told `rollback`
    undoesItself = 1u << 8,      // told `rollback` also when its own call failed
    mergedCurrent = 1u << 9, // on a `merge`, curval is the value after the edit, in rollback the one before
    toldWhenSame = 1u << 10, // told of every edit that names it or merges it, although nothing differs
    swappedInRollback = 1u << 11, // child edits have new and current value exchanged in `rollback`
    beforeItsEntries = 1u << 12,  // when told `replace`, deletions inside it follow behind it
    retold = 1u << 13,            // what one of the next two tells again, by a `merge` without child edits
    retells = 1u << 14, // its `merge` or `replace` tells again what is unchanged and `retold` below it
    retellsSiblings = 1u << 15,  // any change of it does the same for the node around it
    withDefaults = 1u << 16,     // leaves with a schema default stand in both values
    deletedLeafStays = 1u << 17, // on a `merge`, a deleted leaf stays in newval and as a child edit's, marked
    toldFirst = 1u << 18, // told before everything else, the nodes around it too; its `delete` after the rest
};

} // namespace tk

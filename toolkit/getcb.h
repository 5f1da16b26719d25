// Retrieval: what a get callback is asked for, and how it answers.
#pragma once

#include "toolkit/types.h"

extern "C" {

// The control block's fields.
tk::Object *getcb_get_obj(const tk::GetBlock *get2cb); // the node retrieved
tk::GetMode getcb_get_mode(const tk::GetBlock *get2cb);
// True when a list may return several entries at once, each closed by getcb_finish_getbulk_entry.
bool getcb_is_getbulk(const tk::GetBlock *get2cb);
// Set when there are further instances, which a get-next call then asks for. Cleared on entry.
void getcb_set_more_data(tk::GetBlock *get2cb, bool more);

// The keys of the instance asked for, ancestors first, in path order. Null at the end.
const tk::Value *getcb_first_key(const tk::GetBlock *get2cb);
const tk::Value *getcb_next_key(const tk::GetBlock *get2cb, const tk::Value *previous);
// The key of the list retrieved, or null when the request leaves it open.
const tk::Value *getcb_find_key_str(const tk::GetBlock *get2cb, const char *module, const char *key);
// The same key name on a level of the path, the outermost list being level 1.
const tk::Value *getcb_find_key_lvl(const tk::GetBlock *get2cb, const char *module, const char *key,
                                    unsigned level);
// True when the key value was given by the client (false: by a get-next walk).
bool getcb_is_key_fixed(const tk::GetBlock *get2cb, const tk::Value *key);

// Children of `parent` that the request wants, in schema order.
tk::Object *getcb_first_requested_child(tk::GetBlock *get2cb, const tk::Object *parent);
tk::Object *getcb_next_requested_child(tk::GetBlock *get2cb, const tk::Object *previous);

// Hands over a child of the node retrieved; the value belongs to the return queue afterwards, whatever the
// status. kInvalidValue: the node does not belong below the object retrieved.
Status getcb_add_return_val(tk::GetBlock *get2cb, tk::Value *value);
// Hands over a key of the list entry returned.
Status getcb_add_return_key(tk::GetBlock *get2cb, tk::Value *key);
// Closes one list entry of a bulk answer; the next entry follows.
void getcb_finish_getbulk_entry(tk::GetBlock *get2cb);

// Makers of leaves. `object` is the leaf's own object or that of its parent; the `2` forms name the
// leaf's module. Null and a status in *res when the schema has no such leaf (kNotFound) or the value is
// none of its type (kInvalidValue). The leaf belongs to the caller until it is handed over.
tk::Value *agt_make_leaf(const tk::Object *object, const char *name, const char *value, Status *res);
tk::Value *agt_make_leaf2(const tk::Object *object, const char *module, const char *name, const char *value,
                          Status *res);
tk::Value *agt_make_uint_leaf(const tk::Object *object, const char *name, std::uint32_t value, Status *res);
tk::Value *agt_make_uint_leaf2(const tk::Object *object, const char *module, const char *name,
                               std::uint32_t value, Status *res);
tk::Value *agt_make_int_leaf(const tk::Object *object, const char *name, std::int32_t value, Status *res);
tk::Value *agt_make_int_leaf2(const tk::Object *object, const char *module, const char *name,
                              std::int32_t value, Status *res);
tk::Value *agt_make_int64_leaf2(const tk::Object *object, const char *module, const char *name,
                                std::int64_t value, Status *res);
tk::Value *agt_make_boolean_leaf(const tk::Object *object, const char *module, const char *name, bool value,
                                 Status *res);
// An empty list entry below an object.
tk::Value *agt_make_list(const tk::Object *object, const char *name, Status *res);

} // extern "C"

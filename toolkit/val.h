// Value trees: the nodes that callbacks are given and the ones that they make.
//
// A node given to a callback belongs to the toolkit and lives as long as the callback, its strings too. A
// node made here belongs to the caller until it is handed over (val_add_child, getcb_add_return_val,
// agt_rpc_add_return_val); one that is not handed over is released by val_free_value.
#pragma once

#include "toolkit/types.h"

extern "C" {

const tk::Object *val_get_obj(const tk::Value *value);
const char *val_get_name(const tk::Value *value);
tk::BaseType val_get_btyp(const tk::Value *value); // the type that the value really has: a union's member
tk::EditOp val_get_editop(const tk::Value *value); // the operation that was asked of the node
Status val_get_status(const tk::Value *value);     // 0, or why the node is unusable
tk::Value *val_get_parent(const tk::Value *value); // null at the top

// The typed simple value. A node of another type gives false, 0 or, for the string, its text as YANG
// writes it; identities come without a prefix. An enumeration is both a string and the number of its name.
// The string is never null.
bool val_get_boolean(const tk::Value *value);
std::int64_t val_get_int64(const tk::Value *value);
std::uint64_t val_get_uint64(const tk::Value *value);
const char *val_get_string(const tk::Value *value);

// Children. A null module name accepts any module. All return null when there is no (further) match.
tk::Value *val_find_child(const tk::Value *parent, const char *module, const char *name);
tk::Value *val_find_next_child(const tk::Value *parent, const char *module, const char *name,
                               const tk::Value *previous);
tk::Value *val_next_child_same(const tk::Value *previous); // next sibling with the same name
tk::Value *val_get_first_child(const tk::Value *parent);
tk::Value *val_get_next_child(const tk::Value *previous);
unsigned val_child_cnt(const tk::Value *parent);
unsigned val_match_child_count(const tk::Value *parent, const char *module, const char *name);
tk::Value *val_get_first_key(const tk::Value *entry);
tk::Value *val_get_next_key(const tk::Value *previous);
// The children that belong to a choice of the schema, one after the other.
tk::Value *val_get_choice_first_set(const tk::Value *parent, const tk::Object *choice);
tk::Value *val_get_choice_next_set(const tk::Object *choice, const tk::Value *previous);

// Writes the node and what is below it to the log, one node a line, indented; secrets as "*****".
// detail kErrorDump writes at error level, kDebugDump at debug level.
void val_dump_value(const tk::Value *value, int startIndent, int detail);

// Making nodes. val_make_simval_obj makes a leaf of the object's type; *res tells why it could not (the
// text is no value of the type: kInvalidValue).
tk::Value *val_new_value();
void val_init_from_template(tk::Value *value, const tk::Object *object);
Status val_set_simval(tk::Value *value, const char *text);
tk::Value *val_make_simval_obj(const tk::Object *object, const char *text, Status *res);
void val_add_child(tk::Value *child, tk::Value *parent);
void val_free_value(tk::Value *value); // null is fine

// Name of a base type: "container", "list", "boolean" and so on.
const char *ncx_get_btyp_string(tk::BaseType type);
// strcmp's sense; a null string sorts before any other.
int xml_strcmp(const char *a, const char *b);

} // extern "C"

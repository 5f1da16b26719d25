// Schema trees. Objects belong to the toolkit and live as long as the server.
#pragma once

#include "toolkit/types.h"

extern "C" {

const char *obj_get_name(const tk::Object *object);
const char *obj_get_mod_name(const tk::Object *object);
tk::BaseType obj_get_btyp(const tk::Object *object);

// A data child by name, looked for through choices and cases too; "input" and "output" below an RPC or
// action. A null module name accepts any module. Null when there is none.
tk::Object *obj_find_child(const tk::Object *object, const char *module, const char *name);
// The same, but a choice or a case is found by its own name.
tk::Object *obj_find_child_choice_case(const tk::Object *object, const char *module, const char *name);
// Direct children in schema order, choices as such.
tk::Object *obj_first_child(const tk::Object *object);
tk::Object *obj_next_child(const tk::Object *previous);

} // extern "C"

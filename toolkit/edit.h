// What an edit callback can ask about the edit that it is told of, and how it reports an error.
#pragma once

#include "toolkit/types.h"

extern "C" {

// The first edited leaf below the node that the callback was told of, or null when there is none.
// newval and curval are the callback's own arguments.
tk::ChildEdit *agt_cfg_first_child_edit(tk::TransactionRecord *txcb, tk::Value *newval, tk::Value *curval);
tk::ChildEdit *agt_cfg_next_child_edit(tk::ChildEdit *edit);
// Fills the three; a value that does not exist is null. The values belong to the edit.
void agt_cfg_child_edit_fields(tk::ChildEdit *edit, std::uint8_t *op, tk::Value **newval, tk::Value **curval);

// The next key on the path from the root to `value`, outermost first; *lastkey is null at first and moves
// along. Null when there is no further key.
tk::Value *agt_get_key_value(tk::Value *value, tk::Value **lastkey);

// Number of error records in the request so far.
unsigned agt_get_error_count(tk::Request *msg);

// Appends an error record. errorInfo is a C string (kind infoString; copied), a value node (infoValue) or
// null (infoNone); errorNode a value node or null. A string becomes the error-message that the client sees.
void agt_record_error(tk::Session *scb, tk::MessageHeader *mhdr, int layer, Status status, void *xmlNode,
                      tk::ErrorInfoKind infoKind, const void *errorInfo, tk::ErrorInfoKind nodeKind,
                      const tk::Value *errorNode);

// Names for logging: "validate", "apply", "commit", "rollback"; "merge" and so on; "--" for anything else.
const char *agt_cbtype_name(tk::EditPhase phase);
const char *op_editop_name(tk::EditOp op);

// The branch for what cannot occur: logs place and status, returns the status.
Status set_error(const char *file, int line, Status status, int sqlError);

} // extern "C"

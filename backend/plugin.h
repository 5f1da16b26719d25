// Key/value requests to the daemons' plug-ins: each is a change that the plug-in takes as the command
// line that key and value stand for.
#pragma once

#include "backend/proto/plugin.pb-c.h"

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

#define PLUGIN_OP_SET "SET"
#define PLUGIN_OP_DELETE "DELETE"
#define PLUGIN_OP_GET_NEXT "GET_NEXT"
#define PLUGIN_SUB_VALUE_SIZE 257

// Storage of a request, owned by the caller, on the stack as a rule. It lives until the request was sent.
typedef struct PluginStorage {
    PluginEntry entry;
    PluginEntry *slot;
    PluginSubEntry **sub_entries;
    struct PluginSubValue *sub_values;
    size_t n_sub;
} PluginStorage;

// One sub-entry of a request.
typedef struct PluginSubValue {
    PluginSubEntry record;
    char text[PLUGIN_SUB_VALUE_SIZE];
} PluginSubValue;

// Prepares a request with one entry for a plug-in, such as "ZQ_SYSLOG". The tag is borrowed.
void ui_plugin_config_init(PluginConfig *request, PluginStorage *storage, const char *plugin);

// The same with `count` sub-entries, for which the caller gives two arrays of that many elements.
void ui_plugin_multi_config_init(PluginConfig *request, PluginStorage *storage, PluginSubEntry **sub_entries,
                                 PluginSubValue *sub_values, size_t count, const char *plugin);

// Fills the entry. The texts are borrowed until the request was sent. 0: done; non-zero: the entry is full.
int ui_fe_plugin_update_kv(PluginConfig *request, const char *op, const char *key, const char *value);

// The same for a request that asks for `count` entries behind `value`.
int ui_fe_plugin_update_kv_count(PluginConfig *request, const char *op, const char *key, const char *value,
                                 int32_t count);

// Fills one sub-entry, in any order; those that are left out are not sent. The key is borrowed, the value is
// copied and cut at 256 bytes. 0: done; non-zero: there is no such sub-entry.
int ui_fe_plugin_update_sub_kv(PluginConfig *request, size_t index, const char *key, const char *value);

// Sends a request and waits; `flag` is 1 or 2. Null on a delivery failure; freed with
// plugin_process_response__free_unpacked.
PluginProcessResponse *ui_fe_plugin_config_send(PluginConfig *request, int32_t flag);

#ifdef __cplusplus
}
#endif

#include "backend/plugin.h"

#include "backend/call.h"

#include <cstddef>
#include <cstdio>
#include <type_traits>

namespace {

// The request's entry is the first member of its storage.
static_assert(std::is_standard_layout_v<PluginStorage> && offsetof(PluginStorage, entry) == 0);

PluginStorage *storageOf(const PluginConfig &request)
{
    if (request.entries == nullptr)
        return nullptr;
    return reinterpret_cast<PluginStorage *>(request.entries[0]);
}

char *borrowed(const char *text)
{
    return const_cast<char *>(text); // records have no const texts; nothing writes to them
}

} // namespace

void ui_plugin_config_init(PluginConfig *request, PluginStorage *storage, const char *plugin)
{
    ui_plugin_multi_config_init(request, storage, nullptr, nullptr, 0, plugin);
}

void ui_plugin_multi_config_init(PluginConfig *request, PluginStorage *storage, PluginSubEntry **sub_entries,
                                 PluginSubValue *sub_values, size_t count, const char *plugin)
{
    plugin_config__init(request);
    plugin_entry__init(&storage->entry);
    storage->slot = &storage->entry;
    storage->sub_entries = sub_entries;
    storage->sub_values = sub_values;
    storage->n_sub = count;
    for (std::size_t i = 0; i < count; i++)
        plugin_sub_entry__init(&sub_values[i].record);
    request->plugin = borrowed(plugin);
    request->entries = &storage->slot;
}

int ui_fe_plugin_update_kv(PluginConfig *request, const char *op, const char *key, const char *value)
{
    PluginStorage *storage = storageOf(*request);
    if (storage == nullptr || request->n_entries != 0)
        return 1;
    storage->entry.op = borrowed(op);
    storage->entry.key = borrowed(key);
    storage->entry.value = borrowed(value);
    request->n_entries = 1;
    return 0;
}

int ui_fe_plugin_update_kv_count(PluginConfig *request, const char *op, const char *key, const char *value,
                                 int32_t count)
{
    const int result = ui_fe_plugin_update_kv(request, op, key, value);
    if (result == 0)
        storageOf(*request)->entry.count = count;
    return result;
}

int ui_fe_plugin_update_sub_kv(PluginConfig *request, size_t index, const char *key, const char *value)
{
    PluginStorage *storage = storageOf(*request);
    if (storage == nullptr || index >= storage->n_sub)
        return 1;
    PluginSubValue &sub = storage->sub_values[index];
    std::snprintf(sub.text, sizeof(sub.text), "%s", value == nullptr ? "" : value);
    sub.record.key = borrowed(key);
    sub.record.value = sub.text;
    return 0;
}

PluginProcessResponse *ui_fe_plugin_config_send(PluginConfig *request, int32_t flag)
{
    PluginStorage *storage = storageOf(*request);
    if (storage != nullptr) {
        storage->entry.sub = storage->sub_entries;
        storage->entry.n_sub = 0;
        for (std::size_t i = 0; i < storage->n_sub; i++) {
            if (storage->sub_values[i].record.key != nullptr)
                storage->sub_entries[storage->entry.n_sub++] = &storage->sub_values[i].record;
        }
    }
    return backend::ask<PluginProcessResponse>({"ui_fe_plugin_config_send", flag}, *request,
                                               plugin_process_response__descriptor);
}

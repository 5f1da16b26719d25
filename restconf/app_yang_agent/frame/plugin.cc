#include "frame/plugin.h"

#include <algorithm>
#include <cstring>

namespace frame {

PluginChange::PluginChange(const char *plugin, std::size_t subEntries)
{
    ui_plugin_multi_config_init(&request_, &storage_, slots_, values_, std::min(subEntries, kMostSubEntries),
                                plugin);
}

PluginChange::~PluginChange()
{
    explicit_bzero(values_, sizeof values_);
}

void PluginChange::sub(std::size_t index, const char *key, const char *value)
{
    ui_fe_plugin_update_sub_kv(&request_, index, key, value);
}

PluginAnswer PluginChange::send(const char *word, const char *key, const char *value, std::int32_t flag)
{
    ui_fe_plugin_update_kv(&request_, word, key, value);
    return PluginAnswer(ui_fe_plugin_config_send(&request_, flag));
}

PluginAnswer askPlugin(const char *plugin, const char *word, const char *key, const char *value,
                       std::int32_t flag)
{
    PluginConfig request;
    PluginStorage storage;
    ui_plugin_config_init(&request, &storage, plugin);
    ui_fe_plugin_update_kv(&request, word, key, value);
    return PluginAnswer(ui_fe_plugin_config_send(&request, flag));
}

Status changePlugin(const EditCall &call, const char *plugin, const char *word, const char *key,
                    const char *value, int line)
{
    if (askPlugin(plugin, word, key, value))
        return kOk;
    locationLines(call, line);
    return kInternal;
}

} // namespace frame

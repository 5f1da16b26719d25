#include "frame/plugin.h"

#include "frame/owned.h"

namespace frame {

namespace {

constexpr std::int32_t kSendFlag = 2;

} // namespace

Status changePlugin(const EditCall &call, const char *plugin, const char *word, const char *key,
                    const char *value, int line)
{
    PluginConfig request;
    PluginStorage storage;
    ui_plugin_config_init(&request, &storage, plugin);
    ui_fe_plugin_update_kv(&request, word, key, value);
    const Owned<PluginProcessResponse, plugin_process_response__free_unpacked> answer(
        ui_fe_plugin_config_send(&request, kSendFlag));
    if (answer)
        return kOk;
    locationLines(call, line);
    return kInternal;
}

} // namespace frame

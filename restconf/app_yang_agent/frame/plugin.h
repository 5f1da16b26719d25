// Changes in the tables of the daemons' plug-ins.
#pragma once

#include "backend/plugin.h"
#include "frame/call.h"
#include "frame/owned.h"

#include <cstddef>

namespace frame {

using PluginAnswer = Owned<PluginProcessResponse, plugin_process_response__free_unpacked>;

inline constexpr std::int32_t kPluginFlag = 2; // what most requests are sent with

// A change with up to seven sub-entries. They may be secrets: all of it is wiped in the end.
class PluginChange {
public:
    explicit PluginChange(const char *plugin, std::size_t subEntries);
    ~PluginChange();
    PluginChange(const PluginChange &) = delete;
    PluginChange &operator=(const PluginChange &) = delete;

    // Fills the sub-entry of that index. The key is borrowed, the value copied.
    void sub(std::size_t index, const char *key, const char *value);
    // Fills the entry, sends, and waits. The texts are borrowed. An empty answer: it could not be delivered.
    PluginAnswer send(const char *word, const char *key, const char *value, std::int32_t flag = kPluginFlag);

private:
    static constexpr std::size_t kMostSubEntries = 7;

    PluginConfig request_;
    PluginStorage storage_;
    PluginSubEntry *slots_[kMostSubEntries];
    PluginSubValue values_[kMostSubEntries];
};

// Sends one change without sub-entries and waits.
PluginAnswer askPlugin(const char *plugin, const char *word, const char *key, const char *value,
                       std::int32_t flag = kPluginFlag);

// Sends one change and waits: PLUGIN_OP_SET or PLUGIN_OP_DELETE with a key and the value text that goes with
// it, to the plug-in of that tag ("ZQ_SYSLOG"). Any answer is a success. kInternal, after the location lines,
// when there is none.
Status changePlugin(const EditCall &call, const char *plugin, const char *word, const char *key,
                    const char *value, int line = __builtin_LINE());

} // namespace frame

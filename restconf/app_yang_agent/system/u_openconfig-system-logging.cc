// Remote log hosts, which the syslog plug-in keeps as lines of host and port.
#include "system/u_openconfig-system.h"

#include "backend/net_text.h"
#include "backend/platform.h"
#include "frame/answer.h"
#include "frame/plugin.h"
#include "frame/rules.h"
#include "frame/stub.h"

#include <cstring>

using namespace frame;

STUB_EDIT(u_openconfig_system_system_logging_edit);
STUB_EDIT(u_openconfig_system_system_logging_console_edit);
STUB_EDIT(u_openconfig_system_system_logging_console_config_edit);
STUB_EDIT(u_openconfig_system_system_logging_console_selectors_edit);
STUB_EDIT(u_openconfig_system_system_logging_console_selectors_selector_edit, const char *, const char *);
STUB_EDIT(u_openconfig_system_system_logging_console_selectors_selector_config_edit, const char *,
          const char *);
STUB_GET(u_openconfig_system_system_logging_console_selectors_selector_state_get, const char *, const char *);
STUB_EDIT(u_openconfig_system_system_logging_remote_servers_remote_server_edit, const char *);
STUB_EDIT(u_openconfig_system_system_logging_remote_servers_remote_server_selectors_edit, const char *);
STUB_EDIT(u_openconfig_system_system_logging_remote_servers_remote_server_selectors_selector_edit,
          const char *, const char *, const char *);
STUB_EDIT(u_openconfig_system_system_logging_remote_servers_remote_server_selectors_selector_config_edit,
          const char *, const char *, const char *);
STUB_GET(u_openconfig_system_system_logging_remote_servers_remote_server_selectors_selector_state_get,
         const char *, const char *, const char *);

extern "C" {

const char *const config_key_name[13] = {
    "no logging on",      "logging enable rfc5424",     "logging console",
    "logging host",       "no logging buffered",        "logging persistence",
    "logging facility",   "logging cli-command",        "logging buffered",
    "no logging enable",  "logging buffered threshold", "fips policy allow udp-logging",
    "logging-rate-limit",
};

const std::uint32_t facility_list_size = 24;
const char *const facility_code[24] = {
    "kern",   "user",   "mail",   "daemon", "auth",   "syslog", "lpr",    "news",
    "uucp",   "sys9",   "sys10",  "sys11",  "sys12",  "sys13",  "sys14",  "cron",
    "local0", "local1", "local2", "local3", "local4", "local5", "local6", "local7",
};

} // extern "C"

namespace {

constexpr const char *kModule = "openconfig-system";
constexpr const char *kPlugin = "ZQ_SYSLOG";
constexpr std::size_t kTextSize = 64; // of a line's value, with its end
const char *const kHostKey = config_key_name[3];

bool isForbidden(const EditCall &call)
{
    if (call.op == load || ui_fips_cc_get_status() == 0)
        return false;
    if (logsErrors())
        log_error("\n[%s] This config cannot be executed in FIPS Common Criteria mode of operation",
                  call.function);
    locationLines(call);
    return true;
}

// A host and its port as one line. A host that does not fit is cut.
struct HostLine {
    HostLine(const char *host, const Value *config)
    {
        char name[kTextSize], address[kTextSize];
        ksnprintf(name, sizeof name, "%s", host);
        ksnprintf(address, sizeof address, std::strchr(name, ':') ? "ipv6 %s" : "%s", name);
        const Value *port = val_find_child(config, kModule, "remote-port");
        if (!port) {
            ksnprintf(text, sizeof text, "%s", address);
            return;
        }
        char number[12];
        ksnprintf(number, sizeof number, "%d", static_cast<int>(val_get_uint64(port)));
        ksnprintf(text, sizeof text, "%s udp-port %s", address, number);
    }

    char text[kTextSize];
};

Status set(const EditCall &call, const char *host, const Value *config)
{
    return changePlugin(call, kPlugin, PLUGIN_OP_SET, kHostKey, HostLine(host, config).text);
}

Status remove(const EditCall &call, const char *host, const Value *config)
{
    return changePlugin(call, kPlugin, PLUGIN_OP_DELETE, kHostKey, HostLine(host, config).text);
}

// Each edited leaf removes the old line.
Status change(const EditCall &call, const char *host)
{
    if (const Status status =
            walkChildEdits(call, [&](const EditedLeaf &) { return remove(call, host, call.curval); }))
        return status;
    return set(call, host, call.newval);
}

Status setNew(const EditCall &call, const char *host)
{
    return set(call, host, call.newval);
}

Status removeCurrent(const EditCall &call, const char *host)
{
    return remove(call, host, call.curval);
}

Status takeBack(const EditCall &call, const char *host)
{
    remove(call, host, call.newval);
    return kOk;
}

Status putBack(const EditCall &call, const char *host)
{
    set(call, host, call.curval);
    return kOk;
}

constexpr Rule<const char *> kServerEdit[] = {
    {inApply, onMerge, change},         {inApply, onReplace | onCreate, setNew},
    {inApply, onDelete, removeCurrent}, {inRollback, onWrite, takeBack},
    {inRollback, onDelete, putBack},
};
static_assert(noneHidden(kServerEdit));

Status removeAll(const EditCall &)
{
    return process_logging_remote_servers_delete_all_edit();
}

constexpr Rule<> kServersEdit[] = {
    {inApply, onReplace, removeAll},
};
static_assert(noneHidden(kServersEdit));

// Asks for the line behind `after` and copies the last one of the answer. False: there is none, or no answer.
bool readNextHost(const char *after, char (&host)[kTextSize])
{
    PluginConfig request;
    PluginStorage storage;
    ui_plugin_config_init(&request, &storage, kPlugin);
    ui_fe_plugin_update_kv_count(&request, PLUGIN_OP_GET_NEXT, kHostKey, after, 1);
    const PluginAnswer answer(ui_fe_plugin_config_send(&request, kPluginFlag));
    if (!answer && logsDebug())
        log_debug("[%s]: LOGGING host retrieve done after value [%s]", __func__, host);
    if (!answer)
        return false;
    if (answer->n_entries == 0) {
        if (isRefused(answer->reply) && answer->reply->reply_buf && logsDebug())
            log_debug("[%s]: Logging host error: %s", __func__, answer->reply->reply_buf);
        return false;
    }
    const char *value = answer->entries[answer->n_entries - 1]->value;
    ksnprintf(host, sizeof host, "%s", value ? value : "");
    return true;
}

} // namespace

extern "C" Status process_logging_remote_servers_delete_all_edit()
{
    char host[kTextSize] = "", removed[kTextSize] = "";
    // Always from the start of the table. A host that comes again did not go: more asking would not end.
    while (readNextHost("", host) && std::strcmp(host, removed) != 0) {
        if (!askPlugin(kPlugin, PLUGIN_OP_DELETE, kHostKey, host))
            break;
        std::memcpy(removed, host, sizeof removed);
    }
    return kOk;
}

extern "C" Status u_openconfig_system_system_logging_remote_servers_edit(EDIT_ARGS)
{
    const EditCall call = EDIT_CALL;
    return isForbidden(call) ? kNotSupported : run(kServersEdit, call);
}

extern "C" Status
u_openconfig_system_system_logging_remote_servers_remote_server_config_edit(EDIT_ARGS, const char *host)
{
    const EditCall call = EDIT_CALL;
    return isForbidden(call) ? kNotSupported : run(kServerEdit, call, host);
}

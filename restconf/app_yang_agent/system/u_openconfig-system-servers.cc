// AAA servers. The device has one table of RADIUS and one of TACACS+ servers; a group's name selects the
// table.
#include "system/u_openconfig-system.h"

#include "backend/aaa.h"
#include "backend/net_text.h"
#include "backend/platform.h"
#include "frame/answer.h"
#include "frame/owned.h"
#include "frame/plugin.h"
#include "frame/rules.h"
#include "frame/stub.h"

#include <cstdlib>
#include <cstring>
#include <memory>

using namespace frame;

#define SERVER_GROUP(name) u_openconfig_system_system_aaa_server_groups_server_group_##name

STUB_EDIT(u_openconfig_system_system_aaa_server_groups_edit);
STUB_GET(u_openconfig_system_system_aaa_server_groups_server_group_servers_server_state_get, const char *,
         const char *);
STUB_GET(u_openconfig_system_system_aaa_server_groups_server_group_servers_server_radius_state_counters_get,
         const char *, const char *);

namespace {

constexpr const char *kModule = "openconfig-system";
constexpr const char *kAugModule = "lyn-openconfig-aaa-aug";
constexpr const char *kRadiusGroup = "radius-default-group", *kTacacsGroup = "tacacs-default-group";
constexpr const char *kTacacs = "TACACS"; // plug-in

// What a server's own `config` leaves for its RADIUS `config`, which is told after it.
char g_server_name[100];
std::uint32_t g_server_timeout;

bool isIpv6(const char *address)
{
    return std::strchr(address, ':') != nullptr;
}

const Value *sourceOf(const EditCall &call)
{
    return call.op == del ? call.curval : call.newval;
}

// A number as text, as plug-ins take it.
struct NumberText {
    explicit NumberText(const Value *leaf)
    {
        if (leaf)
            ksnprintf(text, sizeof text, "%d", static_cast<int>(val_get_uint64(leaf)));
    }

    char text[8] = "";
};

// The group's own config

Status checkGroupName(const EditCall &call, const char *name)
{
    if (xml_strcmp(name, kRadiusGroup) == 0 || xml_strcmp(name, kTacacsGroup) == 0)
        return kOk;
    return recordText(call, kInvalidValue,
                      "valid server group names are radius-default-group and tacacs-default-group");
}

Status readRetransmitAnswer(const EditCall &call, const PluginAnswer &answer)
{
    if (answer && !(isRefused(answer->reply) && answer->reply->reply_buf))
        return kOk;
    if (answer && logsErrors())
        log_error("[%s]: Tacacs retransmit error:[%s]", call.function, answer->reply->reply_buf);
    locationLines(call);
    return kInternal;
}

// A rollback sends the opposite word with the same value.
Status sendRetransmit(const EditCall &call, const char *name)
{
    constexpr std::int32_t flag = 1;
    const Value *attempts = val_find_child(sourceOf(call), kAugModule, "retransmit-attempts");
    if (!attempts || xml_strcmp(name, kTacacsGroup) != 0)
        return kOk;
    const bool removes = (call.op == del) == (call.phase == apply);
    return readRetransmitAnswer(call,
                                askPlugin(kTacacs, removes ? PLUGIN_OP_DELETE : PLUGIN_OP_SET,
                                          "tacacs-server retransmit", NumberText(attempts).text, flag));
}

constexpr Rule<const char *> kGroupConfigEdit[] = {
    {inValidate, onCreate, checkGroupName},
    {inApply | inRollback, onWrite | onDelete, sendRetransmit},
};
static_assert(noneHidden(kGroupConfigEdit));

// The server's own config

Status keepForRadius(const EditCall &call, const char *, const char *)
{
    const Value *config = call.phase == rollback ? call.newval : sourceOf(call);
    if (const Value *timeout = val_find_child(config, kModule, "timeout"))
        g_server_timeout = static_cast<std::uint32_t>(val_get_uint64(timeout));
    if (const Value *name = val_find_child(config, kModule, "name"))
        ksnprintf(g_server_name, sizeof g_server_name, "%s", val_get_string(name));
    return kOk;
}

constexpr Rule<const char *, const char *> kServerConfigEdit[] = {
    {inApply | inRollback, anyOp, keepForRadius},
};

// TACACS+

constexpr std::size_t kTacacsSubEntries = 3;

Status checkTacacsAllowed(const EditCall &call, const char *, const char *)
{
    if (ui_fips_cc_get_admin_state() == 0 || ui_fips_cc_get_allow_aaa_server_any() != 0)
        return kOk;
    if (logsErrors())
        log_error("\n[%s] This config cannot be executed in FIPS Common Criteria mode of operation",
                  call.function);
    locationLines(call);
    return kNotSupported;
}

const char *purposeKey(const EditCall &call, const Value *config, int line = __builtin_LINE())
{
    const Value *purpose = val_find_child(config, kAugModule, "purpose");
    if (!purpose && logsErrors())
        log_error("[%s]:[%d]no purpose given, set it to default\n", call.function, line);
    for (const char *key : {"accounting-only", "authorization-only", "authentication-only"})
        if (purpose && xml_strcmp(val_get_string(purpose), key) == 0)
            return key;
    return "default";
}

// In apply a secret counts only beside a port; the schema's default of the port is given too.
void fillTacacs(const EditCall &call, const Value *config, PluginChange &change)
{
    constexpr int longestSecret = 30;
    const Value *port = val_find_child(config, kModule, "port");
    const Value *secret =
        port || call.phase == rollback ? val_find_child(config, kModule, "secret-key") : nullptr;
    char key[longestSecret + 1] = "";
    if (secret)
        ksnprintf(key, sizeof key, "%s", val_get_string(secret));
    change.sub(0, "auth-port", NumberText(port).text);
    change.sub(1, purposeKey(call, config), "");
    change.sub(2, "key", key);
    explicit_bzero(key, sizeof key);
}

PluginAnswer sendTacacs(const EditCall &call, const char *address)
{
    const bool removes = (call.op == del) == (call.phase == apply);
    PluginChange change(kTacacs, call.op == del ? 0 : kTacacsSubEntries);
    if (call.op != del)
        fillTacacs(call, call.newval, change);
    return change.send(removes ? PLUGIN_OP_DELETE : PLUGIN_OP_SET,
                       isIpv6(address) ? "tacacs-server host ipv6" : "tacacs-server host", address);
}

Status applyTacacs(const EditCall &call, const char *, const char *address)
{
    if (sendTacacs(call, address))
        return kOk;
    locationLines(call);
    return kInternal;
}

Status undoTacacs(const EditCall &call, const char *group, const char *address)
{
    applyTacacs(call, group, address);
    return kOk;
}

constexpr Rule<const char *, const char *> kTacacsConfigEdit[] = {
    {inValidate, onWrite, checkTacacsAllowed},
    {inApply, onWrite | onDelete, applyTacacs},
    {inRollback, onWrite | onDelete, undoTacacs},
};
static_assert(noneHidden(kTacacsConfigEdit));

// RADIUS

constexpr std::int32_t kSet = 1, kDelete = 3; // operation
constexpr std::size_t kLongestText = 100;     // of secret, group and name
constexpr std::size_t kIpv6Room = 33;
constexpr std::uint32_t kIpv6Length = 16;
constexpr std::int32_t kWithSecret = 255; // key_encryption

constexpr struct {
    const char *leaf;
    std::int32_t RadiusServer::*field;
} kSwitches[] = {
    {"dot1x", &RadiusServer::dot1x},         {"mac-auth", &RadiusServer::mac_auth},
    {"no-login", &RadiusServer::no_login},   {"web-auth", &RadiusServer::web_auth},
    {"port-only", &RadiusServer::port_only},
};

// Where the switch's own leaves of a server are found: in its config, else among the edited leaves.
class AugLeaves {
public:
    explicit AugLeaves(const Value *config)
        : config_(config)
    {
    }

    void remember(const EditedLeaf &leaf)
    {
        if (leaf.op < merge || leaf.op > create)
            return;
        for (auto &edited : edited_)
            if (leaf.is(edited.name))
                edited.value = leaf.newval;
    }
    const Value *find(const char *name) const
    {
        if (const Value *leaf = val_find_child(config_, kAugModule, name))
            return leaf;
        for (const auto &edited : edited_)
            if (xml_strcmp(edited.name, name) == 0)
                return edited.value;
        return nullptr;
    }

private:
    struct Edited {
        const char *name;
        const Value *value = nullptr;
    };

    const Value *config_;
    Edited edited_[7] = {{"dot1x"},     {"mac-auth"}, {"no-login"}, {"web-auth"},
                         {"port-only"}, {"priority"}, {"purpose"}};
};

// A request with what it points to. The secret is wiped when it goes.
class RadiusRequest {
public:
    RadiusRequest()
    {
        ui_radius_config_req_init(&request_);
        ui_radius_server_init(&server_);
        request_.servers = &slot_;
        request_.n_servers = 1;
    }
    ~RadiusRequest() { explicit_bzero(secret_, sizeof secret_); }
    RadiusRequest(const RadiusRequest &) = delete;
    RadiusRequest &operator=(const RadiusRequest &) = delete;

    // False: there is no memory.
    bool setAddress(const char *address, bool withLength)
    {
        if (!isIpv6(address)) {
            server_.has_ipv4_address = ip_string_to_address(address, &server_.ipv4_address) != 0;
            return true;
        }
        ipv6_.reset(static_cast<std::uint8_t *>(std::calloc(1, kIpv6Room)));
        if (!ipv6_)
            return false;
        server_.has_ipv6_address = ip6_string_to_address(address, ipv6_.get()) != 0;
        server_.ipv6_address = {kIpv6Length, ipv6_.get()};
        if (withLength)
            server_.ipv6_length = kIpv6Length;
        return true;
    }

    void setConfig(const Value *config)
    {
        const auto number = [config](const char *leaf) {
            const Value *value = val_find_child(config, kModule, leaf);
            return value ? static_cast<std::uint32_t>(val_get_uint64(value)) : 0u;
        };
        server_.auth_port = number("auth-port");
        server_.acct_port = number("acct-port");
        request_.retransmit = server_.retransmit = number("retransmit-attempts");
        if (const Value *secret = val_find_child(config, kModule, "secret-key")) {
            ksnprintf(secret_, sizeof secret_, "%s", val_get_string(secret));
            server_.secret_key = secret_;
            server_.key_encryption = kWithSecret;
        }
    }

    void setGroup(const char *group)
    {
        ksnprintf(group_, sizeof group_, "%s", group);
        server_.server_group = group_;
    }

    // Uses up what the server's own config left.
    void takeNameAndTimeout()
    {
        if (g_server_name[0] != '\0') {
            ksnprintf(name_, sizeof name_, "%s", g_server_name);
            server_.server_name = name_;
            g_server_name[0] = '\0';
        }
        server_.timeout = g_server_timeout;
        g_server_timeout = 0;
    }

    void setAugLeaves(const AugLeaves &leaves)
    {
        for (const auto &row : kSwitches)
            if (const Value *leaf = leaves.find(row.leaf))
                server_.*row.field = val_get_boolean(leaf);
        if (const Value *priority = leaves.find("priority"))
            server_.priority = val_get_uint64(priority) & 0xff;
        setPurpose(leaves.find("purpose"));
    }

    // False: it could not be delivered.
    bool send(std::int32_t operation)
    {
        Owned<RadiusConfigResp, ui_radius_config_resp_free_unpacked> answer;
        request_.operation = operation;
        ui_radius_config_apply(&request_, answer.slot(), 0);
        return static_cast<bool>(answer);
    }

private:
    struct Free {
        void operator()(std::uint8_t *memory) const { std::free(memory); }
    };

    void setPurpose(const Value *purpose)
    {
        const char *text = purpose ? val_get_string(purpose) : "";
        server_.accounting_only = xml_strcmp(text, "authentication-only") != 0;
        server_.authentication_only = xml_strcmp(text, "accounting-only") != 0;
    }

    RadiusConfigReq request_;
    RadiusServer server_;
    RadiusServer *slot_ = &server_;
    std::unique_ptr<std::uint8_t, Free> ipv6_;
    char secret_[kLongestText + 1] = "", group_[kLongestText + 1] = "", name_[kLongestText + 1] = "";
};

Status sendRadius(const EditCall &call, const AugLeaves &leaves, const Value *config, const char *group,
                  const char *address)
{
    RadiusRequest request;
    if (!request.setAddress(address, call.phase == apply)) {
        if (logsDebug())
            log_debug("%s : failed to allocate memory for storing ipv6 address", call.function);
        return kInternal;
    }
    request.setConfig(config);
    request.setGroup(group);
    request.takeNameAndTimeout();
    request.setAugLeaves(leaves);
    if (request.send(call.op == del ? kDelete : kSet))
        return kOk;
    locationLines(call);
    return kInternal;
}

Status applyRadius(const EditCall &call, const char *group, const char *address)
{
    AugLeaves leaves(sourceOf(call));
    if (call.op == merge)
        walkChildEdits(call, [&](const EditedLeaf &leaf) { return leaves.remember(leaf), kOk; });
    return sendRadius(call, leaves, sourceOf(call), group, address);
}

Status undoRadius(const EditCall &call, const char *group, const char *address)
{
    sendRadius(call, AugLeaves(call.newval), call.newval, group, address);
    return kOk;
}

constexpr Rule<const char *, const char *> kRadiusConfigEdit[] = {
    {inApply, anyOp, applyRadius},
    {inRollback, anyOp, undoRadius},
};

// Deletions are passed down, since a server goes from its table by its innermost config only.

Status deleteServers(const EditCall &call, const char *group)
{
    Value *servers = val_find_child(call.curval, kModule, "servers");
    return servers ? SERVER_GROUP(servers_edit)(call.scb, call.msg, apply, del, nullptr, servers, group)
                   : kOk;
}

Status deleteFirstServer(const EditCall &call, const char *group)
{
    Value *server = val_find_child(call.curval, kModule, "server");
    const Value *address = val_find_child(server, kModule, "address");
    return address ? SERVER_GROUP(servers_server_edit)(call.scb, call.msg, apply, del, nullptr, server, group,
                                                       val_get_string(address))
                   : kOk;
}

Status deleteTacacs(const EditCall &call, const char *group, const char *address)
{
    Value *config = val_find_child(call.curval, kModule, "config");
    return config ? SERVER_GROUP(servers_server_tacacs_config_edit)(call.scb, call.msg, apply, del, nullptr,
                                                                    config, group, address)
                  : kOk;
}

Status deleteRadius(const EditCall &call, const char *group, const char *address)
{
    Value *config = val_find_child(call.curval, kModule, "config");
    return config ? SERVER_GROUP(servers_server_radius_config_edit)(call.scb, call.msg, apply, del, nullptr,
                                                                    config, group, address)
                  : kOk;
}

// The status is that of the RADIUS table.
Status deleteServer(const EditCall &call, const char *group, const char *address)
{
    EditCall inner = call;
    inner.curval = val_find_child(call.curval, kModule, "tacacs");
    deleteTacacs(inner, group, address);
    inner.curval = val_find_child(call.curval, kModule, "radius");
    return deleteRadius(inner, group, address);
}

constexpr Rule<const char *> kGroupEdit[] = {{inApply, onDelete, deleteServers}};
constexpr Rule<const char *> kServersEdit[] = {{inApply, onDelete, deleteFirstServer}};
constexpr Rule<const char *, const char *> kServerEdit[] = {{inApply, onDelete, deleteServer}};
constexpr Rule<const char *, const char *> kTacacsEdit[] = {{inApply, onDelete, deleteTacacs}};
constexpr Rule<const char *, const char *> kRadiusEdit[] = {{inApply, onDelete, deleteRadius}};

} // namespace

extern "C" Status u_openconfig_system_system_aaa_server_groups_server_group_edit(EDIT_ARGS, const char *name)
{
    return run(kGroupEdit, EDIT_CALL, name);
}

extern "C" Status u_openconfig_system_system_aaa_server_groups_server_group_config_edit(EDIT_ARGS,
                                                                                        const char *name)
{
    return run(kGroupConfigEdit, EDIT_CALL, name);
}

extern "C" Status u_openconfig_system_system_aaa_server_groups_server_group_servers_edit(EDIT_ARGS,
                                                                                         const char *name)
{
    return run(kServersEdit, EDIT_CALL, name);
}

extern "C" Status
u_openconfig_system_system_aaa_server_groups_server_group_servers_server_edit(EDIT_ARGS, const char *name,
                                                                              const char *address)
{
    return run(kServerEdit, EDIT_CALL, name, address);
}

extern "C" Status u_openconfig_system_system_aaa_server_groups_server_group_servers_server_config_edit(
    EDIT_ARGS, const char *name, const char *address)
{
    return run(kServerConfigEdit, EDIT_CALL, name, address);
}

extern "C" Status u_openconfig_system_system_aaa_server_groups_server_group_servers_server_tacacs_edit(
    EDIT_ARGS, const char *name, const char *address)
{
    return run(kTacacsEdit, EDIT_CALL, name, address);
}

extern "C" Status u_openconfig_system_system_aaa_server_groups_server_group_servers_server_tacacs_config_edit(
    EDIT_ARGS, const char *name, const char *address)
{
    return run(kTacacsConfigEdit, EDIT_CALL, name, address);
}

extern "C" Status u_openconfig_system_system_aaa_server_groups_server_group_servers_server_radius_edit(
    EDIT_ARGS, const char *name, const char *address)
{
    return run(kRadiusEdit, EDIT_CALL, name, address);
}

extern "C" Status u_openconfig_system_system_aaa_server_groups_server_group_servers_server_radius_config_edit(
    EDIT_ARGS, const char *name, const char *address)
{
    return run(kRadiusConfigEdit, EDIT_CALL, name, address);
}

// NTP: the switch and the servers.
#include "system/u_openconfig-system.h"

#include "backend/platform.h"
#include "backend/system.h"
#include "frame/answer.h"
#include "frame/owned.h"
#include "frame/rules.h"
#include "frame/stub.h"

#include <arpa/inet.h>

#include <cstring>

using namespace frame;

STUB_EDIT(u_openconfig_system_system_ntp_edit);
STUB_EDIT(u_openconfig_system_system_ntp_ntp_keys_edit);
STUB_EDIT(u_openconfig_system_system_ntp_ntp_keys_ntp_key_edit, std::uint16_t);
STUB_EDIT(u_openconfig_system_system_ntp_ntp_keys_ntp_key_config_edit, std::uint16_t);
STUB_EDIT(u_openconfig_system_system_ntp_servers_edit);
STUB_EDIT(u_openconfig_system_system_ntp_servers_server_edit, const char *);

namespace {

constexpr const char *kModule = "openconfig-system";
constexpr std::int32_t kSendFlag = 2;
constexpr std::int32_t kGlobalSwitch = 1, kSettings = 2;  // config_kind
constexpr std::int32_t kAdd = 1, kRemove = 3;             // server_op
constexpr std::int32_t kIpv4 = 4, kIpv6 = 8, kName = 512; // addr_type
constexpr char kIsThere[] = "Error: The server/peer association entry is already present";

using Answer = Owned<NtpGlobalConfig, ntp_global_config__free_unpacked>;

struct NtpRequest : NtpGlobalConfig {
    explicit NtpRequest(std::int32_t kind) { ui_ntp_global_config_init(this, &storage), config_kind = kind; }
    Answer send() { return Answer(ui_fe_ntp_global_config(this, kSendFlag)); }

    NtpGlobalStorage storage;
};

Answer sendEnable(bool enabled)
{
    NtpRequest request(kSettings);
    request.has_enable = 1;
    request.enable = enabled ? 1 : 0;
    return request.send();
}

// FIPS allows NTP only together with Common Criteria.
bool isForbidden()
{
    return ui_fips_get_admin_state() != 0 && ui_fips_cc_get_admin_state() == 0;
}

void logNoAnswer(const EditCall &call, bool enabled)
{
    if (logsErrors())
        log_error("[%s]: NTP: failed to enable/disable [%s]\n", call.function, enabled ? "true" : "false");
}

void logReply(const EditCall &call, const CommonResp &reply)
{
    if (logsErrors())
        log_error("[%s]: NTP: pResp->reply->reply_buf[%s]", call.function,
                  reply.reply_buf ? reply.reply_buf : "");
}

bool isRefusedWithText(const Answer &answer)
{
    return isRefused(answer->reply) && answer->reply->reply_buf;
}

// 0 or kInternal. `logMissing` writes the line of an answer that did not come.
template <class LogMissing>
Status read(const EditCall &call, const Answer &answer, LogMissing logMissing)
{
    if (answer && !isRefused(answer->reply))
        return kOk;
    if (answer)
        logReply(call, *answer->reply);
    else
        logMissing();
    locationLines(call);
    return kInternal;
}

Status refuseSwitch(const EditCall &call)
{
    if (!isForbidden())
        return kOk;
    if (logsErrors())
        log_error(
            "\n[%s] This config cannot be executed Error - System in FIPS mode, cannot enable/disable ntp\n",
            call.function);
    locationLines(call);
    recordText(call, kInternal, "Error: System in FIPS mode, cannot enable/disable ntp");
    return kNotSupported;
}

Status sendGlobalSwitch(const EditCall &call)
{
    NtpRequest request(kGlobalSwitch);
    request.global_enable = 1;
    return read(call, request.send(), [&] {
        if (logsErrors())
            log_error("[%s]: NTP: failed to enable/disable global ntp config\n", call.function);
    });
}

Status sendSwitch(const EditCall &call, bool enabled)
{
    return read(call, sendEnable(enabled), [&] { logNoAnswer(call, enabled); });
}

Status applySwitch(const EditCall &call)
{
    const Value *leaf = val_find_child(call.newval, kModule, "enabled");
    if (!leaf)
        return kOk;
    const bool enabled = val_get_boolean(leaf);
    const Status status = sendSwitch(call, enabled);
    return status == kOk && enabled ? sendGlobalSwitch(call) : status;
}

Status removeSwitch(const EditCall &call)
{
    return val_find_child(call.curval, kModule, "enabled") ? sendSwitch(call, false) : kOk;
}

constexpr Rule<> kConfigEdit[] = {
    {inValidate, onWrite, refuseSwitch},
    {inApply, onWrite, applySwitch},
    {inApply, onDelete, removeSwitch},
};
static_assert(noneHidden(kConfigEdit));

// A deleted `enabled` is switched off on the spot, in whatever phase. A refusal, kept in `refused`, does not
// stop the walk.
Status switchOffDeleted(const EditCall &call, const EditedLeaf &leaf, Status &refused)
{
    if (!leaf.is("enabled") || leaf.op != del)
        return kOk;
    const Answer answer = sendEnable(false);
    if (!answer) {
        logNoAnswer(call, false);
        return kInternal;
    }
    if (isRefusedWithText(answer)) {
        logReply(call, *answer->reply);
        locationLines(call);
        refused = kInternal;
    }
    return kOk;
}

Status refuseServer(const EditCall &call, const char *)
{
    if (!isForbidden())
        return kOk;
    if (logsErrors())
        log_error(
            "\n[%s] This config cannot be executed Error - System in FIPS mode, cannot config ntp servers\n",
            call.function);
    locationLines(call);
    recordText(call, kInternal, "Error: System in FIPS mode, cannot config ntp servers");
    return kNotSupported;
}

void setAddress(NtpGlobalConfig &request, const char *address)
{
    unsigned char bytes[sizeof(in6_addr)];
    char *text = const_cast<char *>(address); // borrowed until the request was sent
    if (inet_pton(AF_INET, address, bytes) == 1) {
        request.addr_type = kIpv4;
        request.address = text;
    } else if (inet_pton(AF_INET6, address, bytes) == 1) {
        request.addr_type = kIpv6;
        request.address = text;
    } else {
        request.addr_type = kName;
        request.host_name = text;
    }
}

Status readServerAnswer(const EditCall &call, const Answer &answer, const char *address)
{
    if (answer && !isRefusedWithText(answer))
        return kOk;
    if (answer) {
        logReply(call, *answer->reply);
        static_assert(sizeof kIsThere - 1 == 59);
        if (std::strncmp(answer->reply->reply_buf, kIsThere, sizeof kIsThere - 1) == 0)
            return kOk;
    } else if (logsErrors()) {
        log_error("[%s]: NTP: peer/server config failed for address[%s]\n", call.function, address);
    }
    locationLines(call);
    return kInternal;
}

Status sendServer(const EditCall &call, const char *address)
{
    NtpRequest request(kSettings);
    request.has_server = 1;
    request.server_op = call.op == del ? kRemove : kAdd;
    setAddress(request, address);
    return readServerAnswer(call, request.send(), address);
}

constexpr Rule<const char *> kServerEdit[] = {
    {inValidate, onWrite, refuseServer},
    {inApply, onWrite | onDelete, sendServer},
};
static_assert(noneHidden(kServerEdit));

} // namespace

extern "C" Status u_openconfig_system_system_ntp_config_edit(EDIT_ARGS)
{
    const EditCall call = EDIT_CALL;
    Status refused = kOk;
    if (editop == merge)
        if (const Status status = walkChildEdits(
                call, [&](const EditedLeaf &leaf) { return switchOffDeleted(call, leaf, refused); }))
            return status;
    if (refused && cbtyp == apply)
        return refused;
    const Status status = run(kConfigEdit, call);
    return status ? status : refused;
}

extern "C" Status u_openconfig_system_system_ntp_servers_server_config_edit(EDIT_ARGS, const char *address)
{
    const EditCall call = EDIT_CALL;
    if (editop == merge && cbtyp == apply)
        walkChildEdits(call);
    return run(kServerEdit, call, address);
}

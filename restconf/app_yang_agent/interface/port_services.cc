// The requests of a port that go to other daemons: its voice VLAN, and the switch of the DHCP client.
#include "backend/dhcp_client.h"
#include "frame/owned.h"
#include "interface/u_openconfig-if-ethernet.h"
#include "vlan/vlan_request.h"

#include <cstring>
#include <memory>
#include <new>

using namespace frame;

namespace {

constexpr std::int32_t kSendFlag = 1;
constexpr std::int32_t kPortSwitch = 5; // kind of a DHCP client record
constexpr std::int32_t kClientCall = 2;

bool startsWith(const char *text, const char *start)
{
    return std::strncmp(text, start, std::strlen(start)) == 0;
}

// The port is as it should be already.
bool isDoneAlready(const char *text)
{
    return startsWith(text, "DHCP Client already disabled on interface") ||
        startsWith(text, "DHCP Client already enabled on interface");
}

void logRefusal(const char *function, const char *text)
{
    if (logsErrors())
        log_error("[%s]: ip dhcp-client config Error: %s", function, text);
}

} // namespace

extern "C" {

void restconf_vlan_adapter_cli_to_proto(VlanConfigReq *request, const char *interfaceText, std::uint32_t vlan,
                                        int operation)
{
    vlan_init_type_proto(request->vlan_type, vlan);
    vlan::copyPorts(request->interface_ports, interfaceText);
    request->voice_vlan_op = operation;
}

int process_voice_vlan_set_config(const char *interfaceText, std::uint32_t vlan, int operation)
{
    // Off the stack, which is small: the port lists are long.
    const std::unique_ptr<vlan::Request> request(new (std::nothrow) vlan::Request);
    if (!request) {
        if (logsErrors())
            log_error("%s: Error: memory allocation failed\n", __func__);
        return -1;
    }
    restconf_vlan_adapter_cli_to_proto(&request->record, interfaceText, vlan, operation);
    CommonResp *answer = nullptr;
    const int result = ui_vlan_config_apply(&request->record, &answer, kSendFlag);
    if (result && logsErrors())
        log_error("[%s]: ui_vlan_config_apply failed", __func__);
    ui_vlan_config_resp_free_unpacked(answer);
    return result ? -1 : 0;
}

Status process_set_dhclient_intf_no_enable(const char *interfaceText, int noEnable)
{
    const Owned<DhclientResponse, ui_fe_dhclientv4_response_free> answer(
        ui_fe_dhclientv4_set_intf_no_enable(interfaceText, noEnable));
    if (!answer) {
        logRefusal(__func__, "Config send failed");
        return kInternal;
    }
    const CommonResp *reply = answer->reply;
    if (!reply || reply->ui_err == 0)
        return kOk;
    if (!reply->reply_buf)
        return kInternal;
    logRefusal(__func__, reply->reply_buf);
    return isDoneAlready(reply->reply_buf) ? kOk : kInternal;
}

std::uint16_t process_dhclient_set_intf_no_enbl(const char *interfaceText, int noEnable)
{
    DhclientPortId record;
    CommonResp reply;
    ui_dhclient_port_id_init(&record, &reply);
    record.kind = kPortSwitch;
    record.operation = noEnable ? vlan::kAdd : vlan::kRemove;
    record.port = const_cast<char *>(interfaceText); // borrowed; nothing writes to it
    const Owned<DhclientPortId, dhclient_port_id__free_unpacked> answer(
        ui_fe_dhclientv4_send_be_request(&record, kClientCall));
    if (!answer) {
        logRefusal(__func__, "Config send failed");
        return 1;
    }
    if (!answer->reply || answer->reply->ui_err == 0)
        return 0;
    logRefusal(__func__, answer->reply->reply_buf ? answer->reply->reply_buf : "");
    return static_cast<std::uint16_t>(answer->reply->ui_err);
}

} // extern "C"

#include "vlan/vlan_request.h"

#include "frame/answer.h"

#include <algorithm>
#include <cstring>

using namespace frame;

namespace {

// The text as far as the buffer reaches, terminated.
void copyText(char *buffer, std::size_t size, const char *text)
{
    const std::size_t length = std::min(std::strlen(text), size - 1);
    std::memcpy(buffer, text, length);
    buffer[length] = '\0';
}

} // namespace

namespace vlan {

void copyPorts(char *buffer, const char *text)
{
    copyText(buffer, VLAN_PORTS_BYTES, text);
}

void Mask::set(std::uint32_t vlan)
{
    if (vlan <= kHighest)
        words_[vlan / 32] |= std::uint32_t{1} << vlan % 32;
}

bool Mask::any() const
{
    return std::any_of(words_.begin(), words_.end(), [](std::uint32_t word) { return word != 0; });
}

Request::Request()
{
    ui_vlan_config_req_init(&record);
    ui_vlan_type_init(&type);
    ui_multi_vlan_init(&multi);
    record.vlan_type = &type;
    type.multi_vlan = &multi;
    multi.vlan_mask = {sizeof mask_, mask_};
    record.tagged_ports = tagged_;
    record.untagged_ports = untagged_;
    record.interface_ports = either_;
}

void Request::select(std::uint32_t vlan)
{
    vlan_init_type_proto(&type, vlan);
}

} // namespace vlan

namespace {

using namespace vlan;

constexpr const char *kDefaultVlan = "DEFAULT-VLAN";
constexpr std::int32_t kSendFlag = 1;

std::int32_t operationOf(int isDelete)
{
    return isDelete ? kRemove : kAdd;
}

void addInterface(VlanConfigReq &request, const char *text, int portKind, int isDelete)
{
    struct List {
        char *buffer;
        std::int32_t *operation;
    };
    const List list = portKind == untagged ? List{request.untagged_ports, &request.untagged_op}
        : portKind == tagged               ? List{request.tagged_ports, &request.tagged_op}
                                           : List{request.interface_ports, &request.interface_ports_op};
    if (!list.buffer) {
        if (logsDebug())
            log_debug(" [FAIL]");
        return;
    }
    *list.operation = operationOf(isDelete);
    copyPorts(list.buffer, text);
}

// False when the name says all that there is to say.
bool addName(VlanConfigReq &request, const void *mask, const char *name, int isDelete)
{
    request.operation = operationOf(isDelete);
    if (std::strcmp(name, kDefaultVlan) == 0) {
        request.vlan_type->kind = VLAN_KIND_SINGLE;
        request.vlan_type->id = vlanmask_get_first_vlan(mask);
        request.default_vlan = 1;
        return false;
    }
    if (request.name) {
        request.name_op = operationOf(isDelete);
        copyText(request.name, VLAN_NAME_BYTES, name);
    }
    return true;
}

void logMask(const void *mask)
{
    char text[1000];
    vlanmask_to_string(mask, text, sizeof text);
    log_debug("\n VLAN Adapter - VLANs %s", text);
}

vlan_param paramOf(const void *mask, int selector)
{
    vlan_param param{};
    param.selector = selector == byMask ? VLAN_SELECT_MASK
        : selector == allVlans          ? VLAN_SELECT_ALL
                                        : VLAN_SELECT_SINGLE;
    if (mask)
        std::memcpy(param.mask, mask, sizeof param.mask);
    return param;
}

} // namespace

extern "C" void vlan_init_type_proto(VlanType *type, std::uint32_t vlan)
{
    ui_vlan_type_init(type);
    type->kind = VLAN_KIND_SINGLE;
    type->has_id = 1;
    type->id = vlan;
}

extern "C" void vlan_adapter_restconf_to_proto(const void *mask, int selector, int vlanDelete,
                                               const char *interfaceText, int portKind, int portDelete,
                                               const char *name, int nameDelete, VlanConfigReq *request)
{
    const vlan_param param = paramOf(mask, selector);
    if (mask && logsDebug())
        logMask(mask);
    if (interfaceText)
        addInterface(*request, interfaceText, portKind, portDelete);
    if (!interfaceText && !name)
        request->operation = operationOf(vlanDelete);
    if (name && !addName(*request, mask, name, nameDelete))
        return;
    if (selector == bySingle && !name)
        return;
    if (!ui_vlan_param_encode(request->vlan_type, &param) && logsDebug())
        log_debug("\n ERROR: VLAN Adapter - Parameter encoding failed!");
}

extern "C" Status ui_restconf_vlan_config_apply_send_cleanup(VlanConfigReq *request, CommonResp **answer,
                                                             tk::Session *scb, tk::Request *msg)
{
    char vlans[VLAN_PORTS_BYTES] = {};
    const VlanType *type = request->vlan_type;
    if (type && type->kind == VLAN_KIND_MASK && type->multi_vlan && type->multi_vlan->vlan_mask.data)
        vlanmask_to_string_ext(type->multi_vlan->vlan_mask.data, vlans, sizeof vlans - 1);
    const int result = ui_vlan_config_apply(request, answer, kSendFlag);
    const EditCall call{scb, msg, apply, noOperation, nullptr, nullptr};
    const Status status = readVlanAnswer(call, result, *answer, vlans);
    ui_vlan_config_resp_free_unpacked(*answer);
    *answer = nullptr;
    return status;
}

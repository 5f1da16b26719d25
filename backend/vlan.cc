#include "backend/vlan.h"

#include "backend/call.h"

#include <cstring>

namespace {

constexpr std::int32_t kStaticAddresses = 3;
constexpr std::uint32_t kVlansOfWord = 32;

// An empty text is a text where an operation says so.
char *orAbsent(char *text, std::int32_t operation)
{
    return text != nullptr && (*text != '\0' || operation != 0) ? text : nullptr;
}

// The type without what its kind does not speak of.
VlanType typeToSend(const VlanType &type)
{
    VlanType sent = type;
    if (sent.kind != VLAN_KIND_MASK)
        sent.multi_vlan = nullptr;
    return sent;
}

// All VLANs; bit 0 stands for none.
void setAll(std::uint8_t *mask)
{
    std::memset(mask, 0xff, VLAN_MASK_BYTES);
    std::uint32_t first = 0;
    std::memcpy(&first, mask, sizeof first);
    first &= ~std::uint32_t{1};
    std::memcpy(mask, &first, sizeof first);
    static_assert(sizeof first * 8 == kVlansOfWord);
}

bool hasMaskBuffer(const VlanType &type)
{
    return type.multi_vlan != nullptr && type.multi_vlan->vlan_mask.data != nullptr &&
        type.multi_vlan->vlan_mask.len == VLAN_MASK_BYTES;
}

} // namespace

void ui_vlan_config_req_init(VlanConfigReq *request)
{
    vlan_config_req__init(request);
}

void ui_vlan_type_init(VlanType *type)
{
    vlan_type__init(type);
}

void ui_multi_vlan_init(MultiVlan *mask)
{
    multi_vlan__init(mask);
}

int ui_vlan_param_encode(VlanType *type, const vlan_param *param)
{
    if (type == nullptr || param == nullptr)
        return 0;
    if (param->selector == VLAN_SELECT_SINGLE)
        return type->kind == VLAN_KIND_SINGLE && type->id != 0;
    const bool isAll = param->selector == VLAN_SELECT_ALL;
    if (!isAll && (param->selector != VLAN_SELECT_MASK || vlanmask_get_first_vlan(param->mask) == 0))
        return 0;
    if (!hasMaskBuffer(*type))
        return 0;
    type->kind = VLAN_KIND_MASK;
    type->multi_vlan->has_vlan_mask = 1;
    if (isAll)
        setAll(type->multi_vlan->vlan_mask.data);
    else
        std::memcpy(type->multi_vlan->vlan_mask.data, param->mask, VLAN_MASK_BYTES);
    return 1;
}

int ui_vlan_config_apply(VlanConfigReq *request, CommonResp **answer, std::int32_t)
{
    VlanConfigReq sent = *request;
    VlanType type = VLAN_TYPE__INIT;
    if (sent.vlan_type != nullptr) {
        type = typeToSend(*sent.vlan_type);
        sent.vlan_type = type.kind == 0 ? nullptr : &type;
    }
    sent.name = orAbsent(sent.name, sent.name_op);
    sent.tagged_ports = orAbsent(sent.tagged_ports, sent.tagged_op);
    sent.untagged_ports = orAbsent(sent.untagged_ports, sent.untagged_op);
    sent.interface_ports = orAbsent(sent.interface_ports, sent.interface_ports_op | sent.voice_vlan_op);
    return backend::apply("ui_vlan_config_apply", &sent, common_resp__descriptor, answer);
}

void ui_vlan_config_resp_free_unpacked(CommonResp *answer)
{
    common_resp__free_unpacked(answer, nullptr);
}

int mac_config_req_proto_init(MacConfigReq *request, mac_config_storage *storage, std::int32_t kind)
{
    if (request == nullptr || storage == nullptr || kind != kStaticAddresses)
        return 0;
    mac_config_req__init(request);
    mac_config_entry__init(&storage->entry);
    storage->list[0] = &storage->entry;
    request->entries = storage->list;
    return 1;
}

int ui_mac_config_apply(MacConfigReq *request, CommonResp **answer)
{
    return backend::applyAndRead("ui_mac_config_apply", request, answer);
}

#include "acl/src/acl_binding.h"

#include <cstdlib>
#include <cstring>
#include <string_view>

namespace acl {

namespace {

constexpr std::uint32_t kIngress = 1, kEgress = 2;
constexpr std::size_t kPortMaskBytes = 256;
constexpr Status kNoMemory = 3;

// A key of any other form names nothing.
void takeInterface(const char *key, AclInterfBinding &binding)
{
    const std::string_view text = key;
    if (text.substr(0, 4) == "vlan")
        binding.vlan = static_cast<std::uint32_t>(std::strtol(key + std::strspn(key, "vlan "), nullptr, 10));
    else if (text.substr(0, 3) == "lag" || text.substr(0, 8) == "ethernet")
        binding.interfaces = const_cast<char *>(key); // records have no const texts
}

Status sendWithPortMask(int isIngress, AclInterfBinding &binding)
{
    auto *mask = static_cast<char *>(sys_allocate_memory(kPortMaskBytes));
    if (!mask) {
        logPlace();
        return kNoMemory;
    }
    std::memset(mask, '0', kPortMaskBytes - 1);
    mask[kPortMaskBytes - 1] = '\0';
    binding.port_mask = mask;
    const Status status = restconf_apply_bind_unbind_request(isIngress, &binding);
    binding.port_mask = nullptr;
    sys_free_memory(mask);
    return status;
}

Status changeAll(EditOp op, const char *interface, const Value *value, int isIngress)
{
    const Value *sets = child(value, isIngress ? "ingress-acl-sets" : "egress-acl-sets");
    return forEachEntry(sets, isIngress ? "ingress-acl-set" : "egress-acl-set", [=](const Value *set) {
        const char *name = nullptr, *type = nullptr;
        acl_get_name_and_type(set, &name, &type);
        if (name)
            return restconf_process_acl_bind_unbind(op, interface, name, type, isIngress);
        if (logsErrors())
            log_error("Either acl-name or acl-type is NULL\n");
        return kOk;
    });
}

} // namespace

} // namespace acl

using namespace acl;

extern "C" {

Status restconf_process_acl_bind_unbind(EditOp op, const char *interface, const char *name, const char *type,
                                        int isIngress)
{
    AclInterfBinding binding = ACL_INTERF_BINDING__INIT;
    if (op != create && op != del) {
        if (logsDebug())
            log_debug("Operation not supported : %d \n", op);
        return kOk;
    }
    binding.operation = op == create ? kAdd : kRemove;
    binding.direction = isIngress ? kIngress : kEgress;
    takeInterface(interface, binding);
    binding.acl_name = const_cast<char *>(name);
    binding.acl_type = get_acl_type(type);
    if (const auto number = numberOf(name, binding.acl_type)) {
        binding.acl_num = *number;
        binding.op_acl_num = 1;
    }
    // The hardware filters MAC addresses only on the way in.
    if (binding.acl_type == kL2 && binding.direction == kEgress)
        return kNotSupported;
    return sendWithPortMask(isIngress, binding);
}

Status restconf_apply_bind_unbind_request(int, AclInterfBinding *binding)
{
    SecurityAnswer sent;
    Status status = exchange(binding->base, binding->acl_type, SEC_MSG_ACL_BINDING, sent) ? kInternal : kOk;
    if (!sent) {
        logPlace();
        return kInternal;
    }
    const auto &answer = *reinterpret_cast<const CommonResp *>(sent.get());
    if (answer.app_err == kRefused) {
        logPlace();
        status = kInternal;
    }
    if (answer.reply_buf && std::strstr(answer.reply_buf, "This ACL is not applied currently"))
        status = kOk;
    return status;
}

Status acl_configure_bindings_on_interf(const char *interface, const Value *value, int isIngress)
{
    return changeAll(create, interface, value, isIngress);
}

Status acl_remove_bindings_from_interf(const char *interface, const Value *value, int isIngress)
{
    return changeAll(del, interface, value, isIngress);
}

Status acl_get_interface(const Value *value, const char **interface)
{
    const Value *key = val_get_first_key(value);
    *interface = key ? val_get_string(key) : nullptr;
    return kOk;
}

Status restconf_remove_all_acl_bindings_from_all_interfaces(const Value *interfaces)
{
    return forEachEntry(interfaces, "interface", [](const Value *value) {
        const char *key = nullptr;
        acl_get_interface(value, &key);
        if (!key)
            return kOk;
        const Status status = acl_remove_bindings_from_interf(key, value, 1);
        return status ? status : acl_remove_bindings_from_interf(key, value, 0);
    });
}

} // extern "C"

#include "system/u_lyn-openconfig-system-aug.h"

#include "frame/rules.h"
#include "frame/stub.h"

using namespace frame;

USER_UNIT(lyn_openconfig_system_aug);
STUB_EDIT(u_lyn_openconfig_system_aug_system_config_default_gateway_edit);
STUB_EDIT(u_lyn_openconfig_system_aug_system_config_default_gateway_address_config_edit, const char *);
STUB_GET(u_lyn_openconfig_system_aug_system_config_default_gateway_address_state_get, const char *);
STUB_EDIT(u_lyn_openconfig_system_aug_system_config_ipv4_edit);
STUB_EDIT(u_lyn_openconfig_system_aug_system_config_ipv4_address_config_edit, const char *);
STUB_GET(u_lyn_openconfig_system_aug_system_config_ipv4_address_state_get, const char *);
STUB_EDIT(u_lyn_openconfig_system_aug_system_config_ipv6_edit);
STUB_EDIT(u_lyn_openconfig_system_aug_system_config_ipv6_address_config_edit, const char *);
STUB_GET(u_lyn_openconfig_system_aug_system_config_ipv6_address_state_get, const char *);

namespace {

Status require(const EditCall &call, const Value *value, int line = __builtin_LINE())
{
    if (value)
        return kOk;
    locationLines(call, line);
    return kInternal;
}

Status checkNew(const EditCall &call, const char *)
{
    return require(call, call.newval);
}

Status checkCurrent(const EditCall &call, const char *)
{
    return require(call, call.curval);
}

Status checkCurrentConfig(const EditCall &call, const char *)
{
    return require(call, val_find_child(call.curval, "lyn-openconfig-system-aug", "config"));
}

constexpr Rule<const char *> kAddressEdit[] = {
    {inApply, onCreate, checkNew},
    {inApply, onDelete, checkCurrent},
};
static_assert(noneHidden(kAddressEdit));

constexpr Rule<const char *> kIpv6AddressEdit[] = {
    {inApply, onCreate, checkNew},
    {inApply, onDelete, checkCurrentConfig},
};
static_assert(noneHidden(kIpv6AddressEdit));

} // namespace

extern "C" Status u_lyn_openconfig_system_aug_system_config_default_gateway_address_edit(EDIT_ARGS,
                                                                                         const char *address)
{
    return run(kAddressEdit, EDIT_CALL, address);
}

extern "C" Status u_lyn_openconfig_system_aug_system_config_ipv4_address_edit(EDIT_ARGS, const char *address)
{
    return run(kAddressEdit, EDIT_CALL, address);
}

extern "C" Status u_lyn_openconfig_system_aug_system_config_ipv6_address_edit(EDIT_ARGS, const char *address)
{
    return run(kIpv6AddressEdit, EDIT_CALL, address);
}

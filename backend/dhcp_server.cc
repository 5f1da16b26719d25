#include "backend/dhcp_server.h"

#include "backend/call.h"
#include "backend/net_text.h"

#include <algorithm>
#include <array>
#include <cstring>

using backend::ask;

static_assert(sizeof(dhcp4_subnet_config) == 1294);
static_assert(offsetof(dhcp4_subnet_config, pool_name) == 8);
static_assert(offsetof(dhcp4_subnet_config, lease_days) == 680);
static_assert(offsetof(dhcp4_subnet_config, lease_hours) == 684);
static_assert(offsetof(dhcp4_subnet_config, lease_minutes) == 688);
static_assert(offsetof(dhcp4_subnet_config, no) == 700);
static_assert(offsetof(dhcp4_subnet_config, option_format) == 704);
static_assert(offsetof(dhcp4_subnet_config, option_named) == 708);
static_assert(offsetof(dhcp4_subnet_config, option_name) == 709);
static_assert(offsetof(dhcp4_subnet_config, option_set) == 967);
static_assert(offsetof(dhcp4_subnet_config, dhcp_value) == 969);
static_assert(offsetof(dhcp4_subnet_config, option_number) == 1225);
static_assert(offsetof(dhcp4_subnet_config, excluded_address) == 1242);
static_assert(offsetof(dhcp4_subnet_config, excluded_count) == 1250);
static_assert(offsetof(dhcp4_subnet_config, excluded_kind) == 1252);
static_assert(sizeof(dhcps_option_row) == 140);

namespace {

// What a caller left unterminated ends at the end of its field.
template <std::size_t N>
char *terminated(char (&text)[N])
{
    text[N - 1] = '\0';
    return text;
}

// The record as a message; `config` is the caller's own copy and outlives it. Zero numbers say nothing.
class PoolRequest {
public:
    explicit PoolRequest(dhcp4_subnet_config &config)
    {
        dhcps_pool_request__init(&record_);
        dhcps_excluded_address__init(&excluded_);
        record_.pool_name = terminated(config.pool_name);
        record_.subnet_network = config.subnet_network;
        record_.subnet_mask = config.subnet_mask;
        record_.lease_days = config.lease_days;
        record_.lease_hours = config.lease_hours;
        record_.lease_minutes = config.lease_minutes;
        record_.no = config.no;
        record_.excluded_kind = config.excluded_kind;
        excluded_.low_range = config.excluded_address.low_range;
        excluded_.high_range = config.excluded_address.high_range;
        if (config.excluded_kind != 0)
            record_.excluded_address = &excluded_;
        if (config.option_set != 0)
            setOption(config);
    }
    PoolRequest(const PoolRequest &) = delete;
    PoolRequest &operator=(const PoolRequest &) = delete;

    DhcpsResponse *send(const char *call)
    {
        return ask<DhcpsResponse>(call, record_, dhcps_response__descriptor);
    }

private:
    void setOption(dhcp4_subnet_config &config)
    {
        record_.option_set = config.option_set;
        record_.has_option_format = 1;
        record_.option_format = config.option_format;
        record_.option_named = config.option_named;
        record_.option_number = config.option_number;
        record_.dhcp_value = terminated(config.dhcp_value);
        if (config.option_name[0] != '\0')
            record_.option_name = terminated(config.option_name);
    }

    DhcpsPoolRequest record_;
    DhcpsExcludedAddress excluded_;
};

DhcpsResponse *send(const char *call, dhcp4_subnet_config &config)
{
    return PoolRequest(config).send(call);
}

} // namespace

DhcpsResponse *ui_fe_dhpsv4_set_pool_name(const char *name, std::int32_t add)
{
    DhcpsSetPoolNameRequest request = DHCPS_SET_POOL_NAME_REQUEST__INIT;
    request.name = const_cast<char *>(name);
    request.add = add;
    return ask<DhcpsResponse>("ui_fe_dhpsv4_set_pool_name", request, dhcps_response__descriptor);
}

DhcpsResponse *ui_fe_dhpsv4_set_pool_subnet_and_mask(dhcp4_subnet_config config)
{
    return send("ui_fe_dhpsv4_set_pool_subnet_and_mask", config);
}

DhcpsResponse *ui_fe_dhcpsv4_set_lease_time(dhcp4_subnet_config config)
{
    return send("ui_fe_dhcpsv4_set_lease_time", config);
}

DhcpsResponse *ui_fe_dhcpsv4_set_default_router_servers(dhcp4_subnet_config config)
{
    return send("ui_fe_dhcpsv4_set_default_router_servers", config);
}

DhcpsResponse *ui_fe_dhcpsv4_excluded_address(dhcp4_subnet_config config)
{
    return send("ui_fe_dhcpsv4_excluded_address", config);
}

DhcpsResponse *send_dhcp4_option_config_to_plugin(dhcp4_subnet_config config)
{
    return send("send_dhcp4_option_config_to_plugin", config);
}

DhcpsResponse *ui_fe_dhcpv4_server_set_server_state(std::int32_t enable)
{
    DhcpsSetServerStateRequest request = DHCPS_SET_SERVER_STATE_REQUEST__INIT;
    request.enable = enable;
    return ask<DhcpsResponse>("ui_fe_dhcpv4_server_set_server_state", request, dhcps_response__descriptor);
}

void ui_fe_dhcpv4_server_response_free(DhcpsResponse *answer)
{
    dhcps_response__free_unpacked(answer, nullptr);
}

DhcpsAddressPools *ui_fe_dhcpsv4_get_all_address_pools(void)
{
    ValueRequest request = VALUE_REQUEST__INIT;
    return ask<DhcpsAddressPools>("ui_fe_dhcpsv4_get_all_address_pools", request,
                                  dhcps_address_pools__descriptor);
}

int save_static_lease_entries_from_plugin_response(const DhcpsAddressPools *answer, int, std::size_t pool,
                                                   dhcps_static_slot *table)
{
    std::fill_n(table, DHCPS_STATIC_SLOTS, dhcps_static_slot{});
    if (pool >= answer->n_pools || answer->pools[pool]->n_static_leases == 0)
        return -1;
    const DhcpsAddressPool &from = *answer->pools[pool];
    int filled = 0;
    for (std::size_t i = 0; i < from.n_static_leases && filled < DHCPS_STATIC_SLOTS; i++) {
        const DhcpsStaticLease &lease = *from.static_leases[i];
        dhcps_static_slot &slot = table[filled];
        if (lease.address == 0 || lease.mac.len != sizeof(slot.mac))
            continue;
        slot.address = lease.address;
        std::memcpy(slot.mac, lease.mac.data, sizeof(slot.mac));
        filled++;
    }
    return filled;
}

// The addresses that the DHCP server has given away.
#include "backend/dhcp_server.h"
#include "backend/net_text.h"
#include "dhcp/lease_file.h"
#include "dhcp/pool_request.h"
#include "dhcp/u_lyn-openconfig-dhcp-server.h"
#include "frame/leaves.h"
#include "frame/owned.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>

using namespace frame;

namespace {

using namespace dhcp;

constexpr std::int32_t kLeaseType = 1; // of every lease
constexpr int kSaveFlag = 1;

struct FreeText {
    void operator()(char *text) const { sys_free_memory(text); }
};
using Text = std::unique_ptr<char, FreeText>;
using Pools = Owned<DhcpsAddressPools, dhcps_address_pools__free_unpacked>;

struct GivenAway {
    const char *ip;
    std::int32_t expiration, type;
};
constexpr Leaf<GivenAway> kLeaves[] = {
    {"cli-ip", [](LeafMaker &leaf, const GivenAway &lease) { return leaf.text(lease.ip); }},
    {"lease-expiration",
     [](LeafMaker &leaf, const GivenAway &lease) { return leaf.integer(lease.expiration); }},
    {"lease-type", [](LeafMaker &leaf, const GivenAway &lease) { return leaf.integer(lease.type); }},
};

// The walk over all leases, or the search for one.
class Bindings {
public:
    Bindings(GetBlock *get2cb, const OwnKey<const char *> &client)
        : get2cb_(get2cb)
        , key_(client.present ? client.value : nullptr)
        , isBulk_(!client.fixed)
    {
    }

    Status granted();
    Status fixed();
    bool isOver() const { return isOver_; }

private:
    bool isWanted(const char *mac) const { return !key_ || std::strncmp(key_, mac, kMacBytes) == 0; }
    Status add(const char *mac, const char *ip, std::int32_t expiration);
    Status addSlot(const dhcps_static_slot &slot);

    GetBlock *get2cb_;
    const char *key_;
    bool isBulk_, isOver_ = false;
};

Status Bindings::add(const char *mac, const char *ip, std::int32_t expiration)
{
    const Status status =
        fill_obj_values(getcb_get_obj(get2cb_), get2cb_, key_, mac, ip, expiration, kLeaseType);
    if (status && logsDebug())
        log_debug("Failed to fill obj values for %s", mac);
    if (status == kOk && isBulk_)
        getcb_finish_getbulk_entry(get2cb_);
    isOver_ = status || key_;
    return status;
}

Status Bindings::granted()
{
    std::uint32_t count = 0;
    const Text text(dhcpsv4_get_lease_entries_data(&count));
    if (!text)
        return kOk;
    std::string_view rest = text.get();
    Lease lease{};
    Block block = takeBlock(rest, lease);
    if (block == Block::none) {
        isOver_ = true;
        return kInternal;
    }
    for (std::uint32_t handled = 0; block != Block::none && handled < count && !isOver_; ++handled) {
        if (block == Block::whole && isWanted(lease.mac))
            add(lease.mac, lease.address,
                lease.expiration); // a failure ends the walk, without one of its own
        block = takeBlock(rest, lease);
    }
    return kOk;
}

Status Bindings::addSlot(const dhcps_static_slot &slot)
{
    char ip[kAddressBytes], mac[kMacBytes];
    const auto octet = [&](int number) -> unsigned { return get_common_ip_addr_val(slot.address, number); };
    std::snprintf(ip, sizeof ip, "%u.%u.%u.%u", octet(4), octet(3), octet(2), octet(1));
    std::snprintf(mac, sizeof mac, "%02x:%02x:%02x:%02x:%02x:%02x", slot.mac[0], slot.mac[1], slot.mac[2],
                  slot.mac[3], slot.mac[4], slot.mac[5]);
    return isWanted(mac) ? add(mac, ip, 0) : kOk;
}

Status Bindings::fixed()
{
    const Pools pools(ui_fe_dhcpsv4_get_all_address_pools());
    for (std::size_t pool = 0; pools && pool < pools->n_pools; ++pool) {
        dhcps_static_slot table[DHCPS_STATIC_SLOTS];
        if (save_static_lease_entries_from_plugin_response(pools.get(), kSaveFlag, pool, table) == -1)
            continue;
        for (const dhcps_static_slot &slot : table) {
            const Status status = slot.address ? addSlot(slot) : kOk;
            if (isOver_)
                return status;
        }
    }
    return kOk;
}

} // namespace

extern "C" Status fill_obj_values(const Object *binding, GetBlock *get2cb, const char *key, const char *mac,
                                  const char *ip, std::int32_t expiration, std::int32_t type)
{
    const Object *client = obj_find_child(binding, kModule, "cli-id");
    Value *node = client ? val_new_value() : nullptr;
    if (!node)
        return kInternal;
    val_init_from_template(node, client);
    if (!key) {
        char text[kMacBytes];
        copyField(text, mac);
        if (const Status status = val_set_simval(node, text)) {
            val_free_value(node);
            return status;
        }
    }
    if (const Status status = getcb_add_return_key(get2cb, node))
        return status;
    const Status status = returnLeaves(get2cb, kModule, GivenAway{ip, expiration, type}, kLeaves);
    if (status && logsErrors())
        log_error("agt_make_leaf2 failed with reason : %d\n", status);
    return status;
}

extern "C" Status u_lyn_openconfig_dhcp_server_dhcp_server_binding_get(GetBlock *get2cb,
                                                                       OwnKey<const char *> client)
{
    getcb_set_more_data(get2cb, false);
    Bindings bindings(get2cb, client);
    const Status status = bindings.granted();
    return bindings.isOver() ? status : bindings.fixed();
}

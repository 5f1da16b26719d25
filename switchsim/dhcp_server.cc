#include "backend/dhcp_server.h"
#include "backend/net_text.h"
#include "switchsim/device_files.h"
#include "switchsim/family.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <map>
#include <set>
#include <sstream>

namespace switchsim {
namespace {

constexpr std::size_t kMostPools = 100;
constexpr std::uint32_t kFirstGranted = 10, kFirstFixed = 200; // last octets that leases begin with
constexpr std::uint32_t kMinute = 60, kHour = 60 * kMinute, kDay = 24 * kHour;

std::string addressText(std::uint32_t address)
{
    std::array<char, IP_ADDRESS_TEXT_BYTES> text;
    return ip_address_to_string(address, text.data());
}

std::string textOf(const char *text)
{
    return text == nullptr ? "" : text;
}

using Range = std::pair<std::uint32_t, std::uint32_t>;

struct Pool {
    std::uint32_t network = 0, mask = 0; // a mask of 0: none yet
    std::uint32_t lease = kDay;          // seconds
    std::string routers;
    std::set<Range> excluded; // one address is a range with itself
    std::map<std::string, std::string> options;

    bool has(std::uint32_t address) const { return (address & mask) == network; }
};

// "1, 2": all of them good?
bool areAddresses(const std::string &list)
{
    std::istringstream in(list);
    std::string word;
    bool isGood = !list.empty();
    while (std::getline(in, word, ',')) {
        word.erase(0, word.find_first_not_of(' '));
        std::uint32_t address = 0;
        isGood = isGood && ip_string_to_address(word.c_str(), &address) != 0;
    }
    return isGood;
}

std::string nameOf(const DhcpsPoolRequest &request)
{
    return request.option_named != 0 ? textOf(request.option_name) : std::to_string(request.option_number);
}

std::string timeText(std::time_t time)
{
    std::tm parts{};
    std::array<char, 40> text{};
    gmtime_r(&time, &parts);
    std::strftime(text.data(), text.size(), "%w %Y/%m/%d %H:%M:%S", &parts);
    return text.data();
}

// The pools, and the leases that its values say: so many clients have one, and so many have a fixed one.
class DhcpServer : public Family {
public:
    explicit DhcpServer(Device &device)
        : device_(device)
    {
    }

    std::string_view word() const override { return "dhcp-server"; }

    void registerCalls(CallTable &calls) override
    {
        calls.on<DhcpsSetPoolNameRequest, DhcpsResponse>(
            "ui_fe_dhpsv4_set_pool_name", dhcps_set_pool_name_request__descriptor, dhcps_response__descriptor,
            [this](const auto &request, auto &, auto &answering) { setPool(request, answering); });
        calls.on<DhcpsSetServerStateRequest, DhcpsResponse>(
            "ui_fe_dhcpv4_server_set_server_state", dhcps_set_server_state_request__descriptor,
            dhcps_response__descriptor, [this](const auto &request, auto &, auto &answering) {
                setState(request.enable != 0, answering);
            });
        calls.on<ValueRequest, DhcpsAddressPools>(
            "ui_fe_dhcpsv4_get_all_address_pools", value_request__descriptor, dhcps_address_pools__descriptor,
            [this](const auto &, auto &answer, auto &answering) { listPools(answer, answering); });
        onPool(calls, "ui_fe_dhpsv4_set_pool_subnet_and_mask", &DhcpServer::setSubnet);
        onPool(calls, "ui_fe_dhcpsv4_set_lease_time", &DhcpServer::setLease);
        onPool(calls, "ui_fe_dhcpsv4_set_default_router_servers", &DhcpServer::setRouters);
        onPool(calls, "ui_fe_dhcpsv4_excluded_address", &DhcpServer::exclude);
        onPool(calls, "send_dhcp4_option_config_to_plugin", &DhcpServer::setOption);
    }

    void valueChanged(std::string_view name) override
    {
        if (name == "dhcp-leases")
            writeLeases();
    }

    Json show() const override
    {
        Json pools = Json::object();
        for (const auto &[name, pool] : pools_)
            pools[name] = asJson(pool);
        return {{"enabled", device_.values.get("dhcp-server-enabled") != 0}, {"pools", pools}};
    }

private:
    using Change = void (DhcpServer::*)(Pool &, const DhcpsPoolRequest &, Answering &);

    // A change of a pool that is there. What is taken away from one that is gone is gone, too.
    void onPool(CallTable &calls, std::string_view call, Change change)
    {
        calls.on<DhcpsPoolRequest, DhcpsResponse>(
            call, dhcps_pool_request__descriptor, dhcps_response__descriptor,
            [this, change](const auto &request, auto &, auto &answering) {
                const std::string name = textOf(request.pool_name);
                const auto pool = pools_.find(name);
                if (pool != pools_.end())
                    (this->*change)(pool->second, request, answering);
                else if (request.no == 0)
                    answering.refuse("Error: there is no address pool " + name + "\n");
            });
    }

    static Json asJson(const Pool &pool)
    {
        Json json = {{"lease", pool.lease}, {"options", pool.options}};
        if (pool.mask != 0)
            json["network"] = addressText(pool.network) + " " + addressText(pool.mask);
        if (!pool.routers.empty())
            json["routers"] = pool.routers;
        json["excluded"] = Json::array();
        for (const auto &[low, high] : pool.excluded)
            json["excluded"].push_back(addressText(low) + (low == high ? "" : " - " + addressText(high)));
        return json;
    }

    void setPool(const DhcpsSetPoolNameRequest &request, Answering &answering)
    {
        const std::string name = textOf(request.name);
        if (request.add == 0)
            pools_.erase(name);
        else if (name.empty() || name.size() >= sizeof(dhcp4_subnet_config::pool_name))
            answering.refuse("Error: this cannot be the name of an address pool\n");
        else if (pools_.size() >= kMostPools && pools_.count(name) == 0)
            answering.refuse("Error: there is room for " + std::to_string(kMostPools) + " address pools\n");
        else
            pools_[name];
    }

    void setState(bool isOn, Answering &answering)
    {
        if (isOn && device_.values.get("dhcp-client-enabled") != 0)
            return answering.refuse("Error: the DHCP client is enabled\n");
        device_.values.set("dhcp-server-enabled", isOn ? 1 : 0);
    }

    void setSubnet(Pool &pool, const DhcpsPoolRequest &request, Answering &answering)
    {
        const std::uint32_t network = request.subnet_network, mask = request.subnet_mask;
        if ((network & ~mask) != 0)
            return answering.refuse("Error: " + addressText(network) + " is no network of the mask " +
                                    addressText(mask) + "\n");
        for (const auto &[name, other] : pools_) {
            const std::uint32_t common = mask & other.mask;
            if (&other != &pool && other.mask != 0 && (network & common) == (other.network & common))
                return answering.refuse("Error: the network overlaps with that of address pool " + name +
                                        "\n");
        }
        pool.network = network;
        pool.mask = mask;
    }

    void setLease(Pool &pool, const DhcpsPoolRequest &request, Answering &)
    {
        pool.lease = request.no != 0
            ? kDay
            : request.lease_days * kDay + request.lease_hours * kHour + request.lease_minutes * kMinute;
    }

    void setRouters(Pool &pool, const DhcpsPoolRequest &request, Answering &answering)
    {
        const std::string routers = textOf(request.dhcp_value);
        if (request.no != 0)
            pool.routers.clear();
        else if (areAddresses(routers))
            pool.routers = routers;
        else
            answering.refuse("Error: " + routers + " are no addresses of routers\n");
    }

    void exclude(Pool &pool, const DhcpsPoolRequest &request, Answering &answering)
    {
        const DhcpsExcludedAddress *given = request.excluded_address;
        const std::uint32_t low = given == nullptr ? 0 : given->low_range;
        const std::uint32_t high =
            given == nullptr || request.excluded_kind != DHCPS_EXCLUDE_RANGE ? low : given->high_range;
        if (request.no != 0)
            pool.excluded.erase({low, high});
        else if (high < low)
            answering.refuse("Error: the range ends before it begins\n");
        else if (!pool.has(low) || !pool.has(high))
            answering.refuse("Error: " + addressText(pool.has(low) ? high : low) +
                             " is not in the pool's network\n");
        else
            pool.excluded.insert({low, high});
    }

    void setOption(Pool &pool, const DhcpsPoolRequest &request, Answering &answering)
    {
        const std::string value = textOf(request.dhcp_value);
        if (request.no != 0)
            pool.options.erase(nameOf(request));
        else if (request.option_format == DHCPS_FORMAT_IP && !areAddresses(value))
            answering.refuse("Error: " + value + " are no addresses\n");
        else
            pool.options[nameOf(request)] = value;
    }

    // The fixed leases are those of the first pool that has a network.
    const Pool *leasingPool() const
    {
        const auto found =
            std::find_if(pools_.begin(), pools_.end(), [](const auto &row) { return row.second.mask != 0; });
        return found == pools_.end() ? nullptr : &found->second;
    }

    void listPools(DhcpsAddressPools &answer, Answering &answering) const
    {
        std::vector<DhcpsAddressPool *> pools;
        for (const auto &[name, pool] : pools_) {
            auto *listed = answering.make(dhcps_address_pool__init);
            listed->name = answering.keep(name);
            if (&pool == leasingPool())
                listFixed(pool, *listed, answering);
            pools.push_back(listed);
        }
        answer.n_pools = pools.size();
        answer.pools = answering.makeList(pools);
    }

    void listFixed(const Pool &pool, DhcpsAddressPool &listed, Answering &answering) const
    {
        std::vector<DhcpsStaticLease *> leases;
        for (std::int32_t i = 0; i < device_.values.get("dhcp-static-leases"); i++) {
            auto *lease = answering.make(dhcps_static_lease__init);
            lease->has_address = lease->has_mac = 1;
            lease->address = pool.network + kFirstFixed + static_cast<std::uint32_t>(i);
            const std::array<char, 6> mac = {2, 0, 0, 0, 1, static_cast<char>(i)};
            lease->mac.len = mac.size();
            lease->mac.data =
                reinterpret_cast<std::uint8_t *>(answering.keep(std::string_view(mac.data(), mac.size())));
            leases.push_back(lease);
        }
        listed.n_static_leases = leases.size();
        listed.static_leases = answering.makeList(leases);
    }

    void writeLeases() const
    {
        const std::int32_t count = device_.values.get("dhcp-leases");
        const Pool *pool = leasingPool();
        const std::uint32_t network = pool == nullptr ? 0x0a000000 : pool->network;
        const std::time_t now = std::time(nullptr);
        std::string text = "# leases of the DHCP server\n";
        for (std::int32_t i = 0; i < count; i++)
            text += block(network + kFirstGranted + static_cast<std::uint32_t>(i), static_cast<unsigned>(i),
                          now, pool == nullptr ? kDay : pool->lease);
        if (count > 0)
            writeDeviceFile(DHCPS_LEASE_FILE, text);
        else if (const auto file = deviceFile(DHCPS_LEASE_FILE)) {
            std::error_code error; // it may not be there
            std::filesystem::remove(*file, error);
        }
    }

    static std::string block(std::uint32_t address, unsigned client, std::time_t now, std::uint32_t lease)
    {
        std::array<char, 24> mac{};
        std::snprintf(mac.data(), mac.size(), "02:00:00:00:%02x:%02x", client >> 8 & 0xffU, client & 0xffU);
        return "lease " + addressText(address) + " {\n  starts " + timeText(now) + ";\n  ends " +
            timeText(now + static_cast<std::time_t>(lease)) +
            ";\n  binding state active;\n  hardware ethernet " + mac.data() + ";\n}\n";
    }

    Device &device_;
    std::map<std::string, Pool> pools_;
};

} // namespace

std::unique_ptr<Family> makeDhcpServer(Device &device)
{
    return std::make_unique<DhcpServer>(device);
}

} // namespace switchsim

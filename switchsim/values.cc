#include "switchsim/values.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace switchsim {
namespace {

constexpr Value kAtStart[] = {
    {"platform-type", 1, 255, "hardware family; 3 has a rear module, 4 and 5 have forwarding profiles"},
    {"fips-admin-state", 0, 1, "FIPS mode is on"},
    {"fips-cc-admin-state", 0, 1, "Common Criteria mode is configured"},
    {"fips-cc-status", 0, 1, "Common Criteria mode is in force"},
    {"fips-cc-allow-aaa-server-any", 0, 1, "Common Criteria mode allows any AAA server"},
    {"dhcp-client-enabled", 0, 1, "the DHCP client is on"},
    {"dhcp-server-enabled", 0, 1, "the DHCP server is on"},
    {"stack-units", 3, 12, "units of the stack"},
    {"download-busy", 0, 1, "an image is being downloaded"},
    {"running-config-dirty", 0, 1, "the running configuration has a line that is not saved"},
    {"unplugged-port", 0, 24, "the port of the unit that has no cable; 0: all have one"},
    {"ports", 24, 512, "ports of the unit"},
    {"poe-budget", 370'000, 10'000'000, "milliwatts that the unit can give to its ports"},
    {"dhcp-leases", 0, 10'000,
     "clients that have a lease of the DHCP server; the file of leases is written anew"},
    {"dhcp-static-leases", 0, 200, "fixed leases in the DHCP server's first pool"},
    {"acl-rules", 4'096, 100'000, "rules that all access lists together may have"},
    {"routes", 3, 1'000'000, "routes in the IPv4 table"},
    {"poe-draw", 6'400, 100'000, "milliwatts that the device on an enabled port takes"},
};

} // namespace

Values::Values()
    : values_(std::begin(kAtStart), std::end(kAtStart))
{
}

std::int32_t Values::get(std::string_view name) const
{
    const auto found =
        std::find_if(values_.begin(), values_.end(), [name](const Value &v) { return v.name == name; });
    if (found == values_.end())
        throw std::logic_error("no value " + std::string(name));
    return found->value;
}

void Values::set(std::string_view name, std::int64_t value)
{
    const auto found =
        std::find_if(values_.begin(), values_.end(), [name](const Value &v) { return v.name == name; });
    if (found == values_.end())
        throw std::invalid_argument("there is no value " + std::string(name) + "; `set` alone lists all");
    if (value < 0 || value > found->highest)
        throw std::invalid_argument(std::string(name) + " takes 0 to " + std::to_string(found->highest));
    found->value = static_cast<std::int32_t>(value);
}

Json Values::list() const
{
    Json list = Json::array();
    for (const Value &value : values_)
        list.push_back({{"name", value.name}, {"value", value.value}, {"meaning", value.meaning}});
    return list;
}

} // namespace switchsim

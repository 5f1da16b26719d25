#include "backend/dhcp_server.h"

#include <string_view>

namespace {

struct Known {
    std::uint8_t number;
    std::int32_t kind;
    std::string_view name;
};
constexpr Known kKnown[] = {
    {1, 1, "subnet-mask"},
    {2, 1, "time-offset"},
    {3, 1, "routers"},
    {4, 1, "time-servers"},
    {6, 1, "domain-name-servers"},
    {7, 1, "log-servers"},
    {12, 1, "host-name"},
    {13, 1, "boot-size"},
    {15, 1, "domain-name"},
    {17, 1, "root-path"},
    {19, 1, "ip-forwarding"},
    {23, 1, "default-ip-ttl"},
    {26, 1, "interface-mtu"},
    {28, 1, "broadcast-address"},
    {33, 1, "static-routes"},
    {42, 1, "ntp-servers"},
    {43, 2, "vendor-encapsulated-options"},
    {44, 1, "netbios-name-servers"},
    {46, 1, "netbios-node-type"},
    {48, 1, "font-servers"},
    {49, 1, "x-display-manager"},
    {60, 1, "vendor-class-identifier"},
    {66, 1, "tftp-server-name"},
    {67, 1, "bootfile-name"},
    {69, 1, "smtp-server"},
    {70, 1, "pop-server"},
};

struct Table {
    dhcps_option_row rows[256] = {};

    constexpr Table()
    {
        for (const Known &known : kKnown) {
            dhcps_option_row &row = rows[known.number];
            row.kind = known.kind;
            for (std::size_t i = 0; i < known.name.size(); i++)
                row.name[i] = known.name[i];
        }
    }
};
constexpr Table kTable;

} // namespace

const dhcps_option_row *const dhcps_option_table = kTable.rows;

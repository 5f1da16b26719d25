// The file in which the DHCP server keeps its leases, in whatever state it is found.
#include "backend/dhcp_server.h"
#include "dhcp/lease_file.h"

#include <cstdlib>
#include <cstring>
#include <string>

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

// Every block gets the walk on, and a whole one holds terminated texts, a client and a good address.
void readLeases(std::string_view text)
{
    for (dhcp::Lease lease{};;) {
        const std::size_t before = text.size();
        const dhcp::Block found = dhcp::takeBlock(text, lease);
        require(text.size() < before || before == 0);
        if (found == dhcp::Block::none)
            return require(text.empty());
        if (found != dhcp::Block::whole)
            continue;
        std::uint32_t address = 0;
        require(std::memchr(lease.mac, '\0', sizeof lease.mac) != nullptr && lease.mac[0] != '\0');
        require(std::memchr(lease.address, '\0', sizeof lease.address) != nullptr);
        require(dhcps_get_ip_from_str(lease.address, &address) != 0);
        require(lease.expiration >= 0);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    readLeases(text);
    readLeases("lease 10.0.0.1 {\n" + text); // most texts are no block by themselves
    readLeases("lease 10.0.0.1 {\n  hardware ethernet 1;\n  ends " + text + ";\n}\n");
    char value[256];
    std::strncpy(value, text.c_str(), sizeof value - 1);
    value[sizeof value - 1] = '\0';
    require(dhcps_update_option_value_ip_str(value, sizeof value) >= 0 && std::strlen(value) < sizeof value);
    std::uint8_t bytes[128];
    require(dhcps_ascii2hex(text.c_str(), bytes, sizeof bytes) <= 128);
    return 0;
}

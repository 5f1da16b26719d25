// The DHCP server of the switch: its pools, the file of the addresses that it has given away, and the texts
// that its options are made of.
#pragma once

#include "backend/proto/common.pb-c.h"
#include "backend/proto/dhcp_server.pb-c.h"

#include <stddef.h>
#include <stdint.h>
#include <time.h>

#ifdef __cplusplus
extern "C" {
#endif

// A request about a pool, as the client library takes it; cleared by its caller. Texts are terminated.
#pragma pack(push, 1)
struct dhcp4_subnet_config {
    uint32_t subnet_network; // in host order, as all addresses
    uint32_t subnet_mask;
    char pool_name[128];
    uint8_t unknown1[544];
    uint32_t lease_days;
    uint32_t lease_hours;
    uint32_t lease_minutes;
    uint8_t unknown2[8];
    uint32_t no;            // 1: remove
    uint32_t option_format; // DHCPS_FORMAT_*
    uint8_t option_named;   // 1: option_name is the option, else option_number
    char option_name[256];
    uint8_t unknown3[2];
    uint8_t option_set; // 1 in every request about an option
    uint8_t unknown4;
    char dhcp_value[256];
    uint8_t option_number;
    uint8_t unknown5[16];
    struct {
        uint32_t low_range, high_range;
    } excluded_address;
    uint16_t excluded_count; // 0
    uint16_t excluded_kind;  // DHCPS_EXCLUDE_*
    uint8_t unknown6[40];
};
#pragma pack(pop)

#define DHCPS_FORMAT_ASCII 0
#define DHCPS_FORMAT_HEX 1
#define DHCPS_FORMAT_IP 2
#define DHCPS_FORMAT_BOOLEAN 3
#define DHCPS_FORMAT_INTEGER 4
#define DHCPS_EXCLUDE_ADDRESS 1
#define DHCPS_EXCLUDE_RANGE 2

// All of these wait for the answer, which is null on a delivery failure and is freed with
// ui_fe_dhcpv4_server_response_free.

// Adds (add 1) or removes (0) a pool. A pool that is there, or not there, already is no failure.
DhcpsResponse *ui_fe_dhpsv4_set_pool_name(const char *name, int32_t add);
// Of the pool pool_name: the network, the lease time, the default routers, an address or a range that is not
// given away, an option.
DhcpsResponse *ui_fe_dhpsv4_set_pool_subnet_and_mask(struct dhcp4_subnet_config config);
DhcpsResponse *ui_fe_dhcpsv4_set_lease_time(struct dhcp4_subnet_config config);
DhcpsResponse *ui_fe_dhcpsv4_set_default_router_servers(struct dhcp4_subnet_config config);
DhcpsResponse *ui_fe_dhcpsv4_excluded_address(struct dhcp4_subnet_config config);
DhcpsResponse *send_dhcp4_option_config_to_plugin(struct dhcp4_subnet_config config);
// Switches the server on (1) or off (0).
DhcpsResponse *ui_fe_dhcpv4_server_set_server_state(int32_t enable);

// Frees an answer; null is allowed.
void ui_fe_dhcpv4_server_response_free(DhcpsResponse *answer);

// The pools with their static leases. Null on a delivery failure; freed with
// dhcps_address_pools__free_unpacked.
DhcpsAddressPools *ui_fe_dhcpsv4_get_all_address_pools(void);

// A static lease; an address of 0 is a free slot.
struct dhcps_static_slot {
    uint32_t address;
    uint8_t mac[6];
};
#define DHCPS_STATIC_SLOTS 128

// Fills a table of DHCPS_STATIC_SLOTS from the pool of that index; what does not fit is left out. `flag`
// is 1. Returns the number of slots filled, -1 if there is no such pool or it has no static lease.
int save_static_lease_entries_from_plugin_response(const DhcpsAddressPools *answer, int flag, size_t pool,
                                                   struct dhcps_static_slot *table);

// The file in which the server keeps the leases that it has granted, on the device.
#define DHCPS_LEASE_FILE "/var/lib/dhcp-server/leases"
#define DHCPS_LEASE_FILE_LIMIT (8u << 20) // bytes that are read of it

// The lease file as one text in memory of malloc, and the number of blocks that begin in it. Null if there is
// no file or no memory.
char *dhcpsv4_get_lease_entries_data(uint32_t *count);

// The word at the beginning of `from` into `text` of `size` bytes, cut to fit; blanks and a brace end it.
// Returns its length.
size_t dhcps_fetch_ip_string(const char *from, char *text, size_t size);

// Stores the address that a dotted text says. Non-zero: done; 0: a bad text, and *address is as before.
int dhcps_get_ip_from_str(const char *text, uint32_t *address);

// How long a lease that ends at that time (UTC) still lasts; 0 for all three when it is over or the time is
// none.
void find_elapsed_lease_time(const struct tm *ends, uint32_t *hours, uint32_t *minutes, uint32_t *seconds);

// Writes the addresses of a text with blanks between them as "A, B, C", in place, in a buffer of `size`
// bytes; what does not fit is left out. Returns how many there were. Whether they are addresses is not looked
// at.
int dhcps_update_option_value_ip_str(char *text, size_t size);

// Reads pairs of hexadecimal digits, with or without colons between them, into at most `size` bytes. Returns
// how many there are, -1 for any other text or too long a one.
int dhcps_ascii2hex(const char *text, uint8_t *bytes, size_t size);

// What is known of an option.
struct dhcps_option_row {
    int32_t kind; // 1: requests name it; 2: the vendor's own options; 0: requests number it
    char name[136];
};
#define DHCPS_OPTION_NAMED 1
// 256 rows, by the option's number.
extern const struct dhcps_option_row *const dhcps_option_table;

#ifdef __cplusplus
}
#endif

// Host name, name servers and NTP of the device.
#pragma once

#include "backend/proto/system.pb-c.h"

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

#define SYSTEM_HOSTNAME_SIZE 256

// Room for the name in a request, of the caller's, on the stack as a rule.
typedef struct SystemInfoStorage {
    char hostname[SYSTEM_HOSTNAME_SIZE];
} SystemInfoStorage;

// Clears a request and its room. The caller fills op (1 set, 3 clear) and, to set, hostname and
// hostname_source.
void ui_system_info_init(SystemInfo *request, SystemInfoStorage *storage);

// Sends a request about the host name and waits; `flag` is 2. Null on a delivery failure; freed with
// system_info__free_unpacked.
SystemInfo *ui_fe_hostname_set(SystemInfo *request, int32_t flag);

#define DNS_SERVER_ADD 1
#define DNS_SERVER_REPLACE 2
#define DNS_SERVER_DELETE 3
#define DNS_SERVER_CLEAR 18

// Room for the one entry of a request, of the caller's.
typedef struct DnsServerStorage {
    DnsServerEntry entry;
    DnsServerEntry *slot;
} DnsServerStorage;

// Clears a request; context 1 is the device's own list.
void ui_dns_server_addr_config_init(DnsServerAddrConfig *request, int32_t context, DnsServerStorage *storage);

// Makes it an addition, a deletion, or a clearing, which has no address (null). The index and the flag are 0.
// The address is borrowed until the request was sent.
void ui_dns_server_addr_set(DnsServerAddrConfig *request, int32_t opcode, int32_t index, const char *address,
                            int32_t flag);

// Clears a request and makes it a replacement of the whole list by `count` entries, whose addresses the
// caller has filled in. `slots` has room for as many pointers. All are borrowed until the request was sent.
void ui_dns_server_addr_replace_init(DnsServerAddrConfig *request, int32_t context, DnsServerStorage *storage,
                                     DnsServerEntry *entries, DnsServerEntry **slots, size_t count);

// Sends a request and waits; `flag` is 1. In the answer's reply app_err 3 tells that an address to be added
// is there already, 2 that one to be deleted is not. Null on a delivery failure; freed with
// ui_dns_server_addr_cfg_free.
DnsServerAddrAnswer *ui_dns_server_addr_common_send(DnsServerAddrConfig *request, int32_t flag);

// Frees an answer; null is allowed.
void ui_dns_server_addr_cfg_free(DnsServerAddrAnswer *answer);

// Room that an NTP request needs besides its record. Nothing for now.
typedef struct NtpGlobalStorage {
    CommonResp reply;
} NtpGlobalStorage;

// Clears a request.
void ui_ntp_global_config_init(NtpGlobalConfig *request, NtpGlobalStorage *storage);

// Sends a request about NTP and waits; `flag` is 2. Null on a delivery failure; freed with
// ntp_global_config__free_unpacked.
NtpGlobalConfig *ui_fe_ntp_global_config(NtpGlobalConfig *request, int32_t flag);

#ifdef __cplusplus
}
#endif

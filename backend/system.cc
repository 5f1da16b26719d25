#include "backend/system.h"

#include "backend/call.h"

using backend::ask;

namespace {

char *borrowed(const char *text)
{
    return const_cast<char *>(text); // records have no const texts; nothing writes to them
}

} // namespace

void ui_system_info_init(SystemInfo *request, SystemInfoStorage *storage)
{
    system_info__init(request);
    *storage = {};
}

SystemInfo *ui_fe_hostname_set(SystemInfo *request, int32_t flag)
{
    return ask<SystemInfo>({"ui_fe_hostname_set", flag}, *request, system_info__descriptor);
}

void ui_dns_server_addr_config_init(DnsServerAddrConfig *request, int32_t context, DnsServerStorage *storage)
{
    dns_server_addr_config__init(request);
    request->context = context;
    dns_server_entry__init(&storage->entry);
    storage->slot = &storage->entry;
    request->servers = &storage->slot;
}

void ui_dns_server_addr_set(DnsServerAddrConfig *request, int32_t opcode, int32_t, const char *address,
                            int32_t)
{
    request->opcode = opcode;
    request->n_servers = address == nullptr ? 0 : 1;
    if (address != nullptr)
        request->servers[0]->address = borrowed(address);
}

void ui_dns_server_addr_replace_init(DnsServerAddrConfig *request, int32_t context, DnsServerStorage *storage,
                                     DnsServerEntry *entries, DnsServerEntry **slots, size_t count)
{
    ui_dns_server_addr_config_init(request, context, storage);
    request->opcode = DNS_SERVER_REPLACE;
    for (size_t i = 0; i < count; i++)
        slots[i] = &entries[i];
    request->servers = slots;
    request->n_servers = count;
}

DnsServerAddrAnswer *ui_dns_server_addr_common_send(DnsServerAddrConfig *request, int32_t flag)
{
    return ask<DnsServerAddrAnswer>({"ui_dns_server_addr_common_send", flag}, *request,
                                    dns_server_addr_answer__descriptor);
}

void ui_dns_server_addr_cfg_free(DnsServerAddrAnswer *answer)
{
    dns_server_addr_answer__free_unpacked(answer, nullptr);
}

void ui_ntp_global_config_init(NtpGlobalConfig *request, NtpGlobalStorage *storage)
{
    ntp_global_config__init(request);
    common_resp__init(&storage->reply);
}

NtpGlobalConfig *ui_fe_ntp_global_config(NtpGlobalConfig *request, int32_t flag)
{
    return ask<NtpGlobalConfig>({"ui_fe_ntp_global_config", flag}, *request, ntp_global_config__descriptor);
}

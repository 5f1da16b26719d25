#include "backend/platform.h"

#include "backend/call.h"
#include "backend/proto/platform.pb-c.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

using backend::ask;
using backend::askValue;

static_assert(sizeof(cu_logging_record) == 848);
static_assert(offsetof(cu_logging_record, module) == 792);
static_assert(offsetof(cu_logging_record, kind) == 796);
static_assert(offsetof(cu_logging_record, event) == 800);

int get_platform_type(void)
{
    return askValue("get_platform_type", 0);
}

int ui_fips_get_admin_state(void)
{
    return askValue("ui_fips_get_admin_state", 0);
}

int ui_fips_cc_get_admin_state(void)
{
    return askValue("ui_fips_cc_get_admin_state", 0);
}

int ui_fips_cc_get_status(void)
{
    return askValue("ui_fips_cc_get_status", 0);
}

int ui_fips_cc_get_allow_aaa_server_any(void)
{
    return askValue("ui_fips_cc_get_allow_aaa_server_any", 0);
}

int is_dhcp_client_enabled(void)
{
    return askValue("is_dhcp_client_enabled", 0);
}

int is_dhcps_enabled(void)
{
    return askValue("is_dhcps_enabled", 0);
}

int shm_object_open(const char *name)
{
    ShmOpenRequest request = SHM_OPEN_REQUEST__INIT;
    request.name = const_cast<char *>(name);
    return askValue("shm_object_open", request.base, 0);
}

int shm_object_get(int handle, const char *field, uint32_t length, void *buffer)
{
    ShmGetRequest request = SHM_GET_REQUEST__INIT;
    request.handle = handle;
    request.field = const_cast<char *>(field);
    request.length = length;
    if (buffer == nullptr)
        return 0;
    auto *answer = ask<ShmGetAnswer>("shm_object_get", request, shm_get_answer__descriptor);
    if (answer == nullptr)
        return 0;
    const std::size_t read = std::min<std::size_t>(answer->data.len, length);
    if (read > 0)
        std::memcpy(buffer, answer->data.data, read);
    shm_get_answer__free_unpacked(answer, nullptr);
    return static_cast<int>(read);
}

int clam_service_release_config_lock(void)
{
    return askValue("clam_service_release_config_lock", 1);
}

int syslog_lib_init(void)
{
    return askValue("syslog_lib_init", 1);
}

int cu_logging_write(const cu_logging_record *record)
{
    if (record == nullptr)
        return 1;
    cu_logging_record copy = *record;
    EventRequest request = EVENT_REQUEST__INIT;
    request.record.len = sizeof(copy);
    request.record.data = reinterpret_cast<std::uint8_t *>(&copy);
    return askValue("cu_logging_write", request.base, 1);
}

const char *cfg_parser_get_err_str_from_err_code(int code)
{
    static constexpr const char *texts[] = {
        "Success",
        "Invalid command",
        "Incomplete command",
        "Ambiguous command",
        "Invalid value",
        "Value out of range",
        "Command not allowed in this mode",
        "Command not supported on this platform",
        "Line too long",
        "Cannot open file",
        "Cannot read file",
        "File is empty",
        "Out of memory",
        "Configuration is locked by another session",
        "Command failed",
    };
    const bool isKnown = code >= 0 && static_cast<std::size_t>(code) < std::size(texts);
    return isKnown ? texts[code] : "Unknown error";
}

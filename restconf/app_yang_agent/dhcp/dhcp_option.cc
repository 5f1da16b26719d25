// The options of a DHCP pool.
#include "dhcp/pool_request.h"
#include "dhcp/u_lyn-openconfig-dhcp-server.h"
#include "frame/rules.h"

#include <cstdio>
#include <cstring>
#include <string>

using namespace frame;

namespace {

using namespace dhcp;

constexpr int kMostAddresses = 3;
constexpr std::uint8_t kVendorOption = 43;
constexpr std::size_t kMostHexBytes = 128; // as two digits each they fill the record's field

// The addresses of an option as the switch takes them.
struct Addresses {
    char text[256];
    int count;

    explicit Addresses(const char *given)
    {
        copyField(text, given);
        count = dhcps_update_option_value_ip_str(text, sizeof text);
    }
};

Status refuseAddresses(const EditCall &call, const char *text)
{
    recordText(call, kInternal, text);
    locationLines(call);
    return kInternal;
}

Status checkAddresses(const EditCall &call, const char *, std::uint8_t)
{
    const Value *leaf = call.newval ? val_find_child(call.newval, kModule, "ip-format") : nullptr;
    if (!leaf)
        return kOk;
    const char *given = val_get_string(leaf);
    if (std::strchr(given, ',')) {
        char text[320];
        std::snprintf(text, sizeof text, "Invalid input ->%s", given);
        return refuseAddresses(call, text);
    }
    return Addresses(given).count > kMostAddresses
        ? refuseAddresses(call, "Error: accepts maximum of 3 values")
        : kOk;
}

// A form that a value may have. `write` fills the field; false when the text is none of the form.
struct Form {
    const char *leaf;
    std::uint32_t format;
    bool (*write)(const Value *value, dhcp4_subnet_config &request);
};

bool writeText(const Value *value, dhcp4_subnet_config &request)
{
    copyField(request.dhcp_value, val_get_string(value));
    return true;
}

bool writeHex(const Value *value, dhcp4_subnet_config &request)
{
    std::uint8_t bytes[kMostHexBytes];
    return dhcps_ascii2hex(val_get_string(value), bytes, sizeof bytes) != -1 && writeText(value, request);
}

bool writeAddresses(const Value *value, dhcp4_subnet_config &request)
{
    copyField(request.dhcp_value, Addresses(val_get_string(value)).text);
    return true;
}

bool writeNumber(const Value *value, dhcp4_subnet_config &request)
{
    std::snprintf(request.dhcp_value, sizeof request.dhcp_value, "%d",
                  static_cast<int>(val_get_int64(value)));
    return true;
}

bool writeBoolean(const Value *value, dhcp4_subnet_config &request)
{
    copyField(request.dhcp_value, val_get_boolean(value) ? "true" : "false");
    return true;
}

constexpr Form kForms[] = {
    {"ascii-format", DHCPS_FORMAT_ASCII, writeText},     {"hex-format", DHCPS_FORMAT_HEX, writeHex},
    {"ip-format", DHCPS_FORMAT_IP, writeAddresses},      {"int-format", DHCPS_FORMAT_INTEGER, writeNumber},
    {"bool-format", DHCPS_FORMAT_BOOLEAN, writeBoolean},
};

void nameOption(std::uint8_t option, dhcp4_subnet_config &request)
{
    const dhcps_option_row &row = dhcps_option_table[option];
    request.option_set = 1;
    request.option_named = row.kind == DHCPS_OPTION_NAMED;
    if (!request.option_named)
        request.option_number = option;
    if (request.option_named || option == kVendorOption)
        copyField(request.option_name, row.name);
}

// False when no form has a value, or the one that has a bad one.
bool writeValue(const Value *option, dhcp4_subnet_config &request)
{
    for (const Form &form : kForms)
        if (const Value *value = val_find_child(option, kModule, form.leaf)) {
            request.option_format = form.format;
            return form.write(value, request);
        }
    return false;
}

Status sendOption(const EditCall &call, const char *pool, std::uint8_t option)
{
    dhcp4_subnet_config request = poolRequest(pool);
    request.no = call.op == del;
    nameOption(option, request);
    const Value *value = call.op == del ? call.curval : call.newval;
    if (!value || !writeValue(value, request)) {
        locationLines(call);
        return kInternal;
    }
    const Answer answer(send_dhcp4_option_config_to_plugin(request));
    return readAnswer(call, answer.get(), "[%s]: Dhcp server dhcpv4 option config Error: %s");
}

constexpr Rule<const char *, std::uint8_t> kOptionEdit[] = {
    // when, on, act
    {inValidate, onWrite | onLoad, checkAddresses},
    {inApply, onWrite | onDelete, sendOption},
};
static_assert(noneHidden(kOptionEdit));

} // namespace

extern "C" Status u_lyn_openconfig_dhcp_server_dhcp_option_edit(EDIT_ARGS, const char *pool,
                                                                std::uint8_t option)
{
    return run(kOptionEdit, EDIT_CALL, pool, option);
}

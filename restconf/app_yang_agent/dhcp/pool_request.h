// What the edits of the DHCP server have in common: filling a request about a pool, and reading the answer.
#pragma once

#include "backend/dhcp_server.h"
#include "frame/call.h"
#include "frame/owned.h"

namespace dhcp {

using Answer = frame::Owned<DhcpsResponse, ui_fe_dhcpv4_server_response_free>;

inline constexpr const char *kModule = "lyn-openconfig-dhcp-server";

// Copies a text into a field of a record, cut to fit.
void copyField(char *field, std::size_t size, const char *text);
template <std::size_t N>
void copyField(char (&field)[N], const char *text)
{
    copyField(field, N, text);
}

// A cleared request about a pool.
dhcp4_subnet_config poolRequest(const char *pool);

// 0 for a success, else kInternal after the location lines. A refusal's text is recorded and logged by
// `format`, which takes the function's name and the text.
Status readAnswer(const frame::EditCall &call, const DhcpsResponse *answer, const char *format,
                  int line = __builtin_LINE());

// Records a text that the switch was not asked for, and logs it by `format`, which takes the function's name.
Status refuse(const frame::EditCall &call, const char *format, const char *text, int line = __builtin_LINE());

} // namespace dhcp

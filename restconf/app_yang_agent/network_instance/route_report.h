// The routing table as the text that the command line shows.
#pragma once

#include "backend/ip_route.h"

#include <cstddef>
#include <cstdint>

namespace route {

inline constexpr std::size_t kLineBytes = 104;  // room that a line is given
inline constexpr std::size_t kHeadBytes = 1192; // room that the head is given
inline constexpr std::size_t kGrowth = 416;     // the least that a buffer grows by
inline constexpr std::size_t kTypeBytes = 4;    // of a type code with its terminator
inline constexpr std::size_t kUptimeBytes = 24; // of an uptime with its terminator

} // namespace route

extern "C" {

// A row of the table of route types; the type is the row's index.
struct ipv4_route_type_row {
    char code;
    const char *name;
    int distance; // by default
};
extern const ipv4_route_type_row ipv4_route_type_info[10];

// The letters of a route's type and sub-type into `text`, which has kTypeBytes: "D", "Oi", "O12". "?" for a
// type that is not known.
void get_route_type_to_string(std::uint32_t type, std::uint32_t subType, char *text);

// How long a route has been there into `text`, which has kUptimeBytes: "3m20s", "5h1m", "99d3h". From 100
// days on a line feed stands behind it: "100d\n".
void format_route_uptime_to_string(char *text, std::uint32_t seconds);

// Adds a page of routes to the report, in front of the first page the head. `before` is the number of entries
// on earlier pages. *buffer, of *size bytes of which *used are taken without the terminator, is memory of
// sys_allocate_memory; where a bigger one is needed it is exchanged. 1; 0 when memory fails, with the report
// as far as it got.
int save_resp_to_result_buf(int isFirst, std::size_t before, const IpRouteGetResp *answer, char **buffer,
                            std::size_t *used, std::size_t *size);

} // extern "C"

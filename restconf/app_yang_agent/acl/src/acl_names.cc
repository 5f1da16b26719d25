#include "acl/src/acl_names.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <string_view>

namespace acl {

namespace {

struct NamedNumber {
    std::uint32_t number;
    const char *name;
};

// Searched from the top.
constexpr NamedNumber kProtocols[] = {
    {6, "IP_TCP"},  {17, "IP_UDP"},  {1, "IP_ICMP"},  {2, "IP_IGMP"},  {103, "IP_PIM"},  {46, "IP_RSVP"},
    {47, "IP_GRE"}, {51, "IP_AUTH"}, {88, "IP_IGRP"}, {89, "IP_OSPF"}, {115, "IP_L2TP"},
};
constexpr NamedNumber kEthertypes[] = {
    {0x0800, "ETHERTYPE_IPV4"}, {0x0806, "ETHERTYPE_ARP"},  {0x8100, "ETHERTYPE_VLAN"},
    {0x86DD, "ETHERTYPE_IPV6"}, {0x8847, "ETHERTYPE_MPLS"}, {0x88CC, "ETHERTYPE_LLDP"},
    {0x8915, "ETHERTYPE_ROCE"},
};
constexpr NamedNumber kActions[] = {{0, "DROP"}, {1, "ACCEPT"}};

struct TypeRow {
    const char *name;
    std::uint32_t code, queryCode;
};
constexpr TypeRow kTypes[] = {{"ACL_IPV4", kIpv4, 4}, {"ACL_IPV6", kIpv6, 5}, {"ACL_L2", kL2, 6}};

template <std::size_t N>
int nameIn(const NamedNumber (&rows)[N], std::uint32_t number, const char **name)
{
    const auto row = std::find_if(std::begin(rows), std::end(rows),
                                  [number](const NamedNumber &one) { return one.number == number; });
    if (row == std::end(rows))
        return 0;
    *name = row->name;
    return 1;
}

template <std::size_t N>
int numberIn(const NamedNumber (&rows)[N], const char *name, std::uint32_t *number)
{
    const auto row = std::find_if(std::begin(rows), std::end(rows),
                                  [name](const NamedNumber &one) { return xml_strcmp(one.name, name) == 0; });
    if (row == std::end(rows))
        return 0;
    *number = row->number;
    return 1;
}

const TypeRow *findType(const char *type)
{
    const auto row = std::find_if(std::begin(kTypes), std::end(kTypes),
                                  [type](const TypeRow &one) { return xml_strcmp(one.name, type) == 0; });
    return row == std::end(kTypes) ? nullptr : row;
}

} // namespace

std::optional<std::uint32_t> numberOf(const char *name, std::uint32_t type)
{
    const std::string_view text = name;
    if (type != kIpv4 || text.empty() || text.find_first_not_of("0123456789") != text.npos)
        return std::nullopt;
    return static_cast<std::uint32_t>(
        std::min<unsigned long long>(std::strtoull(name, nullptr, 10), UINT32_MAX));
}

void logPlace(const char *function, int line)
{
    if (logsErrors())
        log_error("[%s] [%d]", function, line);
}

} // namespace acl

using namespace acl;

extern "C" {

std::uint32_t get_acl_type(const char *type)
{
    const TypeRow *row = findType(type);
    return row ? row->code : 0;
}

std::uint32_t get_req_acl_type(const char *type)
{
    const TypeRow *row = findType(type);
    return row ? row->queryCode : 0;
}

int get_protocol_type(std::uint32_t number, const char **name)
{
    return nameIn(kProtocols, number, name);
}

int set_protocol_type(const char *name, std::uint32_t *number)
{
    return numberIn(kProtocols, name, number);
}

const char *convert_protocol_num_to_string(std::uint32_t number)
{
    const char *name = nullptr;
    get_protocol_type(number, &name);
    return name;
}

int get_l2_ethertype(std::uint32_t number, const char **name)
{
    return nameIn(kEthertypes, number, name);
}

int set_l2_ethertype(const char *name, std::uint32_t *number)
{
    return numberIn(kEthertypes, name, number);
}

int get_action(std::uint32_t permit, const char **name)
{
    return nameIn(kActions, permit, name);
}

Status acl_get_name_and_type(const Value *listEntry, const char **name, const char **type)
{
    const Value *first = val_get_first_key(listEntry);
    const Value *second = first ? val_get_next_key(first) : nullptr;
    *name = second ? val_get_string(first) : nullptr;
    *type = second ? val_get_string(second) : nullptr;
    return kOk;
}

} // extern "C"

#include "ping/u_lyn-openconfig-ping.h"

#include "frame/unit.h"

namespace {

constexpr frame::Row kRows[] = {
    RPC("ping", u_lyn_openconfig_ping_ping_validate, u_lyn_openconfig_ping_ping_invoke),
};

} // namespace

DEFINE_UNIT(lyn_openconfig_ping, "lyn-openconfig-ping", "2022-07-05", kRows);

#include "traceroute/u_lyn-openconfig-traceroute.h"

#include "frame/unit.h"

namespace {

constexpr frame::Row kRows[] = {
    RPC("traceroute", u_lyn_openconfig_traceroute_traceroute_validate,
        u_lyn_openconfig_traceroute_traceroute_invoke),
};

} // namespace

DEFINE_UNIT(lyn_openconfig_traceroute, "lyn-openconfig-traceroute", "2022-07-05", kRows);

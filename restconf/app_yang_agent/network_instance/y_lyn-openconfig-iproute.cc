#include "network_instance/u_lyn-openconfig-iproute.h"

#include "frame/unit.h"

namespace {

constexpr frame::Row kRows[] = {
    RPC("iproute", u_lyn_openconfig_iproute_iproute_validate, u_lyn_openconfig_iproute_iproute_invoke),
};

} // namespace

DEFINE_UNIT(lyn_openconfig_iproute, "lyn-openconfig-iproute", "2022-07-05", kRows);

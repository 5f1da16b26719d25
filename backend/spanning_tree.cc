#include "backend/spanning_tree.h"

#include "backend/call.h"

int ui_rstp_config_apply(RstpConfig *request, CommonResp **answer)
{
    return backend::apply("ui_rstp_config_apply", request, common_resp__descriptor, answer);
}

int ui_stp_config_apply(StpConfig *request, CommonResp **answer)
{
    return backend::apply("ui_stp_config_apply", request, common_resp__descriptor, answer);
}

int ui_stp_common_port_config_apply(StpCommonPortConfig *request, CommonResp **answer)
{
    return backend::apply("ui_stp_common_port_config_apply", request, common_resp__descriptor, answer);
}

int ui_rstp_port_config_apply(RstpPortConfig *request, CommonResp **answer)
{
    return backend::apply("ui_rstp_port_config_apply", request, common_resp__descriptor, answer);
}

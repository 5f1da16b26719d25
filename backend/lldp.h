// Link layer discovery.
//
// Each function sends a request and waits. The answer, null for a delivery failure, is the caller's and freed
// with its record's own function.
#pragma once

#include "backend/proto/common.pb-c.h"
#include "backend/proto/lldp.pb-c.h"
#include "backend/proto/lldpcfg.pb-c.h"

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Size of the texts of a request, terminator included: a name, a list of ports.
#define LLDP_NAME_BYTES 51
#define LLDP_PORTS_BYTES 7680

// Clear a request, which has no texts afterwards, and the response buffer.
void ui_lldp_global_config_init(LldpGlobalConfig *record, CommonResp *response);
void ui_lldp_interface_config_init(Lldpcfg__LldpInterfaceConfig *record, CommonResp *response);
void lldp_fe_conf_med_init(Lldpcfg__LldpMed *record, CommonResp *response);

// The flag of the two is 2.
LldpGlobalConfig *ui_fe_lldp_config_apply(LldpGlobalConfig *record, int32_t flag);
Lldpcfg__LldpMed *ui_lldp_fe_med_config_apply(Lldpcfg__LldpMed *record, int32_t flag);
// Its answer cannot tell a refusal.
Lldpcfg__LldpInterfaceConfig *ui_lldp_fe_int_config_apply(Lldpcfg__LldpInterfaceConfig *record);

#ifdef __cplusplus
}
#endif

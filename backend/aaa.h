// AAA: authentication of ports, Change of Authorization, method lists, RADIUS servers.
#pragma once

#include "backend/proto/aaa.pb-c.h"

#ifdef __cplusplus
extern "C" {
#endif

// Clears a request. The caller fills operation (1 set, 3 delete) and the one setting that it names.
void ui_aaa_config_req_init(AaaConfigReq *request);

// Sends a request and waits; `flag` is 0. *answer is always written: null on a delivery failure, else to be
// freed with ui_aaa_config_resp_free_unpacked. 0: delivered.
int ui_aaa_config_apply(AaaConfigReq *request, AaaConfigResp **answer, int32_t flag);

// Frees an answer; null is allowed.
void ui_aaa_config_resp_free_unpacked(AaaConfigResp *answer);

#define AAA_METHODS_SIZE 50

// One method list. The texts are terminated; those of another opcode are empty.
struct aaa_method_record {
    int32_t opcode;      // 1 login, 6 and 7 accounting, 9 and 10 authorization of commands and exec
    int32_t delete_flag; // 1 delete, 0 set
    char login_methods[AAA_METHODS_SIZE];
    char accounting_methods[AAA_METHODS_SIZE];
    char authorization_methods[AAA_METHODS_SIZE];
    uint32_t privilege; // of commands
};

// Sends a method list and waits. Null on a delivery failure; freed with ui_fe_aaa_response_free.
AaaMethodResponse *ui_fe_aaa_set(struct aaa_method_record record);

// Frees an answer; null is allowed.
void ui_fe_aaa_response_free(AaaMethodResponse *answer);

// Clears a request about RADIUS servers. The caller fills operation and hangs in the server's record.
void ui_radius_config_req_init(RadiusConfigReq *request);

// Clears a server's record. Texts and the address are borrowed until the request was sent.
void ui_radius_server_init(RadiusServer *server);

// Sends a request and waits; `flag` is 0. *answer is always written: null on a delivery failure, else to be
// freed with ui_radius_config_resp_free_unpacked. 0: delivered.
int ui_radius_config_apply(RadiusConfigReq *request, RadiusConfigResp **answer, int32_t flag);

// Frees an answer; null is allowed.
void ui_radius_config_resp_free_unpacked(RadiusConfigResp *answer);

#ifdef __cplusplus
}
#endif

#include "backend/aaa.h"

#include "backend/call.h"

namespace {

// An empty list is not sent.
char *methodsOf(char (&text)[AAA_METHODS_SIZE])
{
    text[AAA_METHODS_SIZE - 1] = '\0';
    return text[0] == '\0' ? nullptr : text;
}

} // namespace

void ui_aaa_config_req_init(AaaConfigReq *request)
{
    aaa_config_req__init(request);
}

int ui_aaa_config_apply(AaaConfigReq *request, AaaConfigResp **answer, int32_t)
{
    return backend::apply("ui_aaa_config_apply", request, aaa_config_resp__descriptor, answer);
}

void ui_aaa_config_resp_free_unpacked(AaaConfigResp *answer)
{
    aaa_config_resp__free_unpacked(answer, nullptr);
}

AaaMethodResponse *ui_fe_aaa_set(struct aaa_method_record record)
{
    AaaMethodRecord request = AAA_METHOD_RECORD__INIT;
    request.opcode = record.opcode;
    request.delete_flag = record.delete_flag;
    request.login_methods = methodsOf(record.login_methods);
    request.accounting_methods = methodsOf(record.accounting_methods);
    request.authorization_methods = methodsOf(record.authorization_methods);
    request.privilege = record.privilege;
    return backend::ask<AaaMethodResponse>("ui_fe_aaa_set", request, aaa_method_response__descriptor);
}

void ui_fe_aaa_response_free(AaaMethodResponse *answer)
{
    aaa_method_response__free_unpacked(answer, nullptr);
}

void ui_radius_config_req_init(RadiusConfigReq *request)
{
    radius_config_req__init(request);
}

void ui_radius_server_init(RadiusServer *server)
{
    radius_server__init(server);
}

int ui_radius_config_apply(RadiusConfigReq *request, RadiusConfigResp **answer, int32_t)
{
    return backend::apply("ui_radius_config_apply", request, radius_config_resp__descriptor, answer);
}

void ui_radius_config_resp_free_unpacked(RadiusConfigResp *answer)
{
    radius_config_resp__free_unpacked(answer, nullptr);
}

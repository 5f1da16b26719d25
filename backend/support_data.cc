#include "backend/support_data.h"

#include "backend/call.h"

void ui_ss_info_req_init(UiSsInfoReq *request)
{
    ui_ss_info_req__init(request);
}

UiSsInfoReq *ui_supportsave_collect_req(UiSsInfoReq *request)
{
    return backend::ask<UiSsInfoReq>("ui_supportsave_collect_req", *request, ui_ss_info_req__descriptor);
}

void ui_ss_info_req_free_unpacked(UiSsInfoReq *answer)
{
    ui_ss_info_req__free_unpacked(answer, nullptr);
}

#include "backend/flash.h"

#include "backend/call.h"

void ui_fe_init_flash_item_request(FlashItem *request, CommonResp *reply)
{
    flash_item__init(request);
    common_resp__init(reply);
}

FlashItem *ui_fe_flash_item_req(FlashItem *request)
{
    return backend::ask<FlashItem>("ui_fe_flash_item_req", *request, flash_item__descriptor);
}

void ui_fe_deinit_flash_item_request(FlashItem *answer)
{
    flash_item__free_unpacked(answer, nullptr);
}

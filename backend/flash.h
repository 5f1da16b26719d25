// What the flash of the switch holds: images and free space. Sizes are in bytes.
#pragma once

#include "backend/proto/flash.pb-c.h"

#ifdef __cplusplus
extern "C" {
#endif

#define FLASH_ITEM_RUNNING 1
#define FLASH_ITEM_PRIMARY 2
#define FLASH_ITEM_SECONDARY 3
#define FLASH_ITEM_FREE_SPACE 4

// Clears a query and the room for its reply, both of the caller's. The caller fills flash_item.
void ui_fe_init_flash_item_request(FlashItem *request, CommonResp *reply);

// Sends a query and waits. The answer has the fields of that item. Null on a delivery failure; freed with
// ui_fe_deinit_flash_item_request.
FlashItem *ui_fe_flash_item_req(FlashItem *request);

// Frees an answer; null is allowed.
void ui_fe_deinit_flash_item_request(FlashItem *answer);

#ifdef __cplusplus
}
#endif

#include "flash/u_lyn-openconfig-flash.h"

#include "backend/flash.h"
#include "frame/leaves.h"
#include "frame/owned.h"
#include "frame/stub.h"

using namespace frame;

USER_UNIT(lyn_openconfig_flash);

STUB_EDIT(u_lyn_openconfig_flash_flash_edit);

namespace {

constexpr const char *kModule = "flash"; // what the makers of leaves are given
using Answer = Owned<FlashItem, ui_fe_deinit_flash_item_request>;

Value *textLeaf(LeafMaker &leaf, const char *text)
{
    return leaf.text(text ? text : "");
}

constexpr Leaf<FlashItem> kCodeVersion = {
    "code_version", [](LeafMaker &leaf, const FlashItem &item) { return textLeaf(leaf, item.code_version); }};

constexpr Leaf<FlashItem> kRunning[] = {kCodeVersion};

constexpr Leaf<FlashItem> kPartition[] = {
    {"code_size", [](LeafMaker &leaf, const FlashItem &item) { return leaf.number(item.code_size); }},
    {"code_name", [](LeafMaker &leaf, const FlashItem &item) { return textLeaf(leaf, item.code_name); }},
    kCodeVersion,
    {"boot_size", [](LeafMaker &leaf, const FlashItem &item) { return leaf.number(item.boot_size); }},
    {"boot_name", [](LeafMaker &leaf, const FlashItem &item) { return textLeaf(leaf, item.boot_name); }},
    {"boot_version",
     [](LeafMaker &leaf, const FlashItem &item) { return textLeaf(leaf, item.boot_version); }},
};

constexpr Leaf<FlashItem> kFreeSpace[] = {
    {"freespace", [](LeafMaker &leaf, const FlashItem &item) { return leaf.number(item.flash_free_space); }},
};

Answer ask(std::int32_t what)
{
    FlashItem request;
    CommonResp reply;
    ui_fe_init_flash_item_request(&request, &reply);
    request.flash_item = what;
    return Answer(ui_fe_flash_item_req(&request));
}

// The frame of all four; `leaves` are those of the item.
template <std::size_t N>
Status getItem(GetBlock *get2cb, std::int32_t what, const char *function, const Leaf<FlashItem> (&leaves)[N])
{
    if (const Status status = beginContainer(get2cb))
        return status;
    const Answer answer = ask(what);
    if (!answer || !answer->reply || answer->reply->ui_err)
        return kOk;
    if (logsErrors()) // a record of the request, not a failure
        log_error("%s: code_size:%d boot_size:%d code_ver=%s\n", function,
                  static_cast<int>(answer->code_size), static_cast<int>(answer->boot_size),
                  answer->code_version ? answer->code_version : "");
    const char *failed = "";
    const Status status = returnLeaves(get2cb, kModule, *answer, leaves, &failed);
    if (status && logsDebug())
        log_debug("%s() %s - agt_make_leaf2 failed with reason : %d \n", function, failed, status);
    return status;
}

} // namespace

extern "C" Status u_lyn_openconfig_flash_running_get(GetBlock *get2cb)
{
    return getItem(get2cb, FLASH_ITEM_RUNNING, __func__, kRunning);
}

extern "C" Status u_lyn_openconfig_flash_primary_get(GetBlock *get2cb)
{
    return getItem(get2cb, FLASH_ITEM_PRIMARY, __func__, kPartition);
}

extern "C" Status u_lyn_openconfig_flash_secondary_get(GetBlock *get2cb)
{
    return getItem(get2cb, FLASH_ITEM_SECONDARY, __func__, kPartition);
}

extern "C" Status u_lyn_openconfig_flash_freespace_get(GetBlock *get2cb)
{
    return getItem(get2cb, FLASH_ITEM_FREE_SPACE, __func__, kFreeSpace);
}

// Name servers. An edit of the whole list is one request; while it is on its way the entries say nothing.
#include "system/u_openconfig-system.h"

#include "backend/system.h"
#include "frame/answer.h"
#include "frame/owned.h"
#include "frame/rules.h"
#include "frame/stub.h"

#include <array>

using namespace frame;

STUB_EDIT(u_openconfig_system_system_dns_edit);
STUB_EDIT(u_openconfig_system_system_dns_config_edit);
STUB_EDIT(u_openconfig_system_system_dns_servers_server_config_edit, const char *);
STUB_EDIT(u_openconfig_system_system_dns_host_entries_edit);
STUB_EDIT(u_openconfig_system_system_dns_host_entries_host_entry_edit, const char *);
STUB_EDIT(u_openconfig_system_system_dns_host_entries_host_entry_config_edit, const char *);

namespace {

constexpr const char *kModule = "openconfig-system";
constexpr std::int32_t kOwnList = 1;
constexpr std::int32_t kSendFlag = 1;
constexpr std::size_t kMostServers = 4;              // the schema's limit too
constexpr std::int32_t kIsMissing = 2, kIsThere = 3; // app_err

using Answer = Owned<DnsServerAddrAnswer, ui_dns_server_addr_cfg_free>;

// 0 from the apply of an edit of the list to the commit of an entry, or the rollback of the list.
std::uint8_t dns_per_entry_enabled = 1;

Answer sendOne(std::int32_t opcode, const char *address)
{
    DnsServerAddrConfig request;
    DnsServerStorage storage;
    ui_dns_server_addr_config_init(&request, kOwnList, &storage);
    ui_dns_server_addr_set(&request, opcode, 0, address, 0);
    return Answer(ui_dns_server_addr_common_send(&request, kSendFlag));
}

// A refusal of a request for the whole list.
Status readRefusal(const EditCall &call, const CommonResp &reply)
{
    if (logsErrors())
        log_error("[%s] ui_err: %d app_err: %d reply: %s", call.function, reply.ui_err, reply.app_err,
                  reply.reply_buf ? reply.reply_buf : "");
    locationLines(call);
    return recordText(call, kInternal, reply.reply_buf);
}

// A device that does not answer is no failure of the edit.
Status readListAnswer(const EditCall &call, const Answer &answer)
{
    return answer && isRefused(answer->reply) ? readRefusal(call, *answer->reply) : kOk;
}

Status clearList(const EditCall &call)
{
    if (logsInfo())
        log_info("[%s] Sending CLEAR for DNS", call.function);
    const Answer answer = sendOne(DNS_SERVER_CLEAR, nullptr);
    if (!answer && logsErrors())
        log_error("[%s] CLEAR pResp is null", call.function);
    return readListAnswer(call, answer);
}

Status sendList(const EditCall &call, const Value *list, Value *first)
{
    std::array<DnsServerEntry, kMostServers> entries;
    std::array<DnsServerEntry *, kMostServers> slots;
    std::size_t count = 0;
    for (Value *entry = first; entry && count < kMostServers;
         entry = val_find_next_child(list, kModule, "server", entry)) {
        const char *address = val_get_string(val_get_first_child(entry)); // the key comes first
        if (logsInfo())
            log_info("[%s] Sending REPLACE for DNS: %s", call.function, address);
        dns_server_entry__init(&entries[count]);
        entries[count++].address = const_cast<char *>(address);
    }
    DnsServerAddrConfig request;
    DnsServerStorage storage;
    ui_dns_server_addr_replace_init(&request, kOwnList, &storage, entries.data(), slots.data(), count);
    const Answer answer(ui_dns_server_addr_common_send(&request, kSendFlag));
    if (!answer && logsErrors())
        log_error("[%s] REPLACE pResp is null", call.function);
    return readListAnswer(call, answer);
}

Status replaceList(const EditCall &call, const Value *list)
{
    Value *first = val_find_child(list, kModule, "server");
    const BaseType type = first ? val_get_btyp(first) : btNone;
    if (type == btNone)
        return clearList(call);
    if (type == btList)
        return sendList(call, list, first);
    if (logsErrors())
        log_error("\n[%s] BTYPE not handled (%s)", call.function, ncx_get_btyp_string(type));
    locationLines(call);
    return kInternal;
}

Status applyList(const EditCall &call)
{
    dns_per_entry_enabled = 0;
    return replaceList(call, call.newval);
}

// A new list without entries tells no entry, so none would open the way for the next one.
Status createList(const EditCall &call)
{
    const Status status = applyList(call);
    if (!val_find_child(call.newval, kModule, "server"))
        dns_per_entry_enabled = 1;
    return status;
}

Status speakAgain(const EditCall &)
{
    dns_per_entry_enabled = 1;
    return kOk;
}

Status restoreList(const EditCall &call)
{
    dns_per_entry_enabled = 1;
    return replaceList(call, call.curval);
}

constexpr Rule<> kServersEdit[] = {
    {inApply, onMerge | onReplace, applyList},
    {inApply, onCreate, createList},
    {inApply, onDelete, clearList},
    {inRollback, onWrite | onDelete, restoreList},
    {inRollback, onLoad, speakAgain},
};
static_assert(noneHidden(kServersEdit));

void logHarmless(const EditCall &call, bool adds, const char *address)
{
    locationLines(call);
    if (!logsErrors())
        return;
    if (adds)
        log_error("[%s] ADD duplicate entry found for DNS: %s\n", call.function, address);
    else
        log_error("[%s] DEL entry not found for DNS: %s\n", call.function, address);
}

Status readEntryRefusal(const EditCall &call, bool adds, const char *address, const CommonResp &reply)
{
    if (reply.app_err == (adds ? kIsThere : kIsMissing)) {
        logHarmless(call, adds, address);
        return kOk;
    }
    locationLines(call);
    if (logsErrors() && adds)
        log_error("[%s] ADD ui_err: %d app_err: %d for DNS: %s\n", call.function, reply.ui_err, reply.app_err,
                  address);
    else if (logsErrors())
        log_error("[%s] DEL ui_err: %d app_err: %d for DNS: %s\n", call.function, reply.ui_err, reply.app_err,
                  address);
    return recordText(call, kInternal, reply.reply_buf);
}

Status sendEntry(const EditCall &call, std::int32_t opcode, const char *address)
{
    if (!dns_per_entry_enabled || !address)
        return kOk;
    const bool adds = opcode == DNS_SERVER_ADD;
    const Answer answer = sendOne(opcode, address);
    if (answer)
        return isRefused(answer->reply) ? readEntryRefusal(call, adds, address, *answer->reply) : kOk;
    if (logsErrors() && adds)
        log_error("[%s] ADD pResp is null\n", call.function);
    else if (logsErrors())
        log_error("[%s] DEL pResp is null\n", call.function);
    return kOk;
}

Status addEntry(const EditCall &call, const char *address)
{
    return sendEntry(call, DNS_SERVER_ADD, address);
}

Status removeEntry(const EditCall &call, const char *address)
{
    return sendEntry(call, DNS_SERVER_DELETE, address);
}

// A rollback speaks even while the entries are quiet; the list behind it has the last word.
Status undoEntry(const EditCall &call, std::int32_t opcode, const char *address)
{
    if (!address)
        return kOk;
    const Answer answer = sendOne(opcode, address);
    if (answer && !isRefused(answer->reply))
        return kOk;
    if (logsErrors())
        log_error("[%s] Rollback pResp: %p error: %d\n", call.function,
                  static_cast<const void *>(answer.get()), answer ? answer->reply->ui_err : 0);
    locationLines(call);
    return kOk;
}

Status takeBackEntry(const EditCall &call, const char *address)
{
    return undoEntry(call, DNS_SERVER_DELETE, address);
}

Status putBackEntry(const EditCall &call, const char *address)
{
    return undoEntry(call, DNS_SERVER_ADD, address);
}

Status cannotLoad(const EditCall &, const char *)
{
    return INTERNAL_ERROR();
}

Status speakAgainAfterEntry(const EditCall &call, const char *)
{
    return speakAgain(call);
}

constexpr Rule<const char *> kServerEdit[] = {
    {inApply, onWrite, addEntry},          {inApply, onDelete, removeEntry},
    {inApply, onLoad, cannotLoad},         {inCommit, anyOp, speakAgainAfterEntry},
    {inRollback, onCreate, takeBackEntry}, {inRollback, onDelete, putBackEntry},
};
static_assert(noneHidden(kServerEdit));

} // namespace

extern "C" Status u_openconfig_system_system_dns_servers_edit(EDIT_ARGS)
{
    return run(kServersEdit, EDIT_CALL);
}

extern "C" Status u_openconfig_system_system_dns_servers_server_edit(EDIT_ARGS, const char *address)
{
    return run(kServerEdit, EDIT_CALL, address);
}
